// The board: control lines, and what they do to the chip.

#include "sim/bootloader/Board.h"

#include <array>

#include "tests/sim/Vectors.h"

namespace sim {
namespace {

Wiring wired(const std::string &text) {
    Wiring wiring;
    std::string error;
    if (!text.empty() && !parseWiring(text, wiring, error))
        throw std::invalid_argument(error);
    return wiring;
}

class BoardTest : public ::testing::Test {
protected:
    void make(const std::string &wiring) { board.emplace(wired(wiring), rig.bootloader, rig.log, rig.now); }
    void lines(bool dtr, bool rts) { board->setLines(dtr, rts, rig.now); }
    void wait() { rig.now += 20 * millisecond; }
    bool answers() { return rig.play("H: 7F\nC: 79").empty(); }

    Rig rig{"ZV32F403A_1024K"};
    std::optional<Board> board;
};

TEST_F(BoardTest, withoutWiringTheLinesDoNothing) {
    make("");
    lines(true, true);
    EXPECT_EQ(rig.play(SYNC), "");
    lines(false, true);
    lines(false, false);
    EXPECT_EQ(rig.play("H: 7F\nC: 1F"), "");
}

TEST_F(BoardTest, aHeldChipIsSilentAndStartsAtItsRelease) {
    make("reset=dtr:low");
    EXPECT_TRUE(board->held());
    wait();
    EXPECT_FALSE(answers());
    lines(true, false);
    EXPECT_FALSE(board->held());
    rig.now += 19 * millisecond;
    EXPECT_FALSE(answers());
    rig.now += millisecond;
    EXPECT_TRUE(answers());
}

TEST_F(BoardTest, whatWasUnderWayIsLost) {
    make("reset=rts:high");
    EXPECT_EQ(rig.play(SYNC "H: 31 CE\nC: 79"), "");
    lines(false, true);
    EXPECT_EQ(rig.play("H: 08 00 00 00 08\nC: -"), "");
    lines(false, false);
    EXPECT_EQ(rig.play(AFTER_RESET "H: 02 FD\nC: 79 04 03 47 70 05 07 79"), "");
}

TEST_F(BoardTest, otherLinesDoNotReset) {
    make("reset=dtr:low");
    lines(true, false);
    wait();
    EXPECT_TRUE(answers());
    lines(true, true);
    lines(true, false);
    EXPECT_EQ(rig.play("H: 7F\nC: 1F"), "");
}

TEST_F(BoardTest, bootIsLookedAtWhenResetIsReleasedAndAtNoOtherTime) {
    make("reset=dtr:low,boot=rts:high");
    lines(false, true);
    lines(true, true);
    wait();
    EXPECT_TRUE(answers());
    lines(true, false);
    EXPECT_EQ(rig.play("H: 7F\nC: 1F"), "");
    lines(false, false);
    lines(true, false);
    wait();
    EXPECT_FALSE(answers());
    lines(true, true);
    wait();
    EXPECT_FALSE(answers());
}

TEST_F(BoardTest, linesThatMoveTogetherCountAsTheyAreThen) {
    make("reset=dtr:low,boot=rts:low");
    lines(true, true);
    wait();
    EXPECT_FALSE(answers());
}

TEST_F(BoardTest, thePowerLooksAtBootToo) {
    make("boot=rts:high"); // both lines are low then
    EXPECT_FALSE(answers());
    make("boot=rts:low");
    EXPECT_TRUE(answers());
    lines(true, true);
    EXPECT_EQ(rig.play("H: 7F\nC: 1F"), "");
    board->losePower(rig.now);
    EXPECT_FALSE(board->rts());
    EXPECT_EQ(rig.play(AFTER_RESET), "");
}

TEST_F(BoardTest, soDoTheButtonAndTheChipsOwnResets) {
    make("boot=dtr:high");
    lines(true, false);
    EXPECT_FALSE(answers());
    board->button(rig.now);
    EXPECT_EQ(rig.play(AFTER_RESET "H: D4 2B\nC: 79" AFTER_RESET), "");
    lines(false, false);
    EXPECT_EQ(rig.play("H: D4 2B\nC: 79\nwait 20\nH: 7F\nC: -"), "");
}

TEST_F(BoardTest, theButtonDoesNotReleaseAHeldChip) {
    make("reset=dtr:low");
    board->button(rig.now);
    wait();
    EXPECT_FALSE(answers());
    board->losePower(rig.now);
    wait();
    EXPECT_FALSE(answers());
    lines(true, true);
    wait();
    EXPECT_TRUE(answers());
}

TEST_F(BoardTest, aSilentChipAnswersAgainAfterAReset) {
    Rig faulty("ZV32F403A_1024K", {"silence@1"});
    Board around(wired("reset=dtr:high"), faulty.bootloader, faulty.log, faulty.now);
    EXPECT_EQ(faulty.play(SYNC "H: 02 FD\nC: -"), "");
    around.setLines(true, false, faulty.now);
    around.setLines(false, false, faulty.now);
    EXPECT_EQ(faulty.play(AFTER_RESET "H: 02 FD\nC: 79 04 03 47 70 05 07 79"), "");
}

// What the thirteen rows of the console do, one letter a move: D and R drive that line high, d and r low. The
// line of reset, that of boot, then both into the other state.
constexpr std::array<const char *, 13> rows = {"",   "dD",   "drDR", "dRDr", "Dd",   "DrdR", "DRdr",
                                               "rR", "rdRD", "rDRd", "Rr",   "RdrD", "RDrd"};

// A board for each row: what that row says of the lines. And what becomes of its program, once somebody opens
// the port, by the rows 0 to 12: B the bootloader, a it runs (again), - it is held in reset.
struct BoardCase {
    const char *wiring;
    const char *reached;
};
constexpr std::array<BoardCase, 13> boards = {{
    {"", "aaaaaaaaaaaaa"},
    {"reset=dtr:low", "aBBB---aB-aB-"},
    {"reset=dtr:low,boot=rts:low", "aaBa---aa-aB-"},
    {"reset=dtr:low,boot=rts:high", "aBaB---aB-aa-"},
    {"reset=dtr:high", "----BBB--B--B"},
    {"reset=dtr:high,boot=rts:low", "----aBa--a--B"},
    {"reset=dtr:high,boot=rts:high", "----BaB--B--a"},
    {"reset=rts:low", "aaB-aB-BBB---"},
    {"reset=rts:low,boot=dtr:low", "aaa-aB-aBa---"},
    {"reset=rts:low,boot=dtr:high", "aaB-aa-BaB---"},
    {"reset=rts:high", "---B--B---BBB"},
    {"reset=rts:high,boot=dtr:low", "---a--B---aBa"},
    {"reset=rts:high,boot=dtr:high", "---B--a---BaB"},
}};

// The level of a line at which the chip comes up in its bootloader.
bool atEase(const Wiring &wiring, ControlLine line) {
    const bool bootActive = wiring.boot && wiring.boot->line == line && wiring.boot->active;
    const bool resetAtRest = wiring.reset && wiring.reset->line == line && !wiring.reset->active;
    return bootActive || resetAtRest;
}

char tryRow(const Wiring &wiring, const char *moves) {
    Rig rig("ZV32F403A_1024K");
    Board board(wiring, rig.bootloader, rig.log, rig.now);
    board.setLines(atEase(wiring, ControlLine::dtr), atEase(wiring, ControlLine::rts), rig.now);
    board.button(rig.now);
    EXPECT_EQ(rig.play(AFTER_RESET "H: 21 DE\nC: 79\nH: 08 00 00 00 08\nC: 79"), "");
    board.setLines(true, true, rig.now); // somebody opens the port
    for (const char *move = moves; *move != '\0'; ++move) {
        const bool dtr = *move == 'D' || (*move != 'd' && board.dtr());
        const bool rts = *move == 'R' || (*move != 'r' && board.rts());
        rig.now += 100 * millisecond;
        board.setLines(dtr, rts, rig.now);
    }
    rig.now += 200 * millisecond;
    return board.held() ? '-' : rig.play("H: 7F\nC: 79").empty() ? 'B' : 'a';
}

TEST(AutoConnect, whichRowsReachWhichBoards) {
    for (std::size_t board = 0; board < boards.size(); ++board) {
        std::string reached;
        for (const char *moves : rows)
            reached += tryRow(wired(boards[board].wiring), moves);
        EXPECT_EQ(reached, boards[board].reached) << board;
        EXPECT_TRUE(board == 0 || reached[board] == 'B') << board;
    }
}

TEST(Wiring, isParsed) {
    const Wiring both = wired("boot=rts:high,reset=dtr:low");
    ASSERT_TRUE(both.reset && both.boot);
    EXPECT_EQ(both.reset->line, ControlLine::dtr);
    EXPECT_FALSE(both.reset->active);
    EXPECT_EQ(both.boot->line, ControlLine::rts);
    EXPECT_TRUE(both.boot->active);
    EXPECT_FALSE(wired("reset=rts:high").boot);
    EXPECT_FALSE(wired("boot=dtr:low").reset);
}

TEST(Wiring, whatIsNoneIsRefused) {
    for (const char *text : {"", ",", "reset", "reset=", "reset=dtr", "reset=dtr:", "reset=dtr:up", "reset=cts:low",
                             "reset=dtr:low,", ",reset=dtr:low", "reset=dtr:low,reset=rts:low",
                             "boot=dtr:low,reset=dtr:high", "reset=dtr:low boot=rts:low", "power=dtr:low"}) {
        Wiring wiring;
        std::string error;
        EXPECT_FALSE(parseWiring(text, wiring, error)) << text;
        EXPECT_NE(error.find("\"" + std::string(text) + "\""), std::string::npos) << error;
    }
}

} // namespace
} // namespace sim
