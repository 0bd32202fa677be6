// What the front end does without a link, a chip or a place to print to.

#include <csignal>
#include <cstdlib>
#include <exception>
#include <thread>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include "FakeLink.h"
#include "app/Connect.h"
#include "app/Link.h"
#include "app/Process.h"
#include "app/Requests.h"
#include "app/Spim.h"

namespace {

TEST(ClosedLink, HasNoBootloaderNoDeviceAndNoSpim) {
    CCom closed;
    EXPECT_FALSE(hasBootLoader(&closed));
    EXPECT_FALSE(hasBootLoader(nullptr));
    EXPECT_EQ(deviceOf(&closed), nullptr);
    EXPECT_FALSE(HandleEnSPIM(&closed));
    EXPECT_EQ(InitDevice(nullptr), nullptr);
    FakeLink fake;
    EXPECT_TRUE(hasBootLoader(&fake.link));
    EXPECT_EQ(deviceOf(&fake.link), &fake.device);
}

TEST(ClosedLink, WithoutAChipNoConfirmationIsAsked) {
    Line line("-p --fap --y");
    int index = 1;
    SubOptionWalk walk(line.argc(), line.argv(), index, SubOptionWalk::runsLastWord);
    ASSERT_TRUE(walk.next() || true);
    const int before = index;
    EXPECT_TRUE(readConfirmation(walk, nullptr));
    EXPECT_EQ(index, before - 1); // the word was not taken
}

TEST(ClosedLink, WithoutADfuDeviceNothingIsConnected) {
    int index = 0;
    CCom *link = nullptr;
    testing::internal::CaptureStdout();
    EXPECT_FALSE(DFUConnect(0, nullptr, index, link));
    EXPECT_EQ(testing::internal::GetCapturedStdout().substr(0, 17), "DFU Connect......");
    EXPECT_EQ(index, 0);
}

[[noreturn]] void beginWithoutDescriptors() {
    close(STDIN_FILENO);
    const rlimit none{0, 0};
    setrlimit(RLIMIT_NOFILE, &none);
    _exit(holdStandardDescriptors() ? 1 : 7);
}

TEST(ClosedStreams, WithoutADescriptorToBeHadTheProgramDoesNotBegin) {
    EXPECT_EXIT(beginWithoutDescriptors(), testing::ExitedWithCode(7), "");
}

[[noreturn]] void endWith(void (*work)()) {
    reportUnexpectedEnds();
    work();
    _exit(0);
}

TEST(UnexpectedEnd, TellsWhatWasThrownOrThatNothingWas) {
    EXPECT_EXIT(endWith([] { std::terminate(); }), testing::ExitedWithCode(unexpectedEnd), "end: no exception");
    EXPECT_EXIT(endWith([] { std::thread([] { throw 7; }).join(); }), testing::ExitedWithCode(unexpectedEnd),
                "end: unknown exception");
}

} // namespace
