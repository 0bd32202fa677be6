#pragma once

#include <atomic>
#include <thread>

#include "tests/zvbl/Pty.h"

// A device that never stops talking: waits for something from the host if told so, answers, and then sends
// the same bytes again and again, as fast as the line takes them.
class Babbler {
public:
    enum class Begin { atOnce, whenSpokenTo };

    Babbler(Pty &pty, zvbl::Bytes bytes, Begin begin = Begin::atOnce, zvbl::Bytes answer = {});
    ~Babbler();

private:
    void serve(Begin begin, const zvbl::Bytes &answer);

    Pty &m_pty;
    const zvbl::Bytes m_bytes;
    std::atomic<bool> m_stop{false};
    std::thread m_thread;
};
