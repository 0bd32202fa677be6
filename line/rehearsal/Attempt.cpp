#include "line/rehearsal/Attempt.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>

#include <sys/socket.h>
#include <unistd.h>

#include "line/channel/Child.h"
#include "line/channel/Messages.h"
#include "line/plan/Order.h"
#include "programs/Status.h"
#include "programs/Text.h"

namespace {

// How long a step may be silent. A chip restarts after verify, and the line is opened again up to five times.
struct Limit {
    const char *step;
    int milliseconds;
};
constexpr Limit limits[] = {{"connect", 20000}, {"identify", 60000}, {"erase", 60000},   {"write", 30000},
                            {"verify", 60000},  {"options", 60000},  {"protect", 60000}, {"otp", 60000},
                            {"access", 60000},  {"run", 20000}};

int limitOf(const std::string &step) {
    for (const Limit &limit : limits)
        if (step == limit.step)
            return limit.milliseconds;
    return limits[0].milliseconds;
}

Outcome failed(const char *cause, const std::string &text, Outcome outcome) {
    outcome.cause = cause;
    outcome.text = text;
    return outcome;
}

} // namespace

void Attempt::go(const Json &identified, Channel &channel) const {
    channel.send(goOrder(m_makeImage(bytesOfHex(identified.at("uid").get<std::string>()))));
}

// False at the end.
bool Attempt::take(const Json &message, Channel &channel, Outcome &outcome) {
    const std::string event = message.at("event");
    if (event == "step") {
        m_step = message.at("step");
        m_tell(m_step);
    } else if (event == "identified") {
        outcome.identified = message;
        go(message, channel);
    } else if (event == "irreversible") {
        channel.send({{"do", "burn"}}); // a simulated chip can be thrown away
    } else if (event == "end") {
        outcome.end = message;
        if (message.at("result") != "pass") {
            outcome.cause = message.at("cause");
            outcome.text = message.at("text");
            outcome.code = message.at("code");
        }
        return false;
    }
    return true;
}

Outcome Attempt::run(const Json &link) {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        throw std::runtime_error(std::string("no channel to be had: ") + std::strerror(errno));
    Channel channel(ends[0]);
    const Child worker(besideUs("../libexec/zv32-unit"), {}, ends[1], channelDescriptor);
    close(ends[1]);
    Outcome outcome;
    try {
        channel.send(makeOrder(m_job, m_plan, link));
        for (Json message;;) {
            const Channel::Got got = channel.receive(message, limitOf(m_step));
            if (got == Channel::Got::silence)
                return failed("timeout", m_step + ": nothing was heard of it for too long", outcome);
            if (got == Channel::Got::end)
                return failed("worker-crash", m_step + ": the process that makes the unit has ended", outcome);
            if (!take(message, channel, outcome))
                return outcome;
        }
    } catch (const Refusal &) {
        throw; // of what was asked for, and not of the process
    } catch (const std::exception &failure) {
        return failed("worker-crash", m_step + ": " + failure.what(), outcome);
    }
}
