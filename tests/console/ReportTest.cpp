#include "app/Report.h"

#include <iostream>

#include <gtest/gtest.h>

#include "FakeLink.h"

namespace {

TEST(Report, BadParameter) {
    Line line("-d --fn");
    testing::internal::CaptureStdout();
    WriteBadParameterInfor(line.argv(), 1);
    WriteInforAndWaitInput("next");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "bad parameter \"--fn\"\nnext\n");
}

TEST(Report, NothingFollowsTheNullWord) {
    Line line("-d --fn");
    testing::internal::CaptureStdout();
    WriteBadParameterInfor(line.argv(), 2);
    printLine("next");
    WriteBadParameterInfor(line.argv(), 1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "bad parameter \"");
    std::cout.clear();
}

} // namespace
