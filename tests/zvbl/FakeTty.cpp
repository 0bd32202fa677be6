#include "tests/zvbl/FakeTty.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>

#include <asm/termbits.h>
#include <sys/ioctl.h>
#include <unistd.h>

FakeTty::FakeTty(Pty &pty) : FakeNode("tty", "ttyUSB0"), m_pty(pty) {
    FakeNode::unplug();
    if (::symlink(pty.path().c_str(), file().c_str()) != 0)
        throw std::runtime_error("no node");
}

int FakeTty::lines() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_lines;
}

void FakeTty::setLines(int lines) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_lines = lines;
}

std::vector<std::string> FakeTty::moves() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_moves;
}

void FakeTty::unplug() {
    FakeNode::unplug();
    m_pty.unplug();
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_gone = true;
}

long FakeTty::answer(unsigned long request, UMockdevIoctlData *argument, int &error) {
    const bool moving = request == TIOCMBIS || request == TIOCMBIC;
    if (m_gone)
        error = EIO; // what the kernel answers for a tty that has hung up
    else if (moving && hasLines)
        return move(request, *Pointed(argument, 0, sizeof(int)).as<int>());
    else if (hasSettings && (request == TIOCGSERIAL || request == TIOCSSERIAL))
        return exchangeSettings(request, argument, error);
    else
        return pass(request, argument, error);
    return -1;
}

long FakeTty::move(unsigned long request, int bits) {
    const std::string sign = request == TIOCMBIS ? "+" : "-";
    m_moves.push_back((bits & TIOCM_DTR ? sign + "DTR" : "") + (bits & TIOCM_RTS ? sign + "RTS" : ""));
    m_lines = request == TIOCMBIS ? m_lines | bits : m_lines & ~bits;
    return 0;
}

long FakeTty::exchangeSettings(unsigned long request, UMockdevIoctlData *argument, int &error) {
    Pointed memory(argument, 0, sizeof settings);
    if (request == TIOCGSERIAL) {
        memory.set(&settings, sizeof settings);
    } else if (settingsError) {
        error = settingsError;
        return -1;
    } else {
        settings = *memory.as<serial_struct>();
    }
    return 0;
}

// The pseudo terminal answers. Of these requests only those with the line settings point to something.
long FakeTty::pass(unsigned long request, UMockdevIoctlData *argument, int &error) {
    long result = -1;
    if (request == TCGETS2 || request == TCSETS2) {
        Pointed memory(argument, 0, sizeof(termios2));
        termios2 line = *memory.as<termios2>();
        result = ioctl(m_pty.hostEnd(), request, &line);
        error = errno;
        line.c_ospeed = static_cast<speed_t>(line.c_ospeed * rateFactor);
        if (request == TCGETS2)
            memory.set(&line, sizeof line);
    } else {
        unsigned long number = 0;
        std::memcpy(&number, argument->data, sizeof number);
        result = ioctl(m_pty.hostEnd(), request, number);
        error = errno;
    }
    return result;
}
