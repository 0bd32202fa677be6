// Jobs that were given no control, no chip or not all of their parts: whoever makes one himself may do so.

#include <memory>

#include "device/Device.h"
#include "device/Families.h"
#include "operations/Images.h"
#include "operations/ProtectionBits.h"
#include "operations/Target.h"
#include "operations/download/SubOperations.h"
#include "tests/operations/DownloadTest.h"
#include "tests/operations/ProjectTest.h"
#include "usersystemdata/CUserSystemData.h"

class MissingPartsTest : public ProjectTest {
protected:
    // Takes a part out of a job until the end of the test.
    template <class Part>
    void take(Part *&part) {
        taken.emplace_back(part);
        part = nullptr;
    }
    std::vector<std::unique_ptr<COperation>> taken;
    std::unique_ptr<CProgramFile> opened;
};

TEST_F(MissingPartsTest, WithoutAControlNoJobActs) {
    EXPECT_EQ(CDisableSlib(nullptr).Action(), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(CEnableSlib(nullptr).Action(), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(CEnBank3(nullptr).Action(), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(CFlashCRC(nullptr).Action(), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(CWriteSN(nullptr).Action(), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(CWriteUserSystemData(nullptr).Action(), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(CWriteUserSystemDataProject(nullptr).Action(), CResult::UNKNOWN_ERROR);
    CVerifyProject verify(nullptr);
    verify.SetVerifyFile(file({part(0x08000000, 16)}));
    EXPECT_EQ(verify.Action(), CResult::UNKNOWN_ERROR);
    CUpload upload(nullptr);
    EXPECT_EQ(upload.InitAction(), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(upload.InitAction(), CResult::UNKNOWN_ERROR); // with the image file that it has by then
}

TEST_F(MissingPartsTest, WithoutAControlADownloadHasNoSectorsAndNoReset) {
    CDownload job(nullptr);
    EXPECT_EQ(job.FlashGetSectorIndex(0x08000800, 0), -1);
    EXPECT_EQ(job.ResetMcu(), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(job.ResetMcu403B(), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(job.JumpToUserProgram(0), CResult::UNKNOWN_ERROR);
    CProgramFile closed;
    job.m_lsProgramFile = {&closed};
    EXPECT_EQ(job.JumpToUserProgram(0), CResult::UNKNOWN_ERROR);
    EXPECT_TRUE(job.GetNecessarySectorIndex().isEmpty());

    CDownloadProject project(nullptr);
    DLPROJECTParam record;
    record.m_DownFileInfo = {file({part(0x08000000, 16)})};
    project.SetParameters(&record);
    EXPECT_EQ(project.InitAction(), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(project.FlashGetSectorIndex(0x08000800, 0), -1);
    EXPECT_EQ(project.ResetMcu(), CResult::UNKNOWN_ERROR);
    EXPECT_TRUE(project.GetNecessarySectorIndex().isEmpty());
    project.m_Parameters.m_DownFileInfo.clear();
    EXPECT_EQ(project.Action(), 0); // no sectors to check, and nothing to write
    EXPECT_TRUE(project.IsDone());
    EXPECT_TRUE(project.m_hasGetEraseProgramProtectStatus);
    EXPECT_EQ(project.Action(), 0); // nor a second time
    EXPECT_EQ(suboperations::prepareBank3(job), CResult::UNKNOWN_ERROR);
}

TEST_F(MissingPartsTest, ADownloadWithoutItsPartsAnswersUnknown) {
    connect(f413);
    CDownload job(&bootLoader());
    EXPECT_EQ(job.ConfirmAddressOffset(), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(job.OpenFile(), 0); // no paths
    EXPECT_EQ(job.SetEraseNecessary(), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(job.SetEraseBlockNecessary(), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(job.JumpToUserProgram(0), CResult::UNKNOWN_ERROR);
    CProgramFile closed; // has no start address
    job.m_lsProgramFile = {&closed};
    EXPECT_EQ(job.JumpToUserProgram(0), CResult::FILES_NOTOPEN);
    job.m_lsProgramFile.clear();

    opened = std::make_unique<CProgramFile>();
    image(threeElements);
    ASSERT_EQ(opened->Open(path("a.hex"), bootLoader().m_ObDevice), 0);
    job.SetDownLoadFile({opened.get()});
    take(job.m_obErase);
    EXPECT_EQ(job.Erase(NECESSARY), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(job.SetEraseNecessary(), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(job.SetEraseBlockNecessary(), CResult::UNKNOWN_ERROR);
    take(job.m_obVerify);
    EXPECT_EQ(job.Verify(0, opened.get()), CResult::UNKNOWN_ERROR);
    take(job.m_obFAP);
    EXPECT_EQ(job.FAP(), CResult::UNKNOWN_ERROR);
    take(job.m_obWriteOTP2File);
    EXPECT_EQ(job.ApplyUserSystemData(nullptr, 0), CResult::UNKNOWN_ERROR);
    job.Cancel(); // the parts that are not there are passed over
    listen(job);
    EXPECT_EQ(library.log(), "");
}

TEST_F(MissingPartsTest, AProjectWithoutItsPartsAnswersUnknown) {
    connect(f413);
    CDownloadProject job(&bootLoader());
    EXPECT_EQ(job.SetEraseNecessary(), CResult::UNKNOWN_ERROR);
    DLPROJECTParam record;
    record.m_DownFileInfo = {file({part(0x08000000, 16)})};
    job.SetParameters(&record);
    take(job.m_obErase);
    EXPECT_EQ(job.Erase(NECESSARY), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(job.SetEraseNecessary(), CResult::UNKNOWN_ERROR);
    take(job.m_obVerify);
    EXPECT_EQ(job.Verify(record.m_DownFileInfo.first()), CResult::UNKNOWN_ERROR);
    take(job.m_obRDUP);
    EXPECT_EQ(job.RDUP(), CResult::UNKNOWN_ERROR);
    take(job.m_obDisableSlib);
    EXPECT_EQ(job.DisableSlib(7), CResult::UNKNOWN_ERROR);
    job.Cancel();
    EXPECT_EQ(library.log(), "");
}

TEST_F(MissingPartsTest, AChipWithoutASectorSizeHasNoSectors) {
    CBootLoader &control = connect(f413);
    CDevice &device = *control.m_ObDevice;
    const unsigned size = device.m_ISectorSize;
    device.m_ISectorSize = 0;
    control.EnableSlib({1, 0, 0, 0});
    EXPECT_EQ(runAnew(), CResult::UNKNOWN_ERROR);
    EXPECT_TRUE(sectors({part(0x08000000, 16)}).isEmpty());
    device.m_ISectorSize = size;
    EXPECT_EQ(sectors({part(0x08000000, 16)}), QList<int>{0});
}

TEST_F(MissingPartsTest, ProtectionBitsOfAChipThatWasNotReadAreUnknown) {
    CBootLoader &control = connect(f413);
    QList<int> bits{1};
    ASSERT_EQ(control.m_ObUserSystemData, nullptr);
    EXPECT_EQ(protectionbits::covering(control, {0}, bits), CResult::UNKNOWN_ERROR);
    EXPECT_TRUE(bits.isEmpty());
}

TEST_F(MissingPartsTest, AChipWithoutSectorsHasNoBitsToCoverThem) {
    CBootLoader &control = connect(f413);
    QList<int> bits;
    ASSERT_EQ(protectionbits::readProtected(control, bits), 0);
    EXPECT_EQ(protectionbits::covering(control, {}, bits), 0);
    EXPECT_FALSE(bits.isEmpty());
    control.m_ObUserSystemData->m_nSectorNums = 0;
    EXPECT_EQ(protectionbits::covering(control, {}, bits), CResult::PROGRAM_INPUT_PARAMS_ERROR);
}

TEST_F(MissingPartsTest, OptionBytesFromNowhereAreNone) {
    connect(f413);
    CWriteUserSystemData job(&bootLoader());
    job.SetParameters(nullptr, 48);
    EXPECT_EQ(job.m_UserSystemDataLen, 0u);
    CDownload download(&bootLoader());
    download.m_Parameters.m_bFAP = true;
    BYTE half = 0xA5; // shorter than the pair of the protection byte
    EXPECT_EQ(download.ApplyUserSystemData(&half, 1), 0);
    CWriteUserSystemDataProject project(&bootLoader());
    project.SetParameters(nullptr, 48);
    EXPECT_EQ(project.m_UserSystemDataLen, 0u);
    EXPECT_EQ(project.Action(), 0); // writes what the chip holds
    library.script("TARGET_SetUserSystemData status=4");
    EXPECT_EQ(project.Action(), CResult::COM_SEND_FAIL);
}

TEST_F(MissingPartsTest, AnEventThatNobodyKnowsIsNotRaised) {
    CErase job(nullptr);
    listen(job);
    job.Callback(static_cast<InfoType>(INFO_TYPE_INFO + 1));
    EXPECT_TRUE(events.empty());
    job.Callback(INFO_TYPE_INFO);
    EXPECT_EQ(events, Lines{"INFO"});
}

TEST_F(MissingPartsTest, OptionBytesThatCannotBeSaved) {
    CBootLoader &control = connect(f413);
    image("FILES_CreateImage status=13");
    EXPECT_EQ(control.SaveUserSystemDatatoFile(path("o.bin")), CResult::FILES_FILEGENERALERROR);
    image("FILES_SetImageElement status=13");
    EXPECT_EQ(control.SaveUserSystemDatatoFile(path("o.bin")), CResult::FILES_FILEGENERALERROR);
    image("");
    control.m_ObDevice->m_UiUserSystemDataLen = 5000; // more than option bytes can have
    EXPECT_EQ(control.SaveUserSystemDatatoFile(path("o.bin")), CResult::UNKNOWN_ERROR);
}

TEST_F(MissingPartsTest, AFirmwareCheckWithoutImages) {
    connect(f413);
    CFWCRC job(&bootLoader());
    EXPECT_EQ(job.OpenFile(), 0);
    EXPECT_EQ(job.ConfirmAddressOffset(), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(job.GetFWCRCCode(CProgramFile(), 0), CResult::FILES_EMPTY);
    EXPECT_EQ(job.GetFWCRCCode_413(CProgramFile(), 0), CResult::FILES_EMPTY);
    job.m_obProgramFile = {CProgramFile()};
    job.m_uiAddressOffset = {0};
    EXPECT_EQ(job.Action(), CResult::FILES_EMPTY);
    EXPECT_FALSE(job.IsDone());
}

TEST_F(MissingPartsTest, AFileOfNoBytesIsAllDone) {
    connect(f413);
    CDownload job(&bootLoader());
    CProgramFile empty;
    job.CalculatePercent(&empty);
    EXPECT_EQ(job.m_ActionInfo.m_iPercent, 100);
}

TEST_F(MissingPartsTest, WithoutAChipTheFamilyIsTheUnknownOne) {
    connect(f413);
    EXPECT_EQ(&target::familyOf(nullptr), &familyOf(0));
    EXPECT_NE(&target::familyOf(&bootLoader()), &familyOf(0));
}

TEST_F(MissingPartsTest, OnlySectorsOfFlashAreLookedAt) {
    CDevice &device = *connect(f413).m_ObDevice;
    const PMAPPING table = device.m_CMapping->GetIpMapping();
    MAPPINGSECTOR &first = table->pSectors[0];
    EXPECT_TRUE(images::areCutAsErased(device));
    first.dwSectorSize = 1024;
    EXPECT_FALSE(images::areCutAsErased(device));
    for (const DWORD elsewhere : {0x07FFF800u, 0x08400000u}) {
        first.dwStartAddress = elsewhere;
        EXPECT_TRUE(images::areCutAsErased(device)) << std::hex << elsewhere;
    }
    table->NbSectors = 1;
    EXPECT_FALSE(images::areCutAsErased(device)) << "no flash at all";
    device.m_CMapping->m_ipMapping = nullptr;
    EXPECT_FALSE(images::areCutAsErased(device));
    device.m_CMapping->m_ipMapping = table;
    EXPECT_TRUE(images::areCutAsErased(CDevice()));
}
