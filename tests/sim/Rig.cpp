#include "tests/sim/Rig.h"

#include <cstdio>

#include "sim/program/FaultOption.h"

namespace sim {

namespace {

std::string orNothing(const std::string &text) {
    return text.empty() ? "-" : text;
}

} // namespace

Faults makeFaults(const std::vector<std::string> &specs) {
    Faults faults;
    std::string error;
    for (const std::string &spec : specs)
        if (!addFault(faults, spec, error))
            throw std::invalid_argument(error);
    return faults;
}

Bytes parseBytes(const std::string &text) {
    Bytes bytes;
    std::istringstream in(text);
    for (std::string word; in >> word && word != "-";) {
        const std::size_t star = word.find('*');
        const std::size_t count = star == std::string::npos ? 1 : std::stoul(word.substr(star + 1));
        bytes.insert(bytes.end(), count, static_cast<std::uint8_t>(std::stoul(word.substr(0, star), nullptr, 16)));
    }
    return bytes;
}

std::string showBytes(const Bytes &bytes) {
    std::string text;
    for (const unsigned byte : bytes) {
        char digits[8];
        std::snprintf(digits, sizeof digits, "%s%02X", text.empty() ? "" : " ", byte);
        text += digits;
    }
    return text;
}

Rig::Rig(const std::string &chipName, const std::vector<std::string> &faultSpecs, FlashTime flashTime,
         std::size_t spimSize)
    : faults(makeFaults(faultSpecs)), chip(*findChip(chipName), spimSize, flashTime, faults) {}

void Rig::send(const Bytes &bytes, unsigned baud) {
    for (const std::uint8_t byte : bytes)
        line.fromHost(byte, now, baud);
}

std::vector<TimedByte> Rig::received() {
    std::vector<TimedByte> bytes(line.toHost().begin(), line.toHost().end());
    line.toHost().clear();
    return bytes;
}

std::string Rig::play(const std::string &conversation) {
    std::istringstream in(conversation);
    Bytes unread;
    int number = 0;
    for (std::string text; std::getline(in, text);) {
        ++number;
        const std::size_t first = text.find_first_not_of(' ');
        text.erase(0, first);
        const std::string at = "line " + std::to_string(number) + " \"" + text + "\": ";
        if (first == std::string::npos || text[0] == '#')
            continue;
        if (text.rfind("C:", 0) == 0) {
            const Bytes wanted = parseBytes(text.substr(2));
            if (unread != wanted)
                return at + "the chip sent " + orNothing(showBytes(unread));
            unread.clear();
            continue;
        }
        if (!unread.empty())
            return at + "nobody has read " + showBytes(unread);
        if (text.rfind("H:", 0) == 0)
            send(parseBytes(text.substr(2)));
        else if (text.rfind("wait ", 0) == 0)
            now += std::stol(text.substr(5)) * millisecond;
        else if (text == "button")
            bootloader.reset(now);
        else
            return at + "what is this?";
        for (const TimedByte &timed : received()) {
            unread.push_back(timed.byte);
            now = std::max(now, timed.at);
        }
    }
    return unread.empty() ? std::string() : "at the end nobody has read " + showBytes(unread);
}

} // namespace sim
