#include "tests/sim/CanRig.h"

namespace sim {

namespace {

std::vector<std::string> split(const std::string &text) {
    std::vector<std::string> parts;
    std::istringstream in(text);
    for (std::string part; std::getline(in, part, '/');) {
        const std::size_t first = part.find_first_not_of(' ');
        const std::size_t last = part.find_last_not_of(' ');
        parts.push_back(first == std::string::npos ? "" : part.substr(first, last - first + 1));
    }
    return parts;
}

std::string join(const std::deque<std::string> &parts) {
    std::string text;
    for (const std::string &part : parts)
        text += (text.empty() ? "" : " / ") + part;
    return text.empty() ? "-" : text;
}

} // namespace

CanFrame parseFrame(const std::string &text) {
    CanFrame frame;
    std::string id = text.substr(0, text.find(' '));
    frame.data = parseBytes(text.substr(id.size()));
    if (id[0] == 'r') {
        frame.remote = true;
        id.erase(0, 1);
    }
    frame.extended = id.size() == 8;
    frame.id = static_cast<std::uint32_t>(std::stoul(id, nullptr, 16));
    return frame;
}

std::string showFrame(const CanFrame &frame) {
    return nameOf(frame) + (frame.data.empty() ? "" : " ") + showBytes(frame.data);
}

CanRig::CanRig(const std::vector<std::string> &faultSpecs, FlashTime flashTime, bool pace, const std::string &chipName)
    : faults(makeFaults(faultSpecs)), chip(*findChip(chipName), 1024 * 1024, flashTime, faults),
      line(protocol, faults, pace) {
    faults.tell([this](const std::string &spec) { log.fault(spec); });
}

void CanRig::send(const CanFrame &frame) {
    line.fromHost(frame, now, speed);
}

std::vector<TimedFrame> CanRig::received() {
    std::vector<TimedFrame> frames(line.toHost().begin(), line.toHost().end());
    line.toHost().clear();
    return frames;
}

void CanRig::say(const std::string &text) {
    send(parseFrame(text));
}

std::vector<std::string> CanRig::heard() {
    std::vector<std::string> frames;
    for (const TimedFrame &timed : received()) {
        frames.push_back(showFrame(timed.frame));
        now = std::max(now, timed.at);
    }
    return frames;
}

void AdapterRig::say(const std::string &text) {
    m_answers += adapter.receive(text + "\r", now);
}

std::vector<std::string> AdapterRig::heard() {
    for (const TimedFrame &timed : received()) {
        m_answers += adapter.hear(timed);
        now = std::max(now, timed.at);
    }
    std::vector<std::string> lines(1);
    for (const char character : m_answers) {
        if (character == '\a') {
            lines.back() += '!';
        } else if (character != '\r') {
            lines.back() += character;
            continue;
        } else if (lines.back().empty()) {
            lines.back() = ".";
        }
        lines.emplace_back();
    }
    m_answers.clear();
    lines.pop_back();
    return lines;
}

std::string CanRig::nextTold() {
    const std::string all = told.str();
    const std::size_t end = std::min(all.find('\n', m_toldTo), all.size());
    const std::string next = all.substr(m_toldTo, end - m_toldTo);
    m_toldTo = std::min(end + 1, all.size());
    return next;
}

std::string CanRig::compare(const std::string &wanted) {
    const std::string sent = join(m_unread);
    m_unread.clear();
    const std::vector<std::string> parts = split(wanted);
    return join({parts.begin(), parts.end()}) == sent ? "" : "the chip sent " + sent;
}

// One line that is neither an answer nor a remark. Empty, or what went wrong.
std::string CanRig::act(const std::string &text) {
    const std::string value = text.substr(text.find(' ') + 1);
    if (text.rfind("H:", 0) == 0) {
        for (const std::string &part : split(text.substr(2))) {
            say(part);
            for (const std::string &answer : heard())
                m_unread.push_back(answer);
        }
    } else if (text.rfind("speed ", 0) == 0) {
        speed = static_cast<unsigned>(std::stoul(value));
    } else if (text.rfind("wait ", 0) == 0) {
        now += std::stol(value) * millisecond;
    } else if (text == "button") {
        bootloader.reset(now);
    } else {
        return "what is this?";
    }
    return "";
}

std::string CanRig::playLine(const std::string &text) {
    if (text.rfind("C:", 0) == 0)
        return compare(text.substr(2));
    if (text.rfind("told ", 0) == 0) {
        const std::string next = nextTold();
        return next == text.substr(5) ? "" : "it told \"" + next + "\"";
    }
    return m_unread.empty() ? act(text) : "nobody has read " + join(m_unread);
}

std::string CanRig::play(const std::string &conversation) {
    std::istringstream in(conversation);
    int number = 0;
    for (std::string text; std::getline(in, text);) {
        ++number;
        const std::size_t first = text.find_first_not_of(' ');
        if (first == std::string::npos || text[first] == '#')
            continue;
        const std::string wrong = playLine(text.substr(first));
        if (!wrong.empty())
            return "line " + std::to_string(number) + " \"" + text.substr(first) + "\": " + wrong;
    }
    const std::string more = nextTold();
    if (!m_unread.empty() || !more.empty())
        return "at the end " + (m_unread.empty() ? "it told \"" + more + "\"" : "nobody has read " + join(m_unread));
    return "";
}

} // namespace sim
