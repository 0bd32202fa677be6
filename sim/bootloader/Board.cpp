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
    : wiring_(wiring), bootloader_(bootloader), log_(log) {
    losePower(now - Bootloader::startTime);
}

void Board::setLines(bool dtr, bool rts, Nanoseconds now) {
    if (dtr == dtr_ && rts == rts_)
        return;
    log_.note(std::string("lines: DTR ") + (dtr ? "high" : "low") + ", RTS " + (rts ? "high" : "low"));
    dtr_ = dtr;
    rts_ = rts;
    follow(now);
}

void Board::follow(Nanoseconds now) {
    bootloader_.select(!wiring_.boot || active(*wiring_.boot) ? Start::bootloader : Start::application);
    const bool hold = wiring_.reset && active(*wiring_.reset);
    if (hold && !held_)
        bootloader_.hold(now);
    else if (!hold && held_)
        bootloader_.release(now);
    held_ = hold;
}

void Board::button(Nanoseconds now) {
    bootloader_.reset(now);
}

void Board::losePower(Nanoseconds now) {
    dtr_ = false;
    rts_ = false;
    follow(now);
    bootloader_.losePower(now);
}

} // namespace sim
