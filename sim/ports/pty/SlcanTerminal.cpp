#include "sim/ports/pty/SlcanTerminal.h"

namespace sim {

SlcanTerminal::SlcanTerminal(std::string path, CanLine &bus, Log &log)
    : path_(std::move(path)), log_(log), adapter_(bus, log) {}

bool SlcanTerminal::open(std::string &error) {
    adapter_.powerOn();
    return pty_.open(path_, error);
}

bool SlcanTerminal::take(Nanoseconds now) {
    std::uint8_t bytes[4096];
    const std::size_t length = pty_.read(bytes, sizeof bytes, now);
    pty_.followClients(now);
    if (length == 0)
        return false;
    write(adapter_.receive({reinterpret_cast<const char *>(bytes), length}, now));
    return true;
}

bool SlcanTerminal::give(const TimedFrame &frame) {
    write(adapter_.hear(frame));
    return true;
}

void SlcanTerminal::write(const std::string &text) {
    if (!text.empty() && !pty_.write({text.begin(), text.end()}))
        log_.note("characters for the host were lost: nobody reads");
}

} // namespace sim
