#include <cstdlib>

#include <gtest/gtest.h>
#include <unistd.h>

#include "FakeLink.h"
#include "app/Download.h"

namespace {

std::string checkText(const std::string &fileName, CBootLoader *control) {
    testing::internal::CaptureStdout();
    EXPECT_FALSE(DownloadFileAndAddressCheck(fileName, 0x08000000, control));
    return testing::internal::GetCapturedStdout();
}

TEST(DownloadCheck, WithoutADevice) {
    char path[] = "/tmp/download-check-XXXXXX";
    close(mkstemp(path));
    FakeLink fake;
    CBootLoader *control = fake.link.m_ObBootLoader;
    control->m_ObDevice = nullptr;
    EXPECT_EQ(checkText(path, nullptr), "Error:  Device operation failed\n");
    EXPECT_EQ(checkText(path, control), "Error:  Device operation failed\n");
    unlink(path);
    // The file is looked for first.
    const std::string noFile = "Error:  Please select download file! File Name is ";
    EXPECT_EQ(checkText(path, control), noFile + path + "\n");
    EXPECT_EQ(checkText("", control), noFile + "\n");
}

} // namespace
