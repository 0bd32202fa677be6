#include <iterator>
#include <vector>

#include "files/UserSystemDataFile.h"
#include "tests/link/LinkTest.h"
#include "usersystemdata/CUserSystemData.h"

namespace {

using Bytes = std::vector<BYTE>;

// The option bytes of a layout of 24 bytes, protection off.
const std::string chipData = "A5FF1122FFFFFFFF3344556677889900A1A2A3A4A5A6A7A8";
const std::string optionBytesRead = "TARGET_GetUserSystemData h=1001 addr=1FFFF800 len=24\n";
const std::string reopened = "Interface_Close h=1001\nsleep 2000\nInterface_Open h=1001\n";
const std::string connectedAgain =
    "sleep 100\nZVBL_Init_BL h=1001 addr=0 rate=0 duty=0\nZVBL_ZV32ISP_TOOL h=1001\nZVBL_GET h=1001\n";

Bytes pairsOf(const std::string &hexDigits, size_t length) {
    Bytes pairs(length, 0xFF);
    for (size_t i = 1; i < length; i += 2)
        pairs[i] = 0x00;
    for (size_t i = 0; 2 * i < hexDigits.size() && 2 * i + 1 < length; ++i) {
        pairs[2 * i] = BYTE(std::stoi(hexDigits.substr(2 * i, 2), nullptr, 16));
        pairs[2 * i + 1] = BYTE(~pairs[2 * i]);
    }
    return pairs;
}

void writeFile(const std::string &path, const Bytes &bytes) {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char *>(bytes.data()), std::streamsize(bytes.size()));
}

Bytes readFile(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

} // namespace

class TargetUserSystemDataTest : public LinkTest {
protected:
    void SetUp() override {
        writeUsualMap();
        identified();
        library.script("TARGET_GetUserSystemData data=" + chipData);
    }
    std::string logOfTheWrite() const {
        const std::string log = library.log();
        const size_t at = log.find("TARGET_SetUserSystemData");
        return at == std::string::npos ? "" : log.substr(at, log.find('\n', at) - at);
    }
};

TEST_F(TargetUserSystemDataTest, ReadsIntoOneObject) {
    EXPECT_EQ(bootLoader().GetUserSystemData(), CResult::SUCCESS);
    EXPECT_EQ(library.log(), optionBytesRead);
    CUserSystemData *object = bootLoader().m_ObUserSystemData;
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(object->FAP, 0xA5);
    EXPECT_EQ(object->DATA[0], 0x11);
    EXPECT_EQ(object->BANK3KEY7, 0xA8);
    library.script("TARGET_GetUserSystemData data=CC");
    EXPECT_EQ(bootLoader().GetUserSystemData(), CResult::SUCCESS);
    EXPECT_EQ(bootLoader().m_ObUserSystemData, object);
    EXPECT_EQ(object->FAP, 0xCC);
}

TEST_F(TargetUserSystemDataTest, AFailedReadLeavesWhatThereIs) {
    library.script("TARGET_GetUserSystemData status=0x13");
    EXPECT_EQ(bootLoader().GetUserSystemData(), CResult::SYS_CMD_NOT_ALLOWED);
    EXPECT_EQ(bootLoader().m_ObUserSystemData, nullptr);
}

