#include "tests/faults/Check.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>

#include "app/Process.h"
#include "foundation/ResultMessages.h"
#include "sim/chip/ChipTable.h"
#include "sim/chip/OptionBytes.h"

namespace faults {
namespace {

constexpr sim::Nanoseconds longestRun = 15 * 60 * sim::second; // of all time limits of a line together

std::string wordsOf(const CommandLine &line, const std::string &words) {
    return std::string(links[line.link].words) + " " + words;
}

// The number of the last call of a line, without the closing of the link, which belongs to no action.
std::size_t lastCallOf(const Ending &ending) {
    std::size_t last = ending.calls.size();
    const auto closes = [](Function function) {
        return function == Function::Interface_Close || function == Function::Interface_is_Open;
    };
    while (last > 0 && closes(ending.calls[last - 1].function))
        --last;
    return last;
}

bool changed(const zvbl::Bytes &before, const zvbl::Bytes &after, std::size_t from, std::size_t size) {
    const auto first = static_cast<std::ptrdiff_t>(from);
    const auto last = static_cast<std::ptrdiff_t>(from + size);
    return !std::equal(before.begin() + first, before.begin() + last, after.begin() + first);
}

std::size_t unitOf(const Good &good, const std::string &section) {
    constexpr std::size_t spimSector = 4096;
    if (section == "flash")
        return sim::findChip(good.line.chip)->sectorSize;
    return section == "SPIM" ? spimSector : good.start.at(section).size();
}

// A sector that the good run leaves as it was stays so.
void checkCells(const Good &good, const Ending &ending, Complaints &complaints) {
    for (const auto &[section, before] : good.start) {
        const std::size_t unit = unitOf(good, section);
        for (std::size_t at = 0; at < before.size(); at += unit) {
            const bool mayChange = changed(before, good.ending.memory.at(section), at, unit);
            if (!mayChange && changed(before, ending.memory.at(section), at, unit))
                complaints.push_back(section + " changed at " + std::to_string(at));
        }
    }
}

void checkFiles(const Good &good, const Ending &ending, Complaints &complaints) {
    if (ending.files.size() != good.files.size())
        complaints.push_back("the directory has other files");
    for (const auto &[name, text] : ending.files) {
        const auto before = good.files.find(name);
        const bool isOld = before != good.files.end() && text == before->second;
        const auto after = good.ending.files.find(name);
        if (!isOld && (after == good.ending.files.end() || text != after->second))
            complaints.push_back("the file " + name + " is neither old nor new");
    }
}

std::uint8_t accessByte(const Memory &memory) {
    const zvbl::Bytes &pairs = memory.at("option bytes");
    return static_cast<std::uint8_t>(~pairs[1]) == pairs[0] ? pairs[0] : 0xFF;
}

bool isLockedForEver(const Good &good, const Memory &memory) {
    return sim::findChip(good.line.chip)->levels && accessByte(memory) == sim::accessHigh;
}

// The line of a text that is not empty, from the end.
std::string lastLine(const std::string &text) {
    std::istringstream stream(text);
    std::string last;
    for (std::string line; std::getline(stream, line);)
        if (!line.empty())
            last = line;
    return last;
}

std::string showStatus(const Ending &ending) {
    return "status " + std::to_string(ending.status) + ", \"" + lastLine(ending.text) + "\"";
}

} // namespace

bool hasDone(const Good &good, const Ending &ending) {
    return ending.status == 0 && ending.memory == good.ending.memory && ending.files == good.ending.files;
}

Good runWell(Machine &machine, const CommandLine &line) {
    Good good{line, wordsOf(line, line.words), Machine::newChip(line.chip), filesFor(line.chip), {}, {}, {}};
    if (line.before != nullptr)
        good.start = machine.run(line.chip, line.link, wordsOf(line, line.before), good.start, good.files).memory;
    good.ending = machine.run(line.chip, line.link, good.words, good.start, good.files);
    if (good.ending.status != 0)
        throw std::runtime_error(good.words + ": " + showStatus(good.ending));
    good.actions = actionsOf(good.words);
    std::string words;
    for (std::size_t i = 0; i + 1 < good.actions.size(); ++i) {
        words += good.actions[i].words + " ";
        good.lastCalls.push_back(lastCallOf(machine.run(line.chip, line.link, words, good.start, good.files)));
    }
    good.lastCalls.push_back(lastCallOf(good.ending));
    return good;
}

void checkState(const Good &good, const Ending &ending, Complaints &complaints, Looks looks) {
    if (ending.memory.empty() || ending.status == unexpectedEnd) {
        complaints.push_back("it did not end by itself: " + showStatus(ending));
        return;
    }
    if (ending.time > longestRun)
        complaints.push_back("it took " + std::to_string(ending.time / sim::second) + " s");
    if (ending.status == 0 && looks == Looks::yes && !ending.becameAnother && !hasDone(good, ending))
        complaints.push_back("it lied: 0, and what was asked for is not done");
    if (!ending.becameAnother)
        checkCells(good, ending, complaints);
    checkFiles(good, ending, complaints);
    if (isLockedForEver(good, ending.memory) && !isLockedForEver(good, good.ending.memory))
        complaints.push_back("the chip is locked for ever");
}

void checkReport(const Action &action, const std::vector<std::string> &texts, const Ending &ending,
                 Complaints &complaints) {
    const auto has = [](const auto &list, const auto &one) {
        return std::find(list.begin(), list.end(), one) != list.end();
    };
    if (!has(action.statuses, ending.status))
        complaints.push_back("not a status of " + action.words + ": " + showStatus(ending));
    const std::string last = lastLine(ending.text);
    const bool isOfStatus =
        std::any_of(texts.begin(), texts.end(), [&last](const std::string &text) { return lastLine(text) == last; });
    if (!isOfStatus && !has(action.texts, last))
        complaints.push_back("not the text of it: " + showStatus(ending));
}

void checkSecondRun(Machine &machine, const Good &good, const Ending &first, Row &row, Complaints &complaints) {
    const CommandLine &line = good.line;
    Ending second = machine.run(line.chip, line.link, good.words, first.memory, first.files);
    second.becameAnother = first.becameAnother; // its cells are those of the first
    checkState(good, second, complaints);
    if (second.status == 0) {
        ++row.again;
        return;
    }
    ++row.toldWhy;
    const std::string last = lastLine(second.text);
    if (last.empty() || last == Info_UnknownError || last == good.actions.back().words)
        complaints.push_back("the second run does not tell what stands in the way: " + showStatus(second));
    if (accessByte(first.memory) == sim::accessOpen || isLockedForEver(good, first.memory))
        return;
    const Ending opened =
        machine.run(line.chip, usart, wordsOf({line.chip, usart, ""}, "-p --dfap"), first.memory, good.files);
    if (opened.status != 0)
        complaints.push_back("the chip is protected, and stays so: " + showStatus(opened));
}

} // namespace faults
