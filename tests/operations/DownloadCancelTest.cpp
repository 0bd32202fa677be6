#include "tests/operations/DownloadTest.h"

class DownloadCancelTest : public DownloadTest {};

TEST_F(DownloadCancelTest, WithoutSpimACancelDoesNotKeepTheEraseAway) {
    connect(f413);
    image(oneSmall);
    parameters.m_strDownPathFile = {path("a.hex")};
    bootLoader().DownloadToDevice(parameters);
    const std::string log = runCancelledAtFirstCall();
    EXPECT_NE(log.find(eraseOf(0)), std::string::npos) << log;
    EXPECT_EQ(log.find("ZVBL_DNLOAD"), std::string::npos) << log;
    EXPECT_EQ(events.back(), "CANCEL");
}

TEST_F(DownloadCancelTest, CancelWhileWriting) {
    connect(f413);
    image(threeElements);
    onEvent = [&](InfoType) {
        if (!calls({"ZVBL_DNLOAD"}).empty())
            bootLoader().m_ObOperation->Cancel();
    };
    EXPECT_EQ(download({"a.hex"}), 0);
    EXPECT_EQ(events.back(), "CANCEL");
    EXPECT_EQ(calls({"ZVBL_DNLOAD"}).size(), 1u);
}

TEST_F(DownloadCancelTest, CancelWhileErasingReachesTheSubOperation) {
    connect(f413);
    image(threeElements);
    onEvent = [&](InfoType) {
        if (events.back() == "ACTION 33")
            bootLoader().m_ObOperation->Cancel();
    };
    EXPECT_EQ(download({"a.hex"}), 0);
    EXPECT_EQ(calls({"ZVBL_ERASE"}).size(), 2u);
    EXPECT_EQ(calls({"ZVBL_DNLOAD"}), Lines());
    EXPECT_EQ(events.back(), "CANCEL");
}

TEST_F(DownloadCancelTest, CancelWhileVerifying) {
    connect(f413);
    image(threeElements);
    parameters.m_bVerify = true;
    onEvent = [&](InfoType) {
        if (!calls({"ZVBL_VERIFY"}).empty())
            bootLoader().m_ObOperation->Cancel();
    };
    EXPECT_EQ(download({"a.hex"}), 0);
    EXPECT_EQ(calls({"ZVBL_VERIFY"}).size(), 1u);
    EXPECT_EQ(events.back(), "CANCEL");
}
