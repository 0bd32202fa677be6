#pragma once

#include <string>

#include "libs/zvbl/Command.h"

// A pseudo terminal in the place of a serial line: the tests hold the chip's end of it.
class Pty {
public:
    Pty();
    ~Pty();
    Pty(const Pty &) = delete;
    Pty &operator=(const Pty &) = delete;

    const std::string &path() const { return m_path; }
    int chipEnd() const { return m_master; }
    int hostEnd() const { return m_slave; } // held open, so that the line outlives a closed port

    // Reads at least one byte, all that is there. Empty: none came in time.
    zvbl::Bytes read(int timeoutMs);
    void write(const zvbl::Bytes &bytes);
    void unplug(); // the device is gone

private:
    int m_master = -1;
    int m_slave = -1;
    std::string m_path;
};

// "31 CE" -> bytes, and back.
zvbl::Bytes hex(const std::string &text);
std::string hex(const zvbl::Bytes &bytes);
