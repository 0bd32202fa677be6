#include "tests/zvbl/ScriptedChip.h"

namespace {

constexpr int patienceMs = 3000;
constexpr int afterTheEndMs = 2;

} // namespace

ScriptedChip::ScriptedChip(Pty &pty, Script script)
    : m_pty(pty), m_script(std::move(script)), m_thread([this] { serve(); }) {}

ScriptedChip::~ScriptedChip() {
    if (m_thread.joinable())
        m_thread.join();
}

std::string ScriptedChip::finish() {
    m_thread.join();
    return m_complaint;
}

void ScriptedChip::serve() {
    zvbl::Bytes heard;
    for (std::size_t i = 0; i < m_script.size(); ++i) {
        const Turn &turn = m_script[i];
        while (heard.size() < turn.host.size()) {
            const zvbl::Bytes more = m_pty.read(patienceMs);
            heard.insert(heard.end(), more.begin(), more.end());
            if (more.empty())
                break;
        }
        // A byte that came late may pass for the answer to this turn before it is taken.
        const bool mayBeAhead = i > 0 && m_script[i - 1].pause.count() && heard.size() > turn.host.size();
        const auto end = mayBeAhead ? heard.begin() + static_cast<std::ptrdiff_t>(turn.host.size()) : heard.end();
        if (zvbl::Bytes(heard.begin(), end) != turn.host) {
            m_complaint =
                "turn " + std::to_string(i) + ": host sent [" + hex(heard) + "], not [" + hex(turn.host) + "]";
            return;
        }
        heard.erase(heard.begin(), end);
        zvbl::Bytes answer = turn.chip;
        if (turn.late.count())
            std::this_thread::sleep_for(turn.late);
        if (turn.pause.count()) {
            m_pty.write({answer.begin(), answer.end() - 1});
            std::this_thread::sleep_for(turn.pause);
            answer.erase(answer.begin(), answer.end() - 1);
        }
        m_pty.write(answer);
    }
    const zvbl::Bytes more = m_pty.read(afterTheEndMs);
    heard.insert(heard.end(), more.begin(), more.end());
    if (!heard.empty())
        m_complaint = "after the end host sent [" + hex(heard) + "]";
}
