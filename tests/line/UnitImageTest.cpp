#include "line/plan/UnitImage.h"

#include <gtest/gtest.h>

#include "line/plan/UnitBytes.h"
#include "programs/Status.h"

namespace {

const UnitFacts facts = {0x01020304, std::string("\x59\xa1\0\x0f\x10\x11\x12\x13\x14\x15\x16\x17", 12), 1795284260,
                         "PO-88"};

UnitDatum datum(UnitValue value, UnitForm form, std::uint32_t size, const std::string &text = "") {
    UnitDatum made{};
    made.value = value;
    made.form = form;
    made.size = size;
    made.text = text;
    made.place.key = "unit[0].at";
    return made;
}

std::string filled(std::string text, std::size_t size) {
    text.resize(size, '\0');
    return text;
}

} // namespace

TEST(UnitBytesTest, MakesEachValueInEachForm) {
    EXPECT_EQ(unitBytes(datum(UnitValue::number, UnitForm::u32le, 4), facts), "\x04\x03\x02\x01");
    EXPECT_EQ(unitBytes(datum(UnitValue::number, UnitForm::u32be, 4), facts), "\x01\x02\x03\x04");
    EXPECT_EQ(unitBytes(datum(UnitValue::number, UnitForm::ascii, 10), facts), filled("16909060", 10));
    EXPECT_EQ(unitBytes(datum(UnitValue::uid, UnitForm::hex, 12), facts), facts.uid);
    EXPECT_EQ(unitBytes(datum(UnitValue::uid, UnitForm::ascii, 24), facts), "59a1000f1011121314151617");
    EXPECT_EQ(unitBytes(datum(UnitValue::time, UnitForm::u32be, 4), facts), "\x6b\x01\xdd\x24");
    EXPECT_EQ(unitBytes(datum(UnitValue::time, UnitForm::ascii, 20), facts), "2026-11-21T18:04:20Z");
    EXPECT_EQ(unitBytes(datum(UnitValue::order, UnitForm::ascii, 8), facts), filled("PO-88", 8));
    EXPECT_EQ(unitBytes(datum(UnitValue::text, UnitForm::hex, 3, "00fFa5"), facts), std::string("\0\xff\xa5", 3));
    EXPECT_EQ(unitBytes(datum(UnitValue::text, UnitForm::ascii, 24, "A{number:010}B{order}"), facts),
              filled("A0016909060BPO-88", 24));
}

TEST(UnitBytesTest, TakesWhatAHookSupplies) {
    UnitFacts unit = facts;
    const auto supplied = [&](UnitForm form, std::uint32_t size, const std::string &value) {
        unit.supply = {{"key", value}};
        UnitDatum made = datum(UnitValue::supply, form, size);
        made.supply = "key";
        return unitBytes(made, unit);
    };
    EXPECT_EQ(supplied(UnitForm::ascii, 6, "abc"), filled("abc", 6));
    EXPECT_EQ(supplied(UnitForm::hex, 3, "00fFa5"), std::string("\0\xff\xa5", 3));
    EXPECT_EQ(supplied(UnitForm::u32le, 4, "4294967294"), "\xfe\xff\xff\xff");
    EXPECT_EQ(supplied(UnitForm::u32be, 4, "16909060"), "\x01\x02\x03\x04");
    EXPECT_THROW(supplied(UnitForm::ascii, 2, "abc"), Refusal);
    EXPECT_THROW(supplied(UnitForm::ascii, 6, "a\x1b[2J"), Refusal);
    EXPECT_THROW(supplied(UnitForm::ascii, 6, ""), Refusal);
    EXPECT_THROW(supplied(UnitForm::hex, 3, "00ff"), Refusal);
    EXPECT_THROW(supplied(UnitForm::hex, 2, "00fg"), Refusal);
    for (const char *wrong : {"", "-1", "0x10", "4294967296", "99999999999999999999999"})
        EXPECT_THROW(supplied(UnitForm::u32le, 4, wrong), Refusal) << wrong;
    unit.supply.clear();
    EXPECT_THROW(unitBytes(datum(UnitValue::supply, UnitForm::ascii, 4), unit), Refusal);
}

TEST(UnitBytesTest, RefusesATextThatHasNoRoom) {
    EXPECT_EQ(unitBytes(datum(UnitValue::order, UnitForm::ascii, 5), facts), "PO-88");
    EXPECT_THROW(unitBytes(datum(UnitValue::order, UnitForm::ascii, 4), facts), Refusal);
}

TEST(UnitImageTest, LaysTheDataIntoTheImage) {
    const Runs image = {{0x100, "abcdefgh"}, {0x110, "ijkl"}, {0x200, "mn"}};
    const struct {
        std::uint32_t at;
        const char *digits;
        Runs wanted;
    } cases[] = {
        {0x102, "5858", {{0x100, "abXXefgh"}, {0x110, "ijkl"}, {0x200, "mn"}}},
        {0x106, "58585858", {{0x100, "abcdefXXXX"}, {0x110, "ijkl"}, {0x200, "mn"}}},
        {0x108, "5858585858585858", {{0x100, "abcdefghXXXXXXXXijkl"}, {0x200, "mn"}}},
        {0x0FE, "585858", {{0x0FE, "XXXbcdefgh"}, {0x110, "ijkl"}, {0x200, "mn"}}},
        {0x120, "58", {{0x100, "abcdefgh"}, {0x110, "ijkl"}, {0x120, "X"}, {0x200, "mn"}}},
        {0x010, "58", {{0x010, "X"}, {0x100, "abcdefgh"}, {0x110, "ijkl"}, {0x200, "mn"}}},
        {0x300, "58", {{0x100, "abcdefgh"}, {0x110, "ijkl"}, {0x200, "mn"}, {0x300, "X"}}},
    };
    for (const auto &one : cases) {
        Job job{};
        job.units = {datum(UnitValue::text, UnitForm::hex,
                           static_cast<std::uint32_t>(std::string(one.digits).size() / 2), one.digits)};
        job.units[0].at = one.at;
        const Runs runs = unitImageOf(job, image, facts);
        ASSERT_EQ(runs.size(), one.wanted.size()) << one.at;
        for (std::size_t i = 0; i < runs.size(); ++i) {
            EXPECT_EQ(runs[i].address, one.wanted[i].address) << one.at;
            EXPECT_EQ(runs[i].bytes, one.wanted[i].bytes) << one.at;
        }
    }
}

TEST(UnitImageTest, FillsWordsUp) {
    const std::string f(1, '\xFF');
    const Runs runs = wholeWords({{0x101, "a"}, {0x103, "b"}, {0x104, "cd"}, {0x10A, "efghij"}, {0x200, "klmn"}});
    ASSERT_EQ(runs.size(), 2u);
    EXPECT_EQ(runs[0].address, 0x100u);
    EXPECT_EQ(runs[0].bytes, f + "a" + f + "bcd" + f + f + f + f + "efghij");
    EXPECT_EQ(runs[1].address, 0x200u);
    EXPECT_EQ(runs[1].bytes, "klmn");
}
