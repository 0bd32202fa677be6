#include "line/gang/Attempt.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>

#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include "line/channel/Told.h"
#include "line/plan/Order.h"
#include "programs/Status.h"

namespace {

// How long a step may be silent. A chip restarts after verify, and the line is opened again up to five times.
struct Limit {
    const char *step;
    int milliseconds;
};
constexpr Limit limits[] = {{"connect", 20000}, {"identify", 60000}, {"erase", 60000},   {"write", 30000},
                            {"verify", 60000},  {"options", 60000},  {"protect", 60000}, {"otp", 60000},
                            {"access", 60000},  {"run", 20000}};
constexpr int closingTakes = 5000; // of a port

int limitOf(const std::string &step) {
    for (const Limit &limit : limits)
        if (step == limit.step)
            return limit.milliseconds;
    return limits[0].milliseconds;
}

void writeAt(int file, const std::string &bytes, std::size_t place) {
    for (std::size_t written = 0; written < bytes.size();) {
        const ssize_t now =
            pwrite(file, bytes.data() + written, bytes.size() - written, static_cast<off_t>(place + written));
        if (now < 0 && errno != EINTR)
            throw Refusal(notMade, std::string("no memory for the image: ") + std::strerror(errno));
        written += now > 0 ? static_cast<std::size_t>(now) : 0;
    }
}

} // namespace

Attempt::Attempt(const Json &order) : m_shared(memfd_create("unit", MFD_CLOEXEC)) {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        m_obstacle = std::string("no channel to be had: ") + std::strerror(errno);
        return; // over at once
    }
    m_channel = std::make_unique<Channel>(ends[0]);
    const Descriptor theirs(ends[1]);
    try {
        const std::vector<Start::Given> given = {{theirs.number(), channelDescriptor},
                                                 {m_shared.number(), sharedDescriptor}};
        m_worker = std::make_unique<Child>(besideUs("../libexec/zv32-unit"), std::vector<std::string>(), given);
    } catch (const std::runtime_error &) {
        // Without a process this is the end of the channel.
    }
    waitAtMost(limitOf(m_step));
    m_channel->post(order);
}

Attempt::Attempt(std::unique_ptr<Channel> channel, Descriptor shared)
    : m_channel(std::move(channel)), m_shared(std::move(shared)) {
    waitAtMost(limitOf(m_step));
}

void Attempt::waitAtMost(int milliseconds) {
    m_deadline = Clock::now() + std::chrono::milliseconds(milliseconds);
}

void Attempt::watch(std::vector<pollfd> &all) const {
    if (m_channel)
        all.push_back({m_channel->descriptor(), m_channel->awaited(), 0});
}

Attempt::Event Attempt::end(const char *cause, const std::string &text) {
    m_worker.reset();
    m_channel.reset();
    m_shared.reset();
    m_deadline = Clock::time_point::max();
    if (!m_isOver) {
        m_outcome.cause = cause;
        m_outcome.text = m_step + ": " + text;
    }
    m_isOver = true;
    return Event::end;
}

Attempt::Event Attempt::next() {
    if (!m_channel)
        return m_isOver ? Event::nothing : end("worker-crash", m_obstacle);
    try {
        m_channel->sendMore();
        Json message;
        const Channel::Got got = m_channel->receive(message, Channel::Wait::none);
        if (got == Channel::Got::message && !m_isOver)
            return take(message);
        if (got == Channel::Got::end)
            return end("worker-crash", "the process that makes the unit has ended");
        if (Clock::now() >= m_deadline)
            look();
        if (Clock::now() >= m_deadline)
            return end("timeout", "nothing was heard of it for too long");
        return Event::nothing;
    } catch (const std::exception &failure) { // what it says is nothing that it can say
        return end("worker-crash", failure.what());
    }
}

Attempt::Event Attempt::take(const Json &message) {
    checkTold(message);
    waitAtMost(limitOf(m_step));
    const std::string event = message.at("event");
    if (event == "step") {
        m_step = message.at("step");
        ++m_steps;
        m_percent = -1;
        waitAtMost(limitOf(m_step));
        return Event::step;
    }
    if (event == "identified") {
        m_outcome.identified = message;
        m_deadline = Clock::time_point::max(); // it is our turn
        return Event::identified;
    }
    if (event == "irreversible")
        return Event::irreversible;
    if (event == "end")
        takeEnd(message);
    return Event::nothing;
}

void Attempt::look() {
    Progress now{};
    if (m_isOver || pread(m_shared.number(), &now, sizeof now, 0) != static_cast<ssize_t>(sizeof now))
        return;
    // Of a step that has not been told of yet there is nothing to show.
    m_percent = now.steps == m_steps && now.percent <= 100 ? now.percent : -1;
    const bool moved = now.steps != m_progress.steps || now.percent != m_progress.percent;
    m_progress = now;
    if (moved && m_deadline != Clock::time_point::max())
        waitAtMost(limitOf(m_step));
}

// What comes after it is the end of the process: then the port is free.
void Attempt::takeEnd(const Json &message) {
    const std::string result = message.at("result");
    if (result == "pass" && !m_outcome.identified.is_object())
        throw std::runtime_error("it passes what was not identified");
    m_outcome.end = message;
    m_outcome.stopped = result == "interrupted";
    if (result == "fail") {
        m_outcome.cause = message.at("cause");
        m_outcome.text = message.at("text");
        m_outcome.code = message.at("code");
    }
    m_isOver = true;
    waitAtMost(closingTakes);
}

void Attempt::go(const Runs &image) {
    std::size_t place = imagePlace;
    for (const Run &run : image) {
        writeAt(m_shared.number(), run.bytes, place);
        place += run.bytes.size();
    }
    m_channel->post(goOrder(image));
    waitAtMost(limitOf(m_step));
}

void Attempt::burn() {
    m_channel->post({{"do", "burn"}});
}

void Attempt::stop() {
    if (!m_channel)
        return;
    m_channel->post({{"do", "stop"}});
    if (m_deadline == Clock::time_point::max())
        waitAtMost(limitOf(m_step));
}
