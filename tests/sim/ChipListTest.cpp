// The simulated chips beside the list that the console's maps are made from, and beside a second list of what that one
// does not tell. All three were typed apart.

#include <fstream>
#include <map>
#include <sstream>

#include "tests/sim/Vectors.h"

namespace sim {
namespace {

using Row = std::map<std::string, std::string>; // by the names in the first row

std::vector<std::string> fieldsOf(std::string line) {
    line.erase(std::remove(line.begin(), line.end(), ' '), line.end());
    std::vector<std::string> fields;
    std::istringstream in(line);
    for (std::string field; std::getline(in, field, ',');)
        fields.push_back(field);
    return fields;
}

std::vector<Row> listedChips() {
    std::ifstream file(CHIP_LIST);
    std::vector<std::string> names;
    std::vector<Row> rows;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#')
            continue;
        const std::vector<std::string> fields = fieldsOf(line);
        if (names.empty()) {
            names = fields;
            continue;
        }
        Row row;
        for (std::size_t i = 0; i < std::min(names.size(), fields.size()); ++i)
            row[names[i]] = fields[i];
        rows.push_back(row);
    }
    return rows;
}

std::string formatted(const char *format, unsigned first, unsigned second = 0) {
    char text[32];
    std::snprintf(text, sizeof text, format, first, second);
    return text;
}

// As the console shows it.
std::string bidOf(const ChipFacts &chip) {
    if (chip.oldest)
        return chip.bid == 0 && chip.bidReserve == 0 ? "NA" : "not blank";
    if (chip.bidReserve == 0xFF)
        return formatted("%02X%02X", chip.bid >> 4, chip.bid & 0xF);
    return formatted("%02X%02X", chip.bid, chip.bidReserve);
}

std::string yesOrNo(bool is) {
    return is ? "yes" : "no";
}

Row rowOf(const ChipFacts &chip) {
    const std::string name(chip.name);
    return {{"name", name.substr(0, name.rfind('_'))},
            {"series", formatted("%02X", chip.series)},
            {"pid", formatted(chip.idLength == 2 ? "%04X" : "%08X", chip.pid)},
            {"version", formatted("%u.%u", chip.version >> 4, chip.version & 0xF)},
            {"bid", bidOf(chip)},
            {"flash", std::to_string(chip.flashKb)},
            {"sector", std::to_string(chip.sectorSize)},
            {"perbit", std::to_string(chip.sectorsPerBit)},
            {"spim", yesOrNo(chip.spim)},
            {"levels", yesOrNo(chip.levels)},
            {"slib", yesOrNo(!chip.oldest)},
            {"otp", chip.otpAddress == 0 && chip.otpLength == 0
                        ? "-"
                        : formatted("%X/%u", chip.otpAddress, unsigned(chip.otpLength))}};
}

TEST(ChipList, tellsOfEveryChipWhatTheTableTells) {
    std::vector<Row> listed = listedChips();
    EXPECT_EQ(listed.size(), chipTable().size());
    for (Row &row : listed) {
        row.erase("banks");
        const ChipFacts *chip = findChip(row["name"] + "_" + row["flash"] + "K");
        ASSERT_NE(chip, nullptr) << row["name"];
        EXPECT_EQ(rowOf(*chip), row);
    }
}

// Of a chip the first row counts that its name begins with.
struct Further {
    std::string_view begin;
    char layout;
    std::size_t userDataLength;
    unsigned ramKb;
    bool goToEndResets = false;
};

constexpr Further further[] = {
    {"ZV32F403_1_1024K", 'A', 24, 96, true},
    {"ZV32F403_1", 'A', 24, 64, true},
    {"ZV32F403_2_512K", 'A', 24, 64, true},
    {"ZV32F403_2_256K", 'A', 24, 64, true},
    {"ZV32F403_2", 'A', 24, 32, true},
    {"ZV32F413_256K", 'A', 24, 64},
    {"ZV32F413", 'A', 24, 32},
    {"ZV32F403A", 'A', 24, 96},
    {"ZV32F407", 'A', 24, 96},
    {"ZV32A403A", 'A', 24, 96},
    {"ZV32F415_256K", 'B', 512, 32},
    {"ZV32F415", 'B', 16, 32},
    {"ZV32WB415", 'B', 512, 32},
    {"ZV32F421", 'C', 256, 16},
    {"ZV32F425", 'C', 256, 20},
    {"ZV32L021", 'C', 256, 8},
    {"ZV32F423", 'C', 256, 48},
    {"ZV32M41", 'C', 256, 32},
    {"ZV32G412", 'C', 256, 32},
    {"ZV32A423", 'C', 256, 48},
    {"ZV32F405", 'D', 256, 96},
    {"ZV32F402", 'D', 256, 64},
    {"ZV32F45", 'D', 256, 192},
    {"ZV32F490", 'D', 256, 96},
    {"ZV32F435_4032K", 'E', 2048, 384},
    {"ZV32F435_1984K", 'E', 2048, 384},
    {"ZV32F435", 'E', 256, 384},
    {"ZV32F437_4032K", 'E', 2048, 384},
    {"ZV32F437", 'E', 256, 384},
    {"ZV32F422", 'F', 256, 16},
    {"ZV32F426", 'F', 256, 16},
};

TEST(ChipList, optionBytesMemoryAndRestartAreThoseOfTheSecondList) {
    for (const ChipFacts &chip : chipTable()) {
        const auto row = std::find_if(std::begin(further), std::end(further), [&](const Further &one) {
            return chip.name.substr(0, one.begin.size()) == one.begin;
        });
        ASSERT_NE(row, std::end(further)) << chip.name;
        EXPECT_EQ(chip.layout, row->layout) << chip.name;
        EXPECT_EQ(chip.userDataLength, row->userDataLength) << chip.name;
        EXPECT_EQ(chip.ramKb, row->ramKb) << chip.name;
        EXPECT_EQ(chip.goToEndResets, row->goToEndResets) << chip.name;
    }
}

} // namespace
} // namespace sim
