#include "line/books/UnitCsv.h"

#include <sstream>

#include <gtest/gtest.h>

namespace {

constexpr char nothing[] = ",,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,";

// A field of a row by the name of its column, where no field before it has a comma in it.
std::string field(const std::string &record, const std::string &column) {
    CsvRows rows;
    std::istringstream head(csvHead());
    std::istringstream row(rows.of(record));
    std::string name;
    std::string value;
    while (std::getline(head, name, ',') && name != column)
        std::getline(row, value, ',');
    std::getline(row, value, column == "text" ? '\n' : ',');
    return value;
}

struct Told {
    const char *record;
    const char *column;
    const char *value;
};

class UnitCsv : public ::testing::TestWithParam<Told> {};

TEST_P(UnitCsv, TellsWhatTheRecordSays) {
    EXPECT_EQ(field(GetParam().record, GetParam().column), GetParam().value) << GetParam().record;
}

INSTANTIATE_TEST_SUITE_P(
    Records, UnitCsv,
    ::testing::Values(
        Told{R"({"nest":"A1"})", "nest", "A1"}, //
        Told{R"({"attempt":4711,"nest":"A1"})", "attempt", "4711"}, Told{R"({"verified":true})", "verified", "true"},
        Told{R"({"verified":false})", "verified", "false"}, Told{R"({"order":null,"nest":"A1"})", "nest", "A1"},
        Told{R"({"order":null})", "order", ""}, Told{R"({"order":"null"})", "order", "null"},
        Told{R"({"order":"a","order":null})", "order", ""}, Told{R"({"code":-12})", "code", "-12"},
        Told{R"({"ms":{"write":7900,"run":1},"code":3})", "ms_write", "7900"},
        Told{R"({"ms":{"write":7900},"code":3})", "code", "3"}, Told{R"({"ms":{},"code":3})", "code", "3"},
        Told{R"({"write":1,"run":2})", "ms_write", ""},
        Told{" {\t\"code\" :\r 3 ,\n \"nest\" : \"A1\" } ", "nest", "A1"},
        Told{R"({"other":{"nest":"A2"},"nest":"A1"})", "nest", "A1"}, Told{R"({"order":"a\\"})", "order", "a\\"},
        Told{R"({"order":"\\\"","nest":"A1"})", "nest", "A1"}, Told{R"({"n\u0065st":"A1"})", "nest", "A1"},
        Told{R"({"order":"\u00e4\u20ac"})", "order", "\xC3\xA4\xE2\x82\xAC"},
        Told{"{\"order\":\"\xC3\xA4\"}", "order", "\xC3\xA4"},
        Told{R"({"order":"a\u001b\u009b\n\u007fb"})", "order", "a????b"},
        Told{"{\"order\":\"a\xC2\x9B\x7F\"}", "order", "a??"},
        Told{R"({"text":"1,2"})", "text", "\"1,2\",,,,,,,,,,,,,,"},
        Told{R"({"text":"a\"b\""})", "text", "\"a\"\"b\"\"\",,,,,,,,,,,,,,"}));

// Each of these begins as a record.
TEST(UnitCsvRow, OfWhatIsNoRecordIsARowOfNothing) {
    CsvRows rows;
    for (const char *record :
         {"", "{", "[]", "4711", R"("nest")", R"({"nest":"A1")", R"({"nest":"A1)", R"({"nest":"A1\)",
          R"({"nest":"A1"}})", R"({"nest":"A1",})", R"({"nest":"A1" "order":"a"})", R"({"nest" "A1"})",
          R"({"nest":"A1","order":})", R"({"nest":"A1","order":"\q"})", R"({"nest":"A1","order":["a"]})",
          R"({"nest":"A1","order":"\ud800"})", R"({"nest":"A1","ms":{"write":{"a":1}}})",
          R"({"nest":"A1","ms":{"write":1})", R"({nest:"A1"})"})
        EXPECT_EQ(rows.of(record), nothing) << record;
}

TEST(UnitCsvRow, HasNothingOfTheOneBefore) {
    CsvRows rows;
    EXPECT_NE(rows.of(R"({"attempt":1,"nest":"A1"})"), nothing);
    EXPECT_EQ(rows.of("{}"), nothing);
}

} // namespace
