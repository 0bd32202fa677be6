#include "line/unit/Dialogue.h"

#include <unistd.h>

#include "line/channel/Messages.h"
#include "operations/COperation.h"

namespace {

// A listener is a plain function.
Dialogue *listening = nullptr;

void *listener(InfoType type, void *record) {
    if (type == INFO_TYPE_ACTION)
        listening->showPercent(static_cast<const CActionInfo *>(record)->m_iPercent);
    return nullptr;
}

} // namespace

void Dialogue::step(const char *name, const std::function<void()> &work) {
    listen();
    refuseStopped();
    m_percent = -1;
    ++m_steps;
    tell({{"event", "step"}, {"step", name}});
    const auto begin = Clock::now();
    work();
    const auto time = Clock::now() - begin;
    m_times[name] = std::chrono::duration_cast<std::chrono::milliseconds>(time).count();
    refuseStopped();
}

void Dialogue::wholeStep(const char *name, const std::function<void()> &work) {
    step(name, [&] {
        const bool mayStop = m_mayStop;
        m_mayStop = false;
        work();
        m_mayStop = mayStop;
    });
}

void Dialogue::follow(COperation &job) {
    listening = this;
    m_job = &job;
    job.SetOperationInfoDelegate(reinterpret_cast<void *>(listener));
}

void Dialogue::showPercent(int now) {
    if (now != m_percent) {
        m_percent = now;
        const Progress progress = {m_steps, static_cast<std::uint8_t>(now)};
        const ssize_t ignored = pwrite(sharedDescriptor, &progress, sizeof progress, 0);
        static_cast<void>(ignored); // without it nothing is lost
    }
    listen();
    if (!m_isStopped)
        return;
    m_job->Cancel(); // with the jobs that it owns
    m_job->CallCommand(COMMAND_CANCEL);
}

bool Dialogue::hears(const char *word, Json &message) {
    refuseStopped();
    if (m_channel.receive(message, Channel::Wait::forEver) != Channel::Got::message)
        return false;
    m_isStopped = message.at("do") == "stop";
    refuseStopped();
    return message.at("do") == word;
}

void Dialogue::refuseStopped() const {
    if (m_isStopped)
        throw Stopped();
}

// Takes what has been said meanwhile: nobody says anything else than "stop" unasked.
void Dialogue::listen() {
    Json message;
    while (m_mayStop && !m_isStopped && m_channel.receive(message, Channel::Wait::none) == Channel::Got::message)
        m_isStopped = message.at("do") == "stop";
}
