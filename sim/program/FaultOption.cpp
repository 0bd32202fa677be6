#include "sim/program/FaultOption.h"

#include <charconv>
#include <string_view>
#include <vector>

namespace sim {

namespace {

struct FaultName {
    std::string_view name;
    FaultKind kind;
    Direction direction;
    std::uint64_t first;    // the lowest number that may stand after the @
    const char *parameters; // what may follow it, as `--help` writes it
};

constexpr FaultName names[] = {
    {"nack", FaultKind::nack, Direction::rx, 1, "[:OPCODE[:ANSWER]]"},
    {"silence", FaultKind::silence, Direction::rx, 1, ""},
    {"rx-lost", FaultKind::lost, Direction::rx, 1, ""},
    {"tx-lost", FaultKind::lost, Direction::tx, 1, ""},
    {"rx-late", FaultKind::late, Direction::rx, 1, ":MS"},
    {"tx-late", FaultKind::late, Direction::tx, 1, ":MS"},
    {"rx-double", FaultKind::doubled, Direction::rx, 1, ""},
    {"tx-double", FaultKind::doubled, Direction::tx, 1, ""},
    {"rx-damage", FaultKind::damage, Direction::rx, 1, "[:MASK]"},
    {"tx-damage", FaultKind::damage, Direction::tx, 1, "[:MASK]"},
    {"hangup", FaultKind::hangup, Direction::rx, 1, "[:MS]"},
    {"tx-hangup", FaultKind::hangup, Direction::tx, 1, "[:MS]"},
    {"powercut", FaultKind::powerCut, Direction::rx, 0, "[:flash|options|erase]"},
};

template <typename Number>
bool parseNumber(std::string_view text, int base, Number &number) {
    const char *end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number, base);
    return result.ec == std::errc() && result.ptr == end;
}

std::vector<std::string_view> split(std::string_view text) {
    std::vector<std::string_view> parts;
    for (;;) {
        const std::size_t colon = text.find(':');
        parts.push_back(text.substr(0, colon));
        if (colon == std::string_view::npos)
            return parts;
        text.remove_prefix(colon + 1);
    }
}

bool parseValue(std::string_view text, int base, unsigned limit, Fault &fault) {
    unsigned value = 0;
    if (!parseNumber(text, base, value) || value > limit)
        return false;
    fault.value = value;
    return true;
}

bool parseNack(const std::vector<std::string_view> &parts, Fault &fault) {
    if (parts.size() > 1 && parts[1] != "any") {
        std::uint8_t opcode = 0;
        if (!parseNumber(parts[1], 16, opcode))
            return false;
        fault.opcode = opcode;
    }
    return parts.size() < 3 || parseValue(parts[2], 10, 9, fault);
}

bool parseCells(std::string_view text, Fault &fault) {
    if (text == "flash")
        fault.cells = CellKind::flash;
    else if (text == "options")
        fault.cells = CellKind::options;
    else if (text == "erase")
        fault.cells = CellKind::erasing;
    const bool isBeforeTheFirst = fault.cells == CellKind::erasing && fault.at == 0; // nobody asks there
    return fault.cells.has_value() && !isBeforeTheFirst;
}

// What stands after the number; parts[0] is the number itself.
bool parseParameters(const std::vector<std::string_view> &parts, Fault &fault) {
    constexpr unsigned longestMs = 3600000;
    const std::size_t given = parts.size() - 1;
    switch (fault.kind) {
    case FaultKind::nack: return given <= 2 && parseNack(parts, fault);
    case FaultKind::late: return given == 1 && parseValue(parts[1], 10, longestMs, fault);
    case FaultKind::hangup: return given == 0 || (given == 1 && parseValue(parts[1], 10, longestMs, fault));
    case FaultKind::damage:
        return given == 0 || (given == 1 && parseValue(parts[1], 16, 0xFF, fault) && fault.value != 0U);
    case FaultKind::powerCut: return given == 0 || (given == 1 && parseCells(parts[1], fault));
    case FaultKind::silence:
    case FaultKind::lost:
    case FaultKind::doubled: break;
    }
    return given == 0;
}

std::string knownFaults() {
    std::string text;
    for (const FaultName &row : names)
        text += "\n  " + std::string(row.name) + "@N" + row.parameters;
    return text;
}

} // namespace

bool addFault(Faults &faults, const std::string &spec, std::string &error) {
    const std::string_view text = spec;
    const std::size_t at = text.find('@');
    for (const FaultName &row : names) {
        if (at == std::string_view::npos || row.name != text.substr(0, at))
            continue;
        Fault fault;
        fault.kind = row.kind;
        fault.direction = row.direction;
        fault.spec = spec;
        const std::vector<std::string_view> parts = split(text.substr(at + 1));
        if (parseNumber(parts[0], 10, fault.at) && fault.at >= row.first && parseParameters(parts, fault)) {
            faults.add(fault);
            return true;
        }
        error = "bad fault \"" + spec + "\": write " + std::string(row.name) + "@N" + row.parameters;
        return false;
    }
    error = "unknown fault \"" + spec + "\": there are" + knownFaults();
    return false;
}

} // namespace sim