TEST_F(TargetUserSystemDataTest, WithoutADeviceNothingIsRead) {
    bootLoader().m_ObDevice = nullptr;
    BYTE data[48] = {};
    EXPECT_EQ(bootLoader().GetUserSystemData(), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(bootLoader().SetUserSystemData(), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(bootLoader().SaveUserSystemDatatoFile("a.bin"), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(bootLoader().LoadUserSystemDataToDevice(data, sizeof data), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(library.log(), "");
}

TEST_F(TargetUserSystemDataTest, WithoutADeviceNothingIsWritten) {
    bootLoader().m_ObDevice = nullptr;
    std::vector<BYTE> block(48, 0xFF);
    EXPECT_EQ(bootLoader().WriteOptionBytes(block), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(library.log(), "");
}

TEST_F(TargetUserSystemDataTest, WritesWhatWasReadAndReconnects) {
    EXPECT_EQ(bootLoader().SetUserSystemData(), CResult::SUCCESS);
    const std::string log = library.log();
    EXPECT_EQ(log, optionBytesRead + logOfTheWrite() + "\n" + reopened + connectedAgain);
    EXPECT_EQ(logOfTheWrite().rfind("TARGET_SetUserSystemData h=1001 addr=1FFFF800 len=24 "
                                    "data=A5FF1122FFFFFFFF3344556677889900..",
                                    0),
              0u);
}

TEST_F(TargetUserSystemDataTest, AReadThatFailsAfterAWriteWithoutObjectIsAnUnknownError) {
    library.script("TARGET_GetUserSystemData status=5");
    EXPECT_EQ(bootLoader().SetUserSystemData(), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(library.log(), optionBytesRead);
}

TEST_F(TargetUserSystemDataTest, ARefusedWriteIsNotFollowedByAReconnect) {
    library.script("TARGET_SetUserSystemData status=0x14");
    EXPECT_EQ(bootLoader().SetUserSystemData(), CResult::SYS_CMD_FAIL);
    EXPECT_EQ(library.log(), optionBytesRead + logOfTheWrite() + "\n");
}

TEST_F(TargetUserSystemDataTest, WhetherTheChipComesBackIsNotLookedAt) {
    library.script("Interface_Open status=3\nZVBL_Init_BL status=0x11");
    EXPECT_EQ(bootLoader().SetUserSystemData(), CResult::SUCCESS);
    const std::string attempt = "sleep 2000\nInterface_Open h=1001\n";
    EXPECT_EQ(library.log(), optionBytesRead + logOfTheWrite() + "\nInterface_Close h=1001\n" + attempt + attempt +
                                 attempt + attempt + attempt + "sleep 100\nZVBL_Init_BL h=1001 addr=0 rate=0 duty=0\n");
}

TEST_F(TargetUserSystemDataTest, TwoFamiliesAreResetAfterAWrite) {
    writeMap("ZV32F435_4032K", "70084540", "0D", 4096, 1008, 1);
    writeMap("ZV32F437_4032K", "70083541", "0E", 4096, 1008, 1);
    for (const char *id : {"454070080D", "354170080E"}) {
        CBootLoader &control = identified(std::string("ZVBL_GET_ID id=") + id);
        EXPECT_EQ(control.SetUserSystemData(), CResult::SUCCESS);
        const std::string handle = library.log().substr(library.log().find("h="), 6);
        EXPECT_EQ(library.log().rfind("TARGET_GetUserSystemData " + handle + " addr=1FFFC000 len=2048\n", 0), 0u);
        EXPECT_NE(library.log().find("\nZVBL_ResetMCU " + handle + "\nInterface_Close " + handle + "\n"),
                  std::string::npos);
        library.clearLog();
        library.script("ZVBL_ResetMCU status=5");
        EXPECT_EQ(control.SetUserSystemData(), CResult::COM_READ_FAIL);
        EXPECT_EQ(library.log().find("Interface_Close"), std::string::npos);
    }
}

TEST_F(TargetUserSystemDataTest, TheBlockIdentifierDecidesTheLength) {
    writeMap("ZV32F415_256K", "70030245", "05", 2048, 128, 2);
    identified("ZVBL_GET_ID id=0245700305\nZVBL_GET_VER_ROPS bid=46 res=01").GetUserSystemData();
    EXPECT_NE(library.log().find(" len=16\n"), std::string::npos);
    identified("ZVBL_GET_ID id=0245700305\nZVBL_GET_VER_ROPS bid=46 res=02").GetUserSystemData();
    EXPECT_NE(library.log().find(" len=512\n"), std::string::npos);
}

TEST_F(TargetUserSystemDataTest, SavesTheElementForm) {
    EXPECT_EQ(bootLoader().SaveUserSystemDatatoFile("./usd.bin"), CResult::SUCCESS);
    EXPECT_EQ(library.log(), optionBytesRead);
    EXPECT_EQ(readFile("usd.bin"), pairsOf(chipData, 4096));
    EXPECT_EQ(bootLoader().SaveUserSystemDatatoFile("./again.bin"), CResult::SUCCESS);
    EXPECT_EQ(library.log(), optionBytesRead) << "what was read is kept";
    EXPECT_EQ(readFile("again.bin"), readFile("usd.bin"));
}

TEST_F(TargetUserSystemDataTest, SavesNothingThatWasNotRead) {
    library.script("TARGET_GetUserSystemData status=5");
    EXPECT_EQ(bootLoader().SaveUserSystemDatatoFile("./usd.bin"), CResult::COM_READ_FAIL);
    EXPECT_FALSE(std::filesystem::exists("usd.bin"));
}

TEST_F(TargetUserSystemDataTest, GivesTheCodeOfAFailedSave) {
    EXPECT_NE(bootLoader().SaveUserSystemDatatoFile("./nowhere/usd.bin"), CResult::SUCCESS);
    EXPECT_EQ(bootLoader().SaveUserSystemDatatoFile("./usd.doc"), CResult::FILES_BADSUFFIX);
}

TEST_F(TargetUserSystemDataTest, LoadsAFileIntoTheObjectOnly) {
    writeFile("usd.bin", pairsOf("CC" + chipData.substr(2), 4096));
    EXPECT_EQ(bootLoader().LoadUserSystemDataFromFile("./usd.bin"), CResult::SUCCESS);
    EXPECT_EQ(library.log(), optionBytesRead);
    EXPECT_EQ(bootLoader().m_ObUserSystemData->FAP, 0xCC);
}

TEST_F(TargetUserSystemDataTest, TheElementHasBounds) {
    const std::pair<size_t, int> cases[] = {{47, CResult::FILES_BADPARAMETER},
                                            {48, CResult::SUCCESS},
                                            {4096, CResult::SUCCESS},
                                            {4097, CResult::FILES_BADPARAMETER}};
    for (const auto &[length, code] : cases) {
        writeFile("usd.bin", pairsOf(chipData, length));
        EXPECT_EQ(bootLoader().LoadUserSystemDataFromFile("./usd.bin"), code) << length;
        EXPECT_EQ(bootLoader().LoadUserSystemDataFromFileToDevice("./usd.bin"), code) << length;
        EXPECT_EQ(bootLoader().LoadUserSystemDataFromFileToDeviceExceptFAP("./usd.bin"), code) << length;
    }
}

TEST_F(TargetUserSystemDataTest, AnElementShorterThanTheFamilyNeedsIsRefused) {
    writeMap("ZV32F421_64K", "50020109", "09", 1024, 64, 4);
    identified("ZVBL_GET_ID id=0109500209");
    writeFile("usd.bin", pairsOf("A5", 510)); // 256 pairs are needed
    EXPECT_EQ(bootLoader().LoadUserSystemDataFromFileToDevice("./usd.bin"), CResult::FILES_BADPARAMETER);
    EXPECT_EQ(logOfTheWrite(), "");
    writeFile("usd.bin", pairsOf("A5", 512));
    EXPECT_EQ(bootLoader().LoadUserSystemDataFromFileToDevice("./usd.bin"), CResult::SUCCESS);
}

TEST_F(TargetUserSystemDataTest, AFileThatCannotBeOpenedIsNotFollowedByARead) {
    EXPECT_EQ(bootLoader().LoadUserSystemDataFromFile("./none.bin"), CResult::FILES_UNABLETOOPENFILE);
    EXPECT_EQ(bootLoader().LoadUserSystemDataFromFileToDevice("./none.bin"), CResult::FILES_UNABLETOOPENFILE);
    EXPECT_EQ(bootLoader().LoadUserSystemDataFromFileToDeviceExceptFAP("./none.bin"), CResult::FILES_UNABLETOOPENFILE);
    EXPECT_EQ(library.log(), "");
}

TEST_F(TargetUserSystemDataTest, AFileWithoutDataIsEmpty) {
    writeFile("usd.hex", Bytes{':', '0', '0', '0', '0', '0', '0', '0', '1', 'F', 'F', '\n'});
    EXPECT_EQ(bootLoader().LoadUserSystemDataFromFile("./usd.hex"), CResult::FILES_EMPTY);
    EXPECT_EQ(library.log(), "");
}

TEST_F(TargetUserSystemDataTest, AFailedReadIsIgnoredByTheLoadAndReturnedByTheWrites) {
    writeFile("usd.bin", pairsOf(chipData, 4096));
    library.script("TARGET_GetUserSystemData status=5");
    EXPECT_EQ(bootLoader().LoadUserSystemDataFromFile("./usd.bin"), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(bootLoader().LoadUserSystemDataFromFileToDevice("./usd.bin"), CResult::COM_READ_FAIL);
    EXPECT_EQ(bootLoader().LoadUserSystemDataFromFileToDeviceExceptFAP("./usd.bin"), CResult::COM_READ_FAIL);
    writeFile("usd.bin", pairsOf(chipData, 47));
    EXPECT_EQ(bootLoader().LoadUserSystemDataFromFile("./usd.bin"), CResult::FILES_BADPARAMETER)
        << "the length is looked at first";
}

TEST_F(TargetUserSystemDataTest, WritesAFileToTheChip) {
    writeFile("usd.bin", pairsOf("CCEE", 4096));
    EXPECT_EQ(bootLoader().LoadUserSystemDataFromFileToDevice("./usd.bin"), CResult::SUCCESS);
    EXPECT_EQ(library.log(), optionBytesRead + logOfTheWrite() + "\n" + reopened + connectedAgain);
    EXPECT_EQ(logOfTheWrite(), "TARGET_SetUserSystemData h=1001 addr=1FFFF800 len=24 "
                               "data=CCEEFFFFFFFFFFFFFFFFFFFFFFFFFFFF.. crc=9F7F5235");
}

TEST_F(TargetUserSystemDataTest, WrongComplementsAreTaken) {
    Bytes pairs = pairsOf("CCEE", 48);
    pairs[1] = pairs[3] = 0x77;
    writeFile("usd.bin", pairs);
    EXPECT_EQ(bootLoader().LoadUserSystemDataFromFileToDevice("./usd.bin"), CResult::SUCCESS);
    EXPECT_NE(logOfTheWrite().find(" data=CCEEFF"), std::string::npos);
}

TEST_F(TargetUserSystemDataTest, AWriteOfAFileExceptForTheProtectionByteKeepsTheChips) {
    writeFile("usd.bin", pairsOf("CCEE", 4096));
    EXPECT_EQ(bootLoader().LoadUserSystemDataFromFile("./usd.bin"),
              CResult::SUCCESS); // the object differs from the chip
    library.clearLog();
    EXPECT_EQ(bootLoader().LoadUserSystemDataFromFileToDeviceExceptFAP("./usd.bin"), CResult::SUCCESS);
    EXPECT_EQ(library.log(), optionBytesRead + logOfTheWrite() + "\n" + reopened + connectedAgain);
    EXPECT_NE(logOfTheWrite().find(" data=A5EEFF"), std::string::npos);
}

TEST_F(TargetUserSystemDataTest, WritesABufferToTheChip) {
    Bytes pairs = pairsOf("CCEE", 4097);
    EXPECT_EQ(bootLoader().LoadUserSystemDataToDevice(pairs.data(), 4096), CResult::SUCCESS);
    EXPECT_NE(logOfTheWrite().find(" data=CCEEFF"), std::string::npos);
    library.clearLog();
    EXPECT_EQ(bootLoader().LoadUserSystemDataToDevice(pairs.data(), 4097), CResult::FILES_BADPARAMETER);
    EXPECT_EQ(bootLoader().LoadUserSystemDataToDevice(nullptr, 48), CResult::FILES_EMPTY);
    EXPECT_EQ(library.log(), "");
}

TEST_F(TargetUserSystemDataTest, ABufferThatIsTooShortWritesWhatTheChipHolds) {
    Bytes pairs = pairsOf("CCEE", 46);
    EXPECT_EQ(bootLoader().LoadUserSystemDataToDevice(pairs.data(), 46), CResult::SUCCESS);
    EXPECT_NE(logOfTheWrite().find(" data=A5FF1122"), std::string::npos);
}

TEST_F(TargetUserSystemDataTest, AFailedReadBeforeABufferIsReturned) {
    Bytes pairs = pairsOf("CCEE", 48);
    library.script("TARGET_GetUserSystemData status=4");
    EXPECT_EQ(bootLoader().LoadUserSystemDataToDevice(pairs.data(), 48), CResult::COM_SEND_FAIL);
    EXPECT_EQ(bootLoader().LoadUserSystemDataToDeviceExceptFAP(pairs.data(), 48), CResult::COM_SEND_FAIL);
}

TEST_F(TargetUserSystemDataTest, ABufferExceptForTheProtectionByteHasBothBounds) {
    Bytes pairs = pairsOf("CCEE", 4097);
    EXPECT_EQ(bootLoader().LoadUserSystemDataToDeviceExceptFAP(nullptr, 48), CResult::FILES_EMPTY);
    EXPECT_EQ(bootLoader().LoadUserSystemDataToDeviceExceptFAP(pairs.data(), 47), CResult::FILES_BADPARAMETER);
    EXPECT_EQ(bootLoader().LoadUserSystemDataToDeviceExceptFAP(pairs.data(), 4097), CResult::FILES_BADPARAMETER);
    EXPECT_EQ(logOfTheWrite(), "");
    EXPECT_EQ(bootLoader().LoadUserSystemDataToDeviceExceptFAP(pairs.data(), 48), CResult::SUCCESS);
    EXPECT_NE(logOfTheWrite().find(" data=A5EEFF"), std::string::npos);
}
