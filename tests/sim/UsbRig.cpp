#include "tests/sim/UsbRig.h"

namespace sim {

UsbRig::UsbRig(const std::string &chipName, const std::vector<std::string> &faultSpecs, FlashTime flashTime, bool pace)
    : faults(makeFaults(faultSpecs)), chip(*findChip(chipName), 1024 * 1024, flashTime, faults),
      cable(device, faults, pace) {
    send("00 09 01 00 00 00 00 00");
}

UsbAnswer UsbRig::send(const std::string &setup, const Bytes &out) {
    const Bytes bytes = parseBytes(setup);
    if (bytes.size() != 8)
        throw std::invalid_argument("a setup packet has eight bytes: " + setup);
    UsbAnswer answer = cable.control(parseSetup(bytes.data()), out, now);
    now = std::max(now, answer.at);
    return answer;
}

std::string UsbRig::show(const UsbAnswer &answer) {
    switch (answer.kind) {
    case UsbAnswer::Kind::done: return answer.data.empty() ? "done" : showBytes(answer.data);
    case UsbAnswer::Kind::stall: return "stall";
    case UsbAnswer::Kind::silent: return "silent";
    case UsbAnswer::Kind::wait: break;
    }
    return "wait";
}

std::string UsbRig::presence() {
    const UsbPresence found = cable.presence(now);
    return found.attached ? "here " + std::to_string(found.attachments) : "away";
}

// What is wrong with one line; `unread` is the answer that no C line has taken.
std::string UsbRig::line(const std::string &text, std::string &unread) {
    if (text.rfind("C: ", 0) == 0) {
        const std::string word = text.substr(3);
        const bool isWord = word == "done" || word == "stall" || word == "silent";
        const std::string wanted = isWord ? word : showBytes(parseBytes(word));
        const std::string found = unread;
        unread.clear();
        return found == wanted ? "" : "the answer was " + found;
    }
    if (!unread.empty())
        return "nobody has read " + unread;
    if (text.rfind("H: ", 0) == 0) {
        const std::size_t bar = text.find('|');
        const Bytes out = bar == std::string::npos ? Bytes() : parseBytes(text.substr(bar + 1));
        unread = show(send(text.substr(3, bar == std::string::npos ? bar : bar - 3), out));
    } else if (text.rfind("wait ", 0) == 0) {
        now += std::stol(text.substr(5)) * millisecond;
    } else if (text == "button") {
        cable.pressReset(now);
    } else {
        return presence() == text ? "" : "the device is " + presence();
    }
    return "";
}

std::string UsbRig::play(const std::string &conversation) {
    std::istringstream in(conversation);
    std::string unread;
    int number = 0;
    for (std::string text; std::getline(in, text);) {
        ++number;
        text.erase(0, text.find_first_not_of(' '));
        if (text.empty() || text[0] == '#')
            continue;
        const std::string wrong = line(text, unread);
        if (!wrong.empty())
            return "line " + std::to_string(number) + " \"" + text + "\": " + wrong;
    }
    return unread.empty() ? std::string() : "at the end nobody has read " + unread;
}

} // namespace sim
