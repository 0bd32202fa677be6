#include "tests/link/LinkTest.h"

class IdentifyTest : public LinkTest {
protected:
    void SetUp() override { open(USART); }

    std::string pid;
    BYTE series = 0;
};

TEST_F(IdentifyTest, LongIdentifierSwapsThePairsAndCarriesTheSeries) {
    library.script("ZVBL_GET_ID id=0a4f7005C7");
    EXPECT_EQ(bootLoader().GetPID(pid, series), CResult::SUCCESS);
    EXPECT_EQ(pid, "70050A4F");
    EXPECT_EQ(series, 0xC7);
    EXPECT_EQ(library.log(), "ZVBL_GET_ID h=1001 id=null\nZVBL_GET_ID h=1001 id=buffer\n");
}

TEST_F(IdentifyTest, ShortIdentifierHasSeriesTwo) {
    library.script("ZVBL_GET_ID id=0040");
    EXPECT_EQ(bootLoader().GetPID(pid, series), CResult::SUCCESS);
    EXPECT_EQ(pid, "0040");
    EXPECT_EQ(series, 2);
    EXPECT_EQ(bootLoader().ZV32GetFlashSize(0x0040), 24);
}

TEST_F(IdentifyTest, AnotherLengthGivesTheBareValueFive) {
    for (const char *id : {"", "01", "010203", "01020304", "010203040506"}) {
        library.clearLog();
        library.script(std::string("ZVBL_GET_ID id=") + id);
        pid = "old";
        EXPECT_EQ(bootLoader().GetPID(pid, series), 5);
        EXPECT_EQ(pid, "");
        EXPECT_EQ(series, 2);
        EXPECT_EQ(library.log(), "ZVBL_GET_ID h=1001 id=null\n");
        library.clearLog();
        EXPECT_EQ(bootLoader().InitDevice(), CResult::COM_READ_FAIL);
        EXPECT_EQ(library.log(), "ZVBL_GET_ID h=1001 id=null\n");
    }
}

TEST_F(IdentifyTest, AFailureOfEitherCallIsConverted) {
    library.script("ZVBL_GET_ID status=5 nth=1");
    EXPECT_EQ(bootLoader().GetPID(pid, series), CResult::COM_READ_FAIL);
    library.script("ZVBL_GET_ID status=0x13 nth=2");
    EXPECT_EQ(bootLoader().GetPID(pid, series), CResult::SYS_CMD_NOT_ALLOWED);
    EXPECT_EQ(pid, "");
}

TEST_F(IdentifyTest, FlashSizesByTheIndexInThePid) {
    const int sizes[] = {16,   24,   32,  48,  64,   72,   96,  128, 192, 256, 384, 512, 768, 1024, 1536, 2048,
                         4096, 5120, 192, 960, 1984, 4032, 448, 0,   0,   0,   0,   0,   0,   0,    0,    0};
    for (int index = 0; index < 32; ++index) {
        EXPECT_EQ(bootLoader().ZV32GetFlashSize(index << 6), sizes[index]) << index;
        EXPECT_EQ(bootLoader().ZV32GetFlashSize(0x7005003F | index << 6), sizes[index]) << index;
    }
}

TEST_F(IdentifyTest, InitDeviceAsksSetsThePacketSizeAndReadsTheVersion) {
    writeUsualMap(0x90);
    EXPECT_EQ(bootLoader().InitDevice(), CResult::SUCCESS);
    EXPECT_EQ(library.log(), "ZVBL_GET_ID h=1001 id=null\nZVBL_GET_ID h=1001 id=buffer\n"
                             "SetPaketSize h=1001 bytes=144\nZVBL_GET_VER_ROPS h=1001\n");
    ASSERT_TRUE(bootLoader().HasInitDevice());
    EXPECT_EQ(bootLoader().m_ObDevice->m_StrName, "ZV32F403A");
    EXPECT_EQ(bootLoader().m_ObDevice->m_StrSerial, "07");
    EXPECT_EQ(bootLoader().m_ObDevice->m_IFlashSize, 1024);
    EXPECT_EQ(bootLoader().m_BID, 0x1234);
}

TEST_F(IdentifyTest, AUsbDfuDeviceIsReachedByItsIndexAlone) {
    writeUsualMap();
    g_shareParameter.m_InterfaceType = USBDFU;
    CComManager manager;
    manager.SetInterfaceType(USBDFU);
    CCom link;
    link = manager.getCom(2).first();
    library.clearLog();
    link.Close();
    ASSERT_EQ(link.Open(), CResult::SUCCESS);
    EXPECT_EQ(link.m_ObBootLoader->Connect(), CResult::SUCCESS);
    EXPECT_EQ(link.m_ObBootLoader->InitDevice(), CResult::SUCCESS);
    EXPECT_EQ(library.log(), "Interface_Close h=0\nInterface_Open h=0\nZVBL_GET h=0\nZVBL_GET_ID h=0 id=null\n"
                             "ZVBL_GET_ID h=0 id=buffer\nSetPaketSize h=0 bytes=0\nZVBL_GET_VER_ROPS h=0\n");
}

TEST_F(IdentifyTest, InitDeviceDropsTheStatusOfThePacketSize) {
    writeUsualMap(256);
    library.script("SetPaketSize status=33");
    EXPECT_EQ(bootLoader().InitDevice(), CResult::SUCCESS);
    EXPECT_NE(library.log().find("SetPaketSize h=1001 bytes=0\n"), std::string::npos) << "256 is the byte 0";
}

