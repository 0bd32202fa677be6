#include <gtest/gtest.h>

#include "FakeLink.h"
#include "app/Requests.h"
#include "app/Spim.h"
#include "foundation/ShareParameter.h"

namespace {

// The device is told before the job runs, which fails here as there is nothing at the other end.
TEST(SpimDevice, IsToldOfTheBank) {
    g_shareParameter = ShareParameter();
    FakeLink fake;
    Line line("-enspim --ft 1 --fs 16 --fda 1000 --remap 1");
    int index = 0;
    testing::internal::CaptureStdout();
    EXPECT_FALSE(EnableBank3(line.argc(), line.argv(), index, &fake.link));
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(index, 9);
    EXPECT_TRUE(fake.device.m_haveBank3);
    EXPECT_EQ(fake.device.m_Bank3Type, 1);
    EXPECT_EQ(fake.device.m_Bank3Szie, 16384U);
    EXPECT_EQ(fake.device.m_Bank3FlashDA, 0x1000U);
    EXPECT_TRUE(fake.device.m_Nank3RemapFlag);
    EXPECT_TRUE(g_shareParameter.c_haveSPIM);
    EXPECT_TRUE(g_shareParameter.c_bNeedRemap);
    g_shareParameter = ShareParameter();
}

TEST(SpimDevice, IsLeftAloneByARefusedLine) {
    g_shareParameter = ShareParameter();
    FakeLink fake;
    Line line("-enspim --fs 16 bogus");
    int index = 0;
    testing::internal::CaptureStdout();
    EXPECT_FALSE(EnableBank3(line.argc(), line.argv(), index, &fake.link));
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(index, 3);
    EXPECT_FALSE(fake.device.m_haveBank3);
    EXPECT_FALSE(g_shareParameter.c_haveSPIM);
    g_shareParameter = ShareParameter();
}

TEST(SpimDevice, TypeByte) {
    EXPECT_EQ(spimTypeByte(1), 0x91);
    for (const BYTE type : {0, 2, 3, 255})
        EXPECT_EQ(spimTypeByte(type), 0x90);
}

TEST(SpimDevice, NeedNotBeKnown) {
    g_shareParameter = ShareParameter();
    FakeLink fake;
    fake.link.m_ObBootLoader->m_ObDevice = nullptr;
    Line line("-enspim --ft 1");
    int index = 0;
    testing::internal::CaptureStdout();
    EXPECT_FALSE(EnableBank3(line.argc(), line.argv(), index, &fake.link));
    testing::internal::GetCapturedStdout();
    EXPECT_TRUE(g_shareParameter.c_haveSPIM);
    EXPECT_FALSE(fake.device.m_haveBank3);
    g_shareParameter = ShareParameter();
}

} // namespace
