#include "sim/bootloader/Board.h"

#include <sstream>

namespace sim {

namespace {

// "dtr:low"
std::optional<Pin> parsePin(const std::string &text) {
    for (const ControlLine line : {ControlLine::dtr, ControlLine::rts}) {
        for (const bool active : {false, true}) {
            const std::string name = line == ControlLine::dtr ? "dtr" : "rts";
            if (text == name + (active ? ":high" : ":low"))
                return Pin{line, active};
        }
    }
    return std::nullopt;
}

} // namespace

bool parseWiring(const std::string &text, Wiring &wiring, std::string &error) {
    Wiring parsed;
    error = "--wiring takes reset=LINE:LEVEL,boot=LINE:LEVEL with lines dtr and rts, levels low and high, not \"" +
            text + "\"";
    std::istringstream words(text);
    for (std::string word; std::getline(words, word, ',');) {
        const std::size_t equals = word.find('=');
        const std::string name = word.substr(0, equals);
        std::optional<Pin> &pin = name == "reset" ? parsed.reset : parsed.boot;
        if (equals == std::string::npos || (name != "reset" && name != "boot") || pin)
            return false;
        pin = parsePin(word.substr(equals + 1));
        if (!pin)
            return false;
    }
    const bool shared = parsed.reset && parsed.boot && parsed.reset->line == parsed.boot->line;
    if (text.empty() || text.back() == ',' || shared)
        return false;
    wiring = parsed;
    return true;
}

Board::Board(const Wiring &wiring, Bootloader &bootloader, Log &log, Nanoseconds now)
    : m_wiring(wiring), m_bootloader(bootloader), m_log(log) {
    losePower(now - Bootloader::startTime);
}

void Board::setLines(bool dtr, bool rts, Nanoseconds now) {
    if (dtr == m_dtr && rts == m_rts)
        return;
    m_log.note(std::string("lines: DTR ") + (dtr ? "high" : "low") + ", RTS " + (rts ? "high" : "low"));
    m_dtr = dtr;
    m_rts = rts;
    follow(now);
}

void Board::follow(Nanoseconds now) {
    m_bootloader.select(!m_wiring.boot || active(*m_wiring.boot) ? Start::bootloader : Start::application);
    const bool hold = m_wiring.reset && active(*m_wiring.reset);
    if (hold && !m_held)
        m_bootloader.hold(now);
    else if (!hold && m_held)
        m_bootloader.release(now);
    m_held = hold;
}

void Board::button(Nanoseconds now) {
    m_bootloader.reset(now);
}

void Board::losePower(Nanoseconds now) {
    m_dtr = false;
    m_rts = false;
    follow(now);
    m_bootloader.losePower(now);
}

} // namespace sim
