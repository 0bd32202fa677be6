#include "line/view/Screen.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "line/view/Cell.h"
#include "line/view/EventLines.h"

namespace {

constexpr Glyphs ascii{false, false};
constexpr Glyphs utf8{true, false};
constexpr Glyphs coloured{true, true};

NestState nest(const std::string &name, Phase phase, const std::string &why = "") {
    NestState state{name, phase};
    state.why = why;
    state.number = 4294967295;
    state.step = "write";
    state.percent = 63;
    return state;
}

State lineOf(std::size_t nests, const std::string &why = "3 failures in a row") {
    constexpr Phase phases[] = {Phase::empty, Phase::ready,   Phase::busy,  Phase::pass,
                                Phase::fail,  Phase::refused, Phase::closed};
    State state;
    state.title = "ZX100";
    state.plan = "0123456789";
    state.order = why;
    state.notice = why;
    state.failures = {{why, 1}};
    for (std::size_t i = 0; i < nests; ++i)
        state.nests.push_back(nest("nest-" + std::to_string(i + 10), phases[i % std::size(phases)], why));
    return state;
}

std::string joined(const std::vector<std::string> &lines) {
    std::string all;
    for (const std::string &line : lines)
        all += line + '\n';
    return all;
}

// Without the sequences that the view itself puts in.
std::string withoutColour(std::string text) {
    for (std::size_t at; (at = text.find("\033[")) != text.npos;)
        text.erase(at, text.find('m', at) + 1 - at);
    return text;
}

} // namespace

TEST(ColumnsTest, ACharacterTakesAsManyAsATerminalGivesIt) {
    EXPECT_EQ(columnsOf(shown("abc", utf8)), 3U);
    EXPECT_EQ(columnsOf(shown("Gerät", utf8)), 5U);
    EXPECT_EQ(columnsOf(shown("基板", utf8)), 4U);
    EXPECT_EQ(cut("基板基板", 6, utf8), "基板…");
    EXPECT_EQ(columnsOf(cut("基板基板", 6, utf8)), 5U);
    EXPECT_EQ(cut("abcdef", 4, utf8), "abc…");
    EXPECT_EQ(cut("abcdef", 4, ascii), "abc~");
    EXPECT_EQ(cut("abcd", 4, ascii), "abcd");
    EXPECT_EQ(cut("abcd", 0, ascii), "");
    EXPECT_EQ(filled("基", 4), "基  ");
}

TEST(ColumnsTest, WhatATerminalCannotShowIsAQuestionMark) {
    EXPECT_EQ(shown("a\033[2Jb\r\n\t\x7F", utf8), "a?[2Jb????");
    EXPECT_EQ(shown("a\u009b31m", utf8), "a?31m");
    EXPECT_EQ(shown("a\xFF\xC3", utf8), "a??");         // no UTF-8, and half of a character
    EXPECT_EQ(shown("a\u202eb\u200bc", utf8), "a?b?c"); // what turns a line around, and what takes no column
    EXPECT_EQ(shown("Gerät", ascii), "Ger?t");
    EXPECT_EQ(shown(std::string("a\0b", 3), utf8), "a?b");
}

TEST(ScreenTest, NoLineIsWiderThanTheScreenAndNoneMoreThanItHas) {
    for (const std::size_t nests : {0, 1, 7, 16, 64})
        for (const ScreenSize size : {ScreenSize{80, 24}, {200, 50}, {20, 5}, {1, 1}, {33, 2}, {500, 100}})
            for (const Glyphs &glyphs : {ascii, utf8, coloured}) {
                const auto lines = screenOf(lineOf(nests, "基板 no answer: boot pin, cable"), size, glyphs);
                EXPECT_LE(lines.size(), size.lines);
                for (const std::string &line : lines)
                    EXPECT_LE(columnsOf(withoutColour(line)), size.columns) << nests << ' ' << line;
            }
}

