#pragma once

#include <chrono>
#include <ctime>
#include <deque>
#include <memory>
#include <string>
#include <vector>

#include <unistd.h>

#include "tests/preload/CanBus.h"

namespace can_bus {

using Clock = std::chrono::steady_clock;

constexpr std::size_t longestQueue = 10; // as txqueuelen of a CAN interface

struct Member {
    int control = -1; // requests and answers
    int data = -1;    // deliveries; -1 until it joins
    Options options;
    bool ended = false;

    explicit Member(int fd) : control(fd) {}
    ~Member() {
        for (const int fd : {control, data})
            if (fd >= 0)
                close(fd);
    }
    Member(const Member &) = delete;
    Member &operator=(const Member &) = delete;
};

// A CAN bus between processes; can_bus.cpp tells its commands.
class Bus {
public:
    Bus(std::string path, long bitRate) : m_path(std::move(path)), m_bitRate(bitRate) { plug(); }
    ~Bus() {
        if (m_listener >= 0)
            unplug();
    }
    Bus(const Bus &) = delete;
    Bus &operator=(const Bus &) = delete;

    // Until the end of the input, which carries one command a line.
    void serve(int commands);

    // False for a line that is no command.
    bool obey(const std::string &line);

private:
    struct Waiting {
        Clock::time_point due;
        can_frame frame;
        Member *sender;
    };

    void plug();
    void unplug();
    void tellAll(int error);
    void accept();
    void listenTo(Member &member);
    int carryOut(Member &member, const char *bytes, std::size_t size, int passed);
    int take(const can_frame &frame, Member &sender);
    void deliver(const can_frame &frame, const Member *sender);
    int change(const Request &request);
    void setUp(bool up);
    void deliverDue();
    void forgetEnded();
    timespec untilDue() const;
    std::uint32_t flags() const;

    const std::string m_path;
    long m_bitRate;
    int m_listener = -1;
    bool m_up = true;
    bool m_off = false; // bus-off
    bool m_locked = false, m_fixed = false;
    long m_busy = 0, m_lose = 0, m_double = 0;
    std::vector<std::unique_ptr<Member>> m_members, m_unbound;
    std::deque<Waiting> m_queue;
};

} // namespace can_bus
