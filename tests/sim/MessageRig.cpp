#include "tests/sim/MessageRig.h"

namespace sim {

MessageRig::MessageRig(const std::string &chipName, const std::vector<std::string> &faultSpecs, FlashTime flashTime,
                       const CommandTable *variants)
    : faults(makeFaults(faultSpecs)), chip(*findChip(chipName), 1024 * 1024, flashTime, faults),
      bootloader(chip, faults, log, variants) {}

std::string MessageRig::play(const std::string &conversation) {
    std::istringstream in(conversation);
    int number = 0;
    for (std::string text; std::getline(in, text);) {
        ++number;
        std::istringstream line(text);
        std::string word;
        std::string rest;
        if (!(line >> word) || word == "#")
            continue;
        std::getline(line, rest);
        std::string wrong;
        if (word == "wait")
            now += std::stol(rest) * millisecond;
        else if (word == "button")
            button();
        else
            wrong = playLine(word, rest);
        if (!wrong.empty())
            return "line " + std::to_string(number) + " \"" + word + rest + "\": " + wrong;
    }
    return "";
}

std::string I2cRig::playLine(const std::string &word, const std::string &rest) {
    const bool acknowledged = word[1] == ':';
    if (word == "W:" || word == "W!") {
        const bool done = protocol.write(parseBytes(rest), now);
        return done == acknowledged ? "" : done ? "acknowledged" : "not acknowledged";
    }
    if (word != "R:" && word != "R!")
        return "what is this?";
    const Bytes wanted = acknowledged ? parseBytes(rest) : Bytes(std::stoul(rest));
    const I2cProtocol::Read read = protocol.read(wanted.size(), now);
    if (read.acknowledged != acknowledged)
        return read.acknowledged ? "acknowledged" : "not acknowledged";
    now = read.at;
    return !acknowledged || read.bytes == wanted ? "" : "the chip sent " + showBytes(read.bytes);
}

Bytes SpiRig::message(const Bytes &out) {
    Bytes in;
    protocol.select(now);
    for (const std::uint8_t byte : out)
        in.push_back(protocol.shift(byte, now));
    protocol.deselect(now);
    return in;
}

std::string SpiRig::playLine(const std::string &word, const std::string &rest) {
    Bytes out = parseBytes(rest.substr(0, rest.find('=')));
    Bytes wanted(out.size());
    if (word == "X:")
        wanted = parseBytes(rest.substr(rest.find('=') + 1));
    else if (word == "F:")
        out.swap(wanted);
    else if (word != "H:")
        return "what is this?";
    const Bytes in = message(out);
    return in == wanted ? "" : "the chip sent " + showBytes(in);
}

} // namespace sim