TEST(ScreenTest, All64NestsAreOnTheSmallScreenAndNoNumberIsCut) {
    const State state = lineOf(64);
    const std::string screen = joined(screenOf(state, {80, 24}, utf8));
    for (const NestState &one : state.nests)
        EXPECT_NE(screen.find(one.name), screen.npos) << one.name;
    std::size_t numbers = 0;
    for (std::size_t at = 0; (at = screen.find("PASS", at)) != screen.npos; at += 4)
        numbers += screen.compare(at, 15, "PASS 4294967295") == 0 ? 1 : 0;
    EXPECT_EQ(numbers, 9U);
    std::size_t keys = 0; // of those that are closed or ready
    for (std::size_t at = 0; (at = screen.find("press ", at)) != screen.npos; ++at)
        ++keys;
    EXPECT_EQ(keys, 18U);
}

TEST(ScreenTest, TellsWhereNotAllNestsAreShown) {
    EXPECT_NE(joined(screenOf(lineOf(64), {80, 10}, ascii)).find("the screen is too small for all nests"),
              std::string::npos);
    EXPECT_EQ(joined(screenOf(lineOf(64), {80, 25}, ascii)).find("the screen is too small"), std::string::npos);
}

TEST(ScreenTest, TheCellsOfEveryPhase) {
    const auto cell = [](Phase phase, const char *why = "") {
        return cellOf(nest("A1", phase, why), '8', 2, 40, utf8);
    };
    EXPECT_EQ(cell(Phase::empty), filled(" A1  empty", 40));
    EXPECT_EQ(cell(Phase::ready), filled(" A1  ready   press 8", 40));
    EXPECT_EQ(cell(Phase::busy), filled(" A1  write    63 %  ███████████▉", 40));
    EXPECT_EQ(cell(Phase::pass), filled(" A1  PASS    4294967295  take out", 40));
    EXPECT_EQ(cell(Phase::fail, "no answer"), filled(" A1  FAIL    no answer", 40));
    EXPECT_EQ(cell(Phase::refused, "already made"), filled(" A1  REFUSED already made", 40));
    EXPECT_EQ(cell(Phase::closed, "3 failures"), filled(" A1  CLOSED  3 failures, press 8", 40));
    EXPECT_EQ(cell(Phase::closed, "30 failures in a row"), filled(" A1  CLOSED  30 failures in a…, press 8", 40));
    EXPECT_EQ(cellOf(nest("A1", Phase::busy), '8', 2, 40, ascii), filled(" A1  write    63 %  ###########", 40));
    EXPECT_EQ(cellOf(nest("A1", Phase::pass), '8', 2, 20, coloured), " A1 \033[1;32mPASS\033[0m 4294967295 ");
    NestState unnumbered{"A1", Phase::pass};
    EXPECT_EQ(cellOf(unnumbered, '8', 2, 40, utf8), filled(" A1  PASS    take out", 40));
    NestState beyond = nest("A1", Phase::busy);
    beyond.percent = 1000000;
    EXPECT_EQ(cellOf(beyond, '8', 2, 40, ascii), filled(" A1  write   100 %  ###################", 40));
}

TEST(ScreenTest, ALongTitleMakesRoomForTheFacts) {
    State state = lineOf(1, "");
    state.title = std::string(200, 'x');
    state.quantity = 1000;
    state.passed = 1;
    state.failed = 1;
    const std::string head = screenOf(state, {80, 24}, ascii).front();
    EXPECT_EQ(columnsOf(head), 80U);
    EXPECT_NE(head.find("x~   plan 01234567   0 of 1000   50.0 %"), head.npos);
}

TEST(EventLinesTest, AreWhatHasChanged) {
    State before = lineOf(2, "");
    EXPECT_EQ(joined(eventLines(nullptr, before, ascii)), "ZX100   plan 01234567   0 of 0\nnest-11 ready\n");
    State now = before;
    EXPECT_EQ(joined(eventLines(&before, now, ascii)), "");
    now.nests[0].phase = Phase::busy;
    now.undelivered = 2;
    now.notice = "wait";
    EXPECT_EQ(joined(eventLines(&before, now, ascii)), "wait\nnest-10 write\nnot delivered: 2\n");
    before = now;
    now.nests[0].percent = 64;
    EXPECT_EQ(joined(eventLines(&before, now, ascii)), "");
    now.nests[0].phase = Phase::pass;
    now.nests[1] = nest("nest-11", Phase::fail, "no answer: boot pin, cable");
    EXPECT_EQ(joined(eventLines(&before, now, ascii)),
              "nest-10 PASS 4294967295\nnest-11 FAIL no answer: boot pin, cable\n");
}
