#include "programs/Text.h"

#include <gtest/gtest.h>

namespace {

struct Case {
    const char *name;
    const char *text;
    const char *shown;
    const char *json;
};

const Case cases[] = {
    {"Nothing", "", "", ""},
    {"Words", "Zähler 7 €", "Zähler 7 €", "Zähler 7 €"},
    {"BesideTheRows", "\u00A0 \u061B\u061D \u200D\u2010 \u2029\u202F \u2065\u206A",
     "\u00A0 \u061B\u061D \u200D\u2010 \u2029\u202F \u2065\u206A",
     "\u00A0 \u061B\u061D \u200D\u2010 \u2029\u202F \u2065\u206A"},
    {"Escape", "a\x1B[2J", "a?[2J", "a\x1B[2J"}, // in JSON no text has it
    {"LineEnd", "a\nb", "a?b", "a\nb"},
    {"Delete", "a\x7F", "a?", "a\\u007f"},
    {"SecondControls", "\u0080b\u009F", "?b?", "\\u0080b\\u009f"},
    {"ArabicLetterMark", "a\u061Cb", "a?b", "a\\u061cb"},
    {"Marks", "\u200E\u200F", "??", "\\u200e\\u200f"},
    {"Embeddings", "1\u202A2\u202E3", "1?2?3", "1\\u202a2\\u202e3"},
    {"Isolates", "\u2066\u2069", "??", "\\u2066\\u2069"},
    {"HalfACharacter", "a\xE2\x80", "a\xE2\x80", "a\xE2\x80"},
};

std::string nameOf(const testing::TestParamInfo<Case> &info) {
    return info.param.name;
}

class TextTest : public testing::TestWithParam<Case> {};
INSTANTIATE_TEST_SUITE_P(Texts, TextTest, testing::ValuesIn(cases), nameOf);

} // namespace

TEST_P(TextTest, WhatIsNotHarmlessIsReplaced) {
    EXPECT_EQ(harmless(GetParam().text), GetParam().shown);
    EXPECT_EQ(harmlessJson(GetParam().text), GetParam().json);
    EXPECT_EQ(isHarmless(GetParam().text), std::string(GetParam().text) == GetParam().shown);
}
