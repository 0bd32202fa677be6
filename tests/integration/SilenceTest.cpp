// A chip that falls silent, and one that refuses: what every link makes of it.

#include "tests/integration/LibraryTest.h"

namespace {

constexpr unsigned shortTimeout = 200;

class SilenceTest : public LibraryTest {
protected:
    BYTE version() {
        BYTE number = 0, reserve = 0, bid = 0;
        return ZVBL_GET_VER_ROPS(link, &number, &reserve, &bid);
    }
};

} // namespace

TEST_F(SilenceTest, EndsInTimeAndTheResetButtonEndsIt) {
    connect("ZV32F421_64K", {"--fault", "silence@6"});
    EXPECT_EQ(SetTimeOut(link, shortTimeout), done);
    BYTE status = done;
    for (int i = 0; i < 8 && status == done; ++i)
        status = version();
    EXPECT_EQ(status, noAnswer);
    EXPECT_EQ(version(), noAnswer);
    chip->pressReset();
    EXPECT_EQ(SetTimeOut(link, 2000), done);
    EXPECT_EQ(initAgain(), done);
    EXPECT_EQ(version(), done);
}

TEST_F(SilenceTest, InTheMiddleOfAReadAndOfAWrite) {
    for (const char *fault : {"silence@9", "silence@12"}) {
        SCOPED_TRACE(fault);
        connect("ZV32F421_64K", {"--fault", fault});
        EXPECT_EQ(SetTimeOut(link, shortTimeout), done);
        BYTE status = done;
        for (unsigned i = 0; i < 8 && status == done; ++i) {
            status = write(flashBase + 64 * i, program(64));
            Bytes back(64);
            if (status == done)
                status = ZVBL_UPLOAD(link, flashBase + 64 * i, back.data(), 64);
        }
        EXPECT_EQ(status, noAnswer);
        Interface_Close(link);
    }
}

TEST_F(SilenceTest, ARefusalLeavesTheLinkInStep) {
    connect("ZV32F421_64K");
    BYTE crc[4];
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(ZVBL_GetFirmwareCRC(link, flashBase + 1, 1, crc), refused); // not the start of a sector
        EXPECT_EQ(ZVBL_SPIMREMAP(link, 0), commandRefused);                   // no SPIM on this chip
        EXPECT_EQ(version(), done);
    }
}
