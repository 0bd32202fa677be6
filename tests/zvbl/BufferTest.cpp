// What a chip may answer at most, and the room that the caller has for it.

#include <algorithm>
#include <cstring>

#include "tests/zvbl/LinkFixture.h"

namespace {

class BufferTest : public LinkFixture {};

// The caller has room for the length that it was told.
TEST_F(BufferTest, AnIdThatChangesItsLengthIs5) {
    BYTE length = 0, id[2] = {};
    EXPECT_EQ(play({{"02 FD", "79 01 02 42 79"}}, [&] { return ZVBL_GET_ID(link, &length, nullptr); }), 0);
    EXPECT_EQ(play({{"02 FD", "79 04 03 47 70 05 07 79"}}, [&] { return ZVBL_GET_ID(link, &length, id); }), 5);
}

// The caller asks twice anyway, and an answer has no checksum.
TEST_F(BufferTest, TwoIdentifiersThatDifferAreSettledByAThird) {
    const Turn right{"02 FD", "79 01 02 42 79"};
    const Turn wrong{"02 FD", "79 01 02 43 79"};
    const Turn other{"02 FD", "79 01 02 44 79"};
    const auto idAfter = [&](const Script &first, const Script &second, int expected) {
        EXPECT_EQ(Interface_Open(link), 0);
        BYTE length = 0, id[2] = {};
        EXPECT_EQ(play(first, [&] { return ZVBL_GET_ID(link, &length, nullptr); }), 0);
        EXPECT_EQ(play(second, [&] { return ZVBL_GET_ID(link, &length, id); }), expected);
        return hex(zvbl::Bytes(id, id + 2));
    };
    EXPECT_EQ(idAfter({wrong}, {right, right}, 0), "02 42");
    EXPECT_EQ(idAfter({right}, {wrong, right}, 0), "02 42");
    EXPECT_EQ(idAfter({right}, {wrong, other}, 5), "00 00");
    EXPECT_EQ(idAfter({right}, {wrong, {"02 FD", "79 00 42 79"}}, 5), "00 00");
}

// A PID, or a PID and a series. The caller's buffer holds no more.
TEST_F(BufferTest, AnIdentifierOfAnotherLengthIs5AndNothingIsCopied) {
    for (const std::size_t size : {1U, 3U, 4U, 6U, 256U}) {
        SCOPED_TRACE(size);
        zvbl::Bytes answer{0x79, static_cast<std::uint8_t>(size - 1)};
        answer.resize(2 + size, 0x42);
        answer.push_back(0x79);
        const Script script = {{hex("02 FD"), hex(answer)}};
        BYTE length = 0xAA, id[300] = {};
        EXPECT_EQ(play(script, [&] { return ZVBL_GET_ID(link, &length, nullptr); }), 5);
        EXPECT_EQ(length, 0xAA);
        EXPECT_EQ(play(script, [&] { return ZVBL_GET_ID(link, &length, id); }), 5);
        EXPECT_EQ(std::count(std::begin(id), std::end(id), 0x42), 0);
    }
}

// The most that a counted reply can hold: it stays in the record.
TEST_F(BufferTest, AListOf255OpcodesFillsTheRecordAndNoMore) {
    struct {
        Commands commands;
        BYTE after[16];
    } room;
    std::memset(&room, 0x55, sizeof room);
    zvbl::Bytes answer{0x79, 0xFF, 0x21};
    for (int opcode = 0; opcode < 255; ++opcode)
        answer.push_back(static_cast<std::uint8_t>(opcode));
    answer.push_back(0x79);
    BYTE version = 0;
    EXPECT_EQ(play({{"00 FF", hex(answer)}}, [&] { return ZVBL_GET(link, &version, &room.commands); }), 0);
    EXPECT_EQ(room.commands.ACCESS_LEVEL_PROTECT_CMD, 1);
    EXPECT_EQ(std::count(std::begin(room.after), std::end(room.after), 0x55), 16);
}

} // namespace
