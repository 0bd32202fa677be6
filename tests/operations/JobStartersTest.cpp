#include <functional>

#include "tests/operations/OperationsTest.h"

class JobStartersTest : public OperationsTest {};

TEST_F(JobStartersTest, EachMakesItsJobAndRunsNothing) {
    CBootLoader &control = connect(f413);
    const struct {
        std::function<void()> start;
        OP_Type kind;
        const char *name;
    } cases[] = {
        {[&] { control.EraseFlash({}); }, OP_ERASE, "Erase"},
        {[&] { control.DownloadToDevice({}); }, OP_DOWNLOAD, "Download"},
        {[&] { control.DownloadToDeviceProject({}); }, OP_DOWNLOAD, "Download"},
        {[&] { control.UploadFromDevice({}); }, OP_UPLOAD, "Upload"},
        {[&] { control.FirmwareCRCCheck({}); }, OP_FWCRC, "Firmware CRC Check"},
        {[&] { control.FlashCRCCheck({}); }, OP_FLASHCRC, "Flash CRC calculate"},
        {[&] { control.EnableBank3Func({}); }, OP_ENBANK3, "Enable Bank3"},
        {[&] { control.AccessProtect(1); }, OP_ACCESS_PROTECT, "Enable access protection"},
        {[&] { control.ReadoutUnProtect(); }, OP_ACCESS_UNPROTECT, "Disable access protection"},
        {[&] { control.EraseProgramProtect({}); }, OP_ERASEPROGRAM_PROTECT, "Enable erase and program protection"},
        {[&] { control.WriteUnProtect(); }, OP_ERASEPROGRAM_UNPROTECT, "Disable erase and program protection"},
        {[&] { control.EnableSlib({}); }, OP_ENSLIB, "Enable sLib"},
        {[&] { control.DisableSlib(7); }, OP_DISSLIB, "Disable sLib"},
        {[&] { control.DisableSlibCheck(7); }, OP_DISSLIB, "Disable sLib"},
    };
    for (const auto &one : cases) {
        one.start();
        COperation *job = control.m_ObOperation;
        ASSERT_NE(job, nullptr) << one.name;
        EXPECT_EQ(job->m_EmType, one.kind) << one.name;
        EXPECT_EQ(job->m_strName, one.name);
        EXPECT_EQ(job->m_obBootLoader, &control);
        EXPECT_FALSE(job->IsSubOperation() || job->HasStart() || job->isRunning()) << one.name;
    }
    EXPECT_EQ(library.log(), "");
    control.FreeOperation();
    EXPECT_EQ(control.m_ObOperation, nullptr);
    control.FreeOperation();
}

TEST_F(JobStartersTest, TheRecordsReachTheirJobs) {
    CBootLoader &control = connect(f413);
    control.AccessProtect(2);
    EXPECT_EQ(static_cast<CAccessProtect *>(control.m_ObOperation)->m_protectLevel, 2);
    control.EraseProgramProtect({4, 5});
    EXPECT_EQ(static_cast<CEraseProgramProtect *>(control.m_ObOperation)->m_iSectorIndex, (QList<int>{4, 5}));
    control.EnableSlib({1, 2, 3, 4});
    const EnableSlibParam &slib = static_cast<CEnableSlib *>(control.m_ObOperation)->m_Parameters;
    EXPECT_EQ(slib.m_uiPassword, 1u);
    EXPECT_EQ(slib.m_usEndSector, 4);
    control.DisableSlibCheck(99);
    EXPECT_EQ(static_cast<CDisableSlib *>(control.m_ObOperation)->m_uiPassword, 99u);
    control.UploadFromDevice({"/x/u.bin", {7}, 8});
    const UploadParam &upload = static_cast<CUpload *>(control.m_ObOperation)->m_Parameters;
    EXPECT_EQ(upload.m_strUploadPathFile, "/x/u.bin");
    EXPECT_EQ(upload.m_aSectorIndexs, QList<int>{7});
    EXPECT_EQ(upload.m_bank3Size, 8);
}

TEST_F(JobStartersTest, TheSubOperationsOfADownload) {
    CDownload job(nullptr);
    for (COperation *sub :
         {static_cast<COperation *>(job.m_obErase), static_cast<COperation *>(job.m_obVerify),
          static_cast<COperation *>(job.m_obWriteSN), static_cast<COperation *>(job.m_obFAP),
          static_cast<COperation *>(job.m_obWriteOTP2File), static_cast<COperation *>(job.m_obEnableSlib),
          static_cast<COperation *>(job.m_obEnBank3)}) {
        ASSERT_NE(sub, nullptr);
        EXPECT_TRUE(sub->IsSubOperation());
    }
    EXPECT_EQ(job.m_obVerify->m_strName, "Verify");
    EXPECT_EQ(job.m_obVerify->m_EmType, OP_VERIFY);
}