TEST_F(IdentifyTest, InitDeviceGivesTheCodeOfTheVersionWithTheDeviceSet) {
    writeUsualMap();
    library.script("ZVBL_GET_VER_ROPS status=5");
    EXPECT_EQ(bootLoader().InitDevice(), CResult::COM_READ_FAIL);
    EXPECT_TRUE(bootLoader().HasInitDevice());
}

TEST_F(IdentifyTest, AnUnknownChipLeavesNoDevice) {
    writeUsualMap();
    EXPECT_EQ(bootLoader().InitDevice(), CResult::SUCCESS);
    library.script("ZVBL_GET_ID id=0347700508"); // the series of another chip
    EXPECT_EQ(bootLoader().InitDevice(), CResult::SYS_UNREOGNIZED_DEVICE);
    EXPECT_EQ(bootLoader().m_ObDevice, nullptr);
}

TEST_F(IdentifyTest, AFlashIndexWithoutSizeEndsInATargetOf0K) {
    writeMap("ZV32F403A_1024K", "700505C7", "07", 2048, 512, 2);
    library.script("ZVBL_GET_ID id=05C7700507"); // index 23
    EXPECT_EQ(bootLoader().InitDevice(), CResult::SUCCESS);
    EXPECT_EQ(bootLoader().m_ObDevice->m_IFlashSize, 0);
    EXPECT_EQ(bootLoader().m_ObDevice->m_StrTarget, "ZV32F403A_0K");
}

struct VersionCase {
    const char *answer;
    const char *version;
    const char *bid;
    int number;
};

TEST_F(IdentifyTest, VersionAndBlockIdentifier) {
    const VersionCase cases[] = {
        {"version=21 bid=12 res=FF", "2.1", "0102", 0x1200}, {"version=21 bid=12 res=34", "2.1", "1234", 0x1234},
        {"version=00 bid=03 res=00", "0.0", "0300", 0x0300}, {"version=FA bid=AB res=FF", "15.10", "0A0B", 0xAB00},
        {"version=20 bid=00 res=00", "2.0", "NA", 0x7777},   {"version=20 bid=00 res=FF", "2.0", "NA", 0x7777},
        {"version=20 bid=00 res=34", "2.0", "NA", 0x7777},
    };
    for (const VersionCase &one : cases) {
        library.script(std::string("ZVBL_GET_VER_ROPS ") + one.answer);
        bootLoader().m_BID = 0x7777;
        std::string version = "old";
        std::string bid = "old";
        EXPECT_EQ(bootLoader().GetVersion(version, bid), CResult::SUCCESS);
        EXPECT_EQ(version, one.version) << one.answer;
        EXPECT_EQ(bid, one.bid) << one.answer;
        EXPECT_EQ(bootLoader().m_BID, one.number) << one.answer;
    }
}

TEST_F(IdentifyTest, AFailedVersionLeavesTheTextsEmpty) {
    library.script("ZVBL_GET_VER_ROPS status=4");
    std::string version = "old";
    std::string bid = "old";
    EXPECT_EQ(bootLoader().GetVersion(version, bid), CResult::COM_SEND_FAIL);
    EXPECT_EQ(version + bid, "");
}

TEST_F(IdentifyTest, GetBidOnlyReads) {
    library.script("ZVBL_UPLOAD at=1FFFB100 data=0000000000004700");
    const std::string bid = "NA";
    EXPECT_EQ(bootLoader().GetBID(bid), CResult::SUCCESS);
    EXPECT_EQ(bid, "NA");
    EXPECT_EQ(bootLoader().m_BID, 0);
    EXPECT_EQ(library.log(), "ZVBL_UPLOAD h=1001 addr=1FFFB100 len=8\n");
    library.script("ZVBL_UPLOAD status=0x13");
    EXPECT_EQ(bootLoader().GetBID(bid), CResult::SYS_CMD_NOT_ALLOWED);
}

TEST_F(IdentifyTest, UniqueId) {
    library.script("ZVBL_UPLOAD at=1FFFF7E8 data=0102030405060708090A0B0C fill=EE");
    BYTE uid[13] = {};
    EXPECT_EQ(bootLoader().GetUID(uid), CResult::SUCCESS);
    EXPECT_EQ(library.log(), "ZVBL_UPLOAD h=1001 addr=1FFFF7E8 len=12\n");
    EXPECT_EQ(uid[0], 1);
    EXPECT_EQ(uid[11], 12);
    EXPECT_EQ(uid[12], 0);
    library.script("ZVBL_UPLOAD status=5");
    uid[0] = 99;
    EXPECT_EQ(bootLoader().GetUID(uid), CResult::COM_READ_FAIL);
    EXPECT_EQ(uid[0], 99);
    library.clearLog();
    EXPECT_EQ(bootLoader().GetUID(nullptr), 33);
    EXPECT_EQ(library.log(), "");
}

TEST_F(IdentifyTest, FlashSizeRegisterAndPacketSize) {
    library.script("TARGET_GetFlashSize kb=448");
    int kilobytes = 0;
    EXPECT_EQ(bootLoader().GetFlashSize(0x1FFFF7E0, kilobytes), CResult::SUCCESS);
    EXPECT_EQ(kilobytes, 448);
    EXPECT_EQ(bootLoader().SetComPaketSize(0x1FE), CResult::SUCCESS);
    EXPECT_EQ(library.log(), "TARGET_GetFlashSize h=1001 addr=1FFFF7E0\nSetPaketSize h=1001 bytes=254\n");
    library.script("TARGET_GetFlashSize status=0x14\nSetPaketSize status=33");
    EXPECT_EQ(bootLoader().GetFlashSize(0x1FFFF7E0, kilobytes), CResult::SYS_CMD_FAIL);
    EXPECT_EQ(bootLoader().SetComPaketSize(1), CResult::PROGRAM_INPUT_PARAMS_ERROR);
}
