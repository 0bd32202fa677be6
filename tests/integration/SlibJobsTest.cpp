// Enabling and disabling the sLib area by the jobs.

#include "link/ZVBLLIB.h"
#include "tests/integration/JobsTest.h"

namespace {
constexpr uint sectorSize = 2048;
constexpr uint password = 0x12345678;
} // namespace

class SlibJobsTest : public JobsTest {
protected:
    SlibJobsTest() {
        connect("ZV32F403A_1024K");
        write(flashBase + 10 * sectorSize, image);
    }
    int enable(uint word, ushort start, ushort dataStart, ushort last) {
        EnableSlibParam area;
        area.m_uiPassword = word;
        area.m_usStartSector = start;
        area.m_usStartDataSector = dataStart;
        area.m_usEndSector = last;
        control->EnableSlib(area);
        return run();
    }
    bool isEnabled() {
        BYTE enabled = 0;
        EXPECT_EQ(ZVBL_GetSlibStatus(control->m_handle, &enabled), 0);
        return enabled == 1;
    }
    Bytes sector(uint number) { return read(flashBase + number * sectorSize, sectorSize); }
    Bytes written(uint number) const {
        const auto begin = image.begin() + (number - 10) * sectorSize;
        return Bytes(begin, begin + sectorSize);
    }

    const Bytes image = program(4 * sectorSize);
    const Bytes blank = Bytes(sectorSize, 0xFF);
};

TEST_F(SlibJobsTest, OnAndOff) {
    EXPECT_EQ(enable(password, 10, 11, 12), CResult::SUCCESS);
    EXPECT_EQ(end, "DONE");
    EXPECT_TRUE(isEnabled());
    EXPECT_EQ(sector(10), blank) << "code";
    EXPECT_EQ(sector(11), written(11)) << "data";
    EXPECT_EQ(enable(password, 20, 21, 22), CResult::SLIB_HASBEEN_ENABLE_ERROR);

    control->DisableSlib(password + 1);
    EXPECT_EQ(run(), CResult::SLIB_DISABLE_PASSWORD_ERROR);
    EXPECT_TRUE(isEnabled());
    EXPECT_EQ(sector(11), written(11));

    control->DisableSlib(password);
    EXPECT_EQ(run(), CResult::SUCCESS);
    EXPECT_FALSE(isEnabled());
    EXPECT_EQ(sector(10), blank);
    EXPECT_EQ(sector(12), blank);
    EXPECT_EQ(sector(13), written(13)) << "a neighbour";
}

TEST_F(SlibJobsTest, TheCheckingStarterDisablesToo) {
    EXPECT_EQ(enable(password, 10, 0xFFFF, 12), CResult::SUCCESS);
    control->DisableSlibCheck(password);
    EXPECT_EQ(run(), CResult::SUCCESS);
    EXPECT_FALSE(isEnabled());
    control->DisableSlibCheck(password);
    EXPECT_EQ(run(), CResult::SUCCESS) << "there is none, as asked for";
}

TEST_F(SlibJobsTest, RecordsThatCannotBe) {
    EXPECT_EQ(enable(0, 10, 11, 12), CResult::SLIB_PASSWORD_ERROR);
    EXPECT_EQ(enable(password, 512, 0xFFFF, 512), CResult::SLIB_STARTSECTOR_ERROR);
    EXPECT_EQ(enable(password, 10, 11, 512), CResult::SLIB_ENDSECTOR_ERROR);
    EXPECT_EQ(enable(password, 10, 13, 12), CResult::SLIB_STARTDATASECTOR_ERROR);
    EXPECT_FALSE(isEnabled());
    EXPECT_EQ(chip->log(), "") << "nothing was sent";
}

TEST_F(SlibJobsTest, AnErasedWholeDeviceStillHasItsArea) {
    EXPECT_EQ(enable(password, 10, 11, 12), CResult::SUCCESS);
    control->EraseFlash(EraseParam());
    EXPECT_EQ(run(), CResult::SUCCESS);
    EXPECT_TRUE(isEnabled());
    EXPECT_EQ(sector(11), blank) << "data";
    EXPECT_EQ(sector(13), blank);
}
