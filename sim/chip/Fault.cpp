#include "sim/chip/Fault.h"

#include <charconv>
#include <string_view>

namespace sim {

namespace {

struct FaultName {
    std::string_view name;
    FaultKind kind;
    Direction direction;
    std::uint64_t first;    // the lowest number that may stand behind the @
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
    {"powercut", FaultKind::powerCut, Direction::rx, 0, "[:flash|options]"},
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
    return fault.cells.has_value();
}

// What stands behind the number; parts[0] is the number itself.
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

std::size_t index(Direction direction) {
    return direction == Direction::rx ? 0 : 1;
}
std::size_t index(CellKind cells) {
    return cells == CellKind::flash ? 0 : 1;
}

void apply(const Fault &fault, ByteEffect &effect) {
    constexpr unsigned defaultMask = 0x10;
    if (fault.kind == FaultKind::lost) {
        effect.lost = true;
    } else if (fault.kind == FaultKind::doubled) {
        effect.doubled = true;
    } else if (fault.kind == FaultKind::late) {
        effect.lateMs += fault.value.value_or(0);
    } else if (fault.kind == FaultKind::damage) {
        effect.damage = static_cast<std::uint8_t>(fault.value.value_or(defaultMask));
    } else {
        effect.hangup = true;
        effect.replugMs = fault.value;
    }
}

bool befallsBytes(FaultKind kind) {
    return kind != FaultKind::nack && kind != FaultKind::silence && kind != FaultKind::powerCut;
}

} // namespace

bool Faults::add(const std::string &spec, std::string &error) {
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
            faults_.push_back(fault);
            return true;
        }
        error = "bad fault \"" + spec + "\": write " + std::string(row.name) + "@N" + row.parameters;
        return false;
    }
    error = "unknown fault \"" + spec + "\": there are" + knownFaults();
    return false;
}

void Faults::happens(Fault &fault) {
    fault.spent = true;
    if (listener_)
        listener_(fault.spec);
}

ByteEffect Faults::byte(Direction direction) {
    const std::uint64_t number = ++bytes_[index(direction)];
    ByteEffect effect;
    for (Fault &fault : faults_) {
        if (!fault.spent && befallsBytes(fault.kind) && fault.direction == direction && fault.at == number) {
            happens(fault);
            apply(fault, effect);
        }
    }
    return effect;
}

bool Faults::frame(std::uint8_t opcode) {
    ++frames_;
    const std::uint64_t ofOpcode = ++framesByOpcode_[opcode];
    refusedAnswer_.reset();
    bool answers = true;
    for (Fault &fault : faults_) {
        const bool here = fault.opcode ? fault.opcode == opcode && fault.at == ofOpcode : fault.at == frames_;
        if (fault.spent || !here || (fault.kind != FaultKind::nack && fault.kind != FaultKind::silence))
            continue;
        happens(fault);
        if (fault.kind == FaultKind::silence)
            answers = false;
        else
            refusedAnswer_ = fault.value.value_or(0);
    }
    return answers;
}

bool Faults::refuses(unsigned answer) {
    return refusedAnswer_ == answer;
}

bool Faults::powerFails(CellKind cells) {
    for (Fault &fault : faults_) {
        if (fault.spent || fault.kind != FaultKind::powerCut || (fault.cells && fault.cells != cells))
            continue;
        if (fault.at == (fault.cells ? steps_[index(cells)] : steps_[0] + steps_[1])) {
            happens(fault);
            return true;
        }
    }
    return false;
}

bool Faults::programmed(CellKind cells) {
    ++steps_[index(cells)];
    return powerFails(cells);
}

} // namespace sim
