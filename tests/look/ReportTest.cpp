#include "look/Report.h"

#include <gtest/gtest.h>

namespace {

TEST(Report, FactsStandUnderEachOther) {
    Section report;
    report.fact("size", Value({12, "12 bytes"}));
    report.fact("sha-256", "ab");
    EXPECT_EQ(report.text(false), "size     12 bytes\nsha-256  ab\n");
    EXPECT_EQ(report.json(), (Json{{"size", 12}, {"sha256", "ab"}}));
}

TEST(Report, TextOfAValueFollowsItsKind) {
    EXPECT_EQ(Value(true).text, "yes");
    EXPECT_EQ(Value(Json(nullptr)).text, "-");
    EXPECT_EQ(Value(Json{1, "b"}).text, "1, b");
    EXPECT_EQ(addressValue(0x800).text, "00000800");
    EXPECT_EQ(addressValue(0x800).json, 2048);
}

TEST(Report, FindingsAreNamedByTheirMarkAndChecksByTheirName) {
    Section report;
    report.finding(Mark::error, "swallowed word", "--a", "write --addr");
    report.check(Mark::good, "permission", "ok");
    EXPECT_EQ(report.text(false), "error       --a -- write --addr\npermission  ok\n");
    const Json finding = {{"name", "swallowed word"}, {"mark", "error"}, {"text", "--a"}, {"cure", "write --addr"}};
    const Json check = {{"name", "permission"}, {"mark", "good"}, {"text", "ok"}};
    EXPECT_EQ(report.json(), (Json{{"findings", Json::array({finding})}, {"checks", Json::array({check})}}));
}

TEST(Report, WorstMarkIsThatOfInnerSectionsToo) {
    Section report;
    EXPECT_EQ(report.worst(), Mark::good);
    Section &inner = report.section("ports", "ttyUSB0");
    report.finding(Mark::warning, "a", "b");
    EXPECT_EQ(report.worst(), Mark::warning);
    inner.check(Mark::error, "c", "d");
    EXPECT_EQ(report.worst(), Mark::error);
}

TEST(Report, SectionsStandFurtherInAndAreLists) {
    Section report;
    report.section("ports", "a").fact("held by", "cat");
    report.section("ports", "b");
    EXPECT_EQ(report.text(false), "a\n  held by  cat\nb\n");
    const Json a = {{"title", "a"}, {"heldBy", "cat"}};
    EXPECT_EQ(report.json(), (Json{{"ports", Json::array({a, {{"title", "b"}}})}}));
}

TEST(Report, NumbersOfATableStandOnTheRight) {
    Section report;
    report.table("ranges", {"first", "bytes"}, {{addressValue(1), Value(5)}, {addressValue(2), Value(123456)}});
    EXPECT_EQ(report.text(false), "ranges\n"
                                  "     first   bytes\n"
                                  "  00000001       5\n"
                                  "  00000002  123456\n");
    EXPECT_EQ(report.json()["ranges"][1], (Json{{"first", 2}, {"bytes", 123456}}));
}

TEST(Report, ColourIsOnlyWhereItIsWanted) {
    Section report;
    report.section("ports", "a").check(Mark::error, "x", "y");
    EXPECT_EQ(report.text(true), "\033[1ma\033[0m\n  \033[31mx  y\033[0m\n");
    EXPECT_EQ(report.text(false), "a\n  x  y\n");
}

TEST(Report, WhatATerminalWouldObeyIsShownAsAQuestionMark) {
    Section report;
    report.fact("name", "a\033[2Jb\n");
    EXPECT_EQ(report.text(false), "name  a?[2Jb?\n");
    EXPECT_EQ(report.json()["name"], "a\033[2Jb\n");
}

} // namespace
