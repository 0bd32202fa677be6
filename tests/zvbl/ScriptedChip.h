#pragma once

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "tests/zvbl/Pty.h"

// One turn of a script: these bytes from the host, then these from the chip, after a while if told so, and
// with a pause before the last one if told so.
struct Turn {
    zvbl::Bytes host;
    zvbl::Bytes chip;
    std::chrono::milliseconds late{0};
    std::chrono::milliseconds pause{0};

    Turn(const std::string &hostBytes, const std::string &chipBytes, int lateMs = 0, int pauseMs = 0)
        : host(hex(hostBytes)), chip(hex(chipBytes)), late(lateMs), pause(pauseMs) {}
    Turn(zvbl::Bytes hostBytes, const std::string &chipBytes) : host(std::move(hostBytes)), chip(hex(chipBytes)) {}
};
using Script = std::vector<Turn>;

// Serves a script on a pseudo terminal, and complains about every byte that is not in it.
class ScriptedChip {
public:
    ScriptedChip(Pty &pty, Script script);
    ~ScriptedChip();

    // Waits for the end of the script. What went wrong; empty if every byte was as told, and none more.
    std::string finish();

private:
    void serve();

    Pty &m_pty;
    const Script m_script;
    std::string m_complaint;
    std::thread m_thread;
};
