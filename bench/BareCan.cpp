// A CAN bus, by a socket of the kernel and by an adapter that speaks text on a serial port.

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <deque>
#include <thread>

#include <fcntl.h>
#include <linux/can.h>
#include <linux/can/raw.h>
#include <net/if.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

#include "bench/BareLink.h"
#include "bench/Ceiling.h"
#include "libs/zvbl/wire/Wire.h"

namespace bench {
namespace {

constexpr std::size_t frameSize = 8;

class BareBus : public BareGroups {
public:
    void connect() override {
        Bytes answer;
        sendFrame(wire::sync, nullptr, 0);
        takeFrame(wire::sync, answer);
    }

protected:
    virtual void sendFrame(std::uint8_t id, const std::uint8_t *bytes, std::size_t size) = 0;

    // The data of the next frame of the chip; `id` is that of the question.
    virtual void takeFrame(std::uint8_t id, Bytes &data) = 0;

    void command(std::uint8_t opcode) override { ask(opcode, {}, nullptr, 0); }

    void ask(std::uint8_t opcode, const Bytes &group, std::uint8_t *reply, std::size_t size) override {
        std::size_t done = 0;
        do {
            const std::size_t part = std::min(frameSize, group.size() - done);
            sendFrame(opcode, group.data() + done, part);
            done += part;
        } while (done < group.size());
        Bytes heard;
        takeFrame(opcode, heard);
        demand(heard == Bytes{wire::ack}, "refused");
        heard.clear();
        for (Bytes part; size > 0 && heard.size() < size + 1; heard.insert(heard.end(), part.begin(), part.end()))
            takeFrame(opcode, part);
        std::copy_n(heard.begin(), size, reply);
    }
};

class BareSocket : public BareBus {
public:
    explicit BareSocket(const std::string &interface) : m_socket(::socket(AF_CAN, SOCK_RAW, CAN_RAW)) {
        sockaddr_can address{};
        address.can_family = AF_CAN;
        address.can_ifindex = static_cast<int>(if_nametoindex(interface.c_str()));
        demand(bind(m_socket, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0, "no such interface");
    }
    ~BareSocket() override { ::close(m_socket); }
    BareSocket(const BareSocket &) = delete;
    BareSocket &operator=(const BareSocket &) = delete;

private:
    // A full queue is looked at again and again: nothing tells when it has room.
    void sendFrame(std::uint8_t id, const std::uint8_t *bytes, std::size_t size) override {
        constexpr auto pause = std::chrono::microseconds(100);
        can_frame frame{};
        frame.can_id = id;
        frame.can_dlc = static_cast<__u8>(size);
        std::copy_n(bytes, size, frame.data);
        while (::write(m_socket, &frame, sizeof frame) != sizeof frame) {
            demand(errno == ENOBUFS || errno == EAGAIN, "cannot send");
            std::this_thread::sleep_for(pause);
        }
    }

    void takeFrame(std::uint8_t id, Bytes &data) override {
        can_frame frame{};
        demand(::read(m_socket, &frame, sizeof frame) == sizeof frame, "cannot receive");
        demand(frame.can_id == canid_t{id} + wire::canFromChip, "not an answer");
        data.assign(frame.data, frame.data + frame.can_dlc);
    }

    int m_socket;
};

// The adapter has room for sixteen frames.
class BareAdapter : public BareBus {
public:
    BareAdapter(const std::string &port, unsigned bitsPerSecond)
        : m_port(::open(port.c_str(), O_RDWR | O_NOCTTY)), m_wished(bitsPerSecond) {
        termios line{};
        line.c_cflag = CS8 | CREAD | CLOCAL | B115200;
        line.c_cc[VMIN] = 1;
        demand(m_port >= 0 && tcsetattr(m_port, TCSANOW, &line) == 0, "no such port");
    }
    ~BareAdapter() override { ::close(m_port); }
    BareAdapter(const BareAdapter &) = delete;
    BareAdapter &operator=(const BareAdapter &) = delete;

    void connect() override {
        setSpeed(wire::canStartSpeed);
        BareBus::connect();
        if (m_wished == m_speed)
            return;
        demand(m_wished == fastest.bitsPerSecond, "no such speed");
        command(wire::opSetSpeed);
        ask(wire::opSetSpeed, {fastest.code, static_cast<std::uint8_t>(~fastest.code)}, nullptr, 0);
        say("C\r");
        setSpeed(m_wished);
        BareBus::connect();
    }

private:
    using Clock = std::chrono::steady_clock;
    struct Speed {
        unsigned bitsPerSecond;
        std::uint8_t code; // of the chip
    };
    static constexpr Speed fastest{1000000, 4};

    void setSpeed(unsigned bitsPerSecond) {
        say(bitsPerSecond == fastest.bitsPerSecond ? "S8\rO\r" : "S5\rO\r");
        m_speed = bitsPerSecond;
    }

    void say(const std::string &text) const {
        demand(::write(m_port, text.data(), text.size()) == static_cast<ssize_t>(text.size()), "cannot send");
    }

    Clock::duration frameTime(std::size_t size) const {
        const double seconds = canFrameBits(static_cast<int>(size)) / m_speed;
        return std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
    }

    void sendFrame(std::uint8_t id, const std::uint8_t *bytes, std::size_t size) override {
        constexpr int ahead = 8;      // that it said it has, and the bus has not
        constexpr int unanswered = 6; // of which it said nothing yet
        char digits[16];
        std::snprintf(digits, sizeof digits, "t%03X%zu", unsigned{id}, size);
        std::string line = digits;
        for (std::size_t i = 0; i < size; ++i) {
            std::snprintf(digits, sizeof digits, "%02X", unsigned{bytes[i]});
            line += digits;
        }
        while (m_unanswered >= unanswered)
            keep(takeLine());
        std::this_thread::sleep_until(m_free - ahead * frameTime(frameSize));
        ++m_unanswered;
        say(line + "\r");
    }

    // A line is a frame of the bus, or the adapter's word that it has one of ours.
    void keep(const std::string &line) {
        if (!line.empty() && line[0] == 't')
            m_frames.push_back(line);
        if (line != "z")
            return;
        --m_unanswered;
        m_free = std::max(Clock::now(), m_free) + frameTime(frameSize);
    }

    void takeFrame(std::uint8_t id, Bytes &data) override {
        while (m_frames.empty())
            keep(takeLine());
        const std::string line = m_frames.front();
        m_frames.pop_front();
        m_free = Clock::now(); // who is answered has nothing left to send
        demand(std::stoul(line.substr(1, 3), nullptr, 16) == unsigned{id} + wire::canFromChip, "not an answer");
        data.clear();
        for (std::size_t at = 5; at + 1 < line.size(); at += 2)
            data.push_back(static_cast<std::uint8_t>(std::stoul(line.substr(at, 2), nullptr, 16)));
    }

    std::string takeLine() {
        std::size_t end = m_heard.find('\r');
        for (; end == std::string::npos; end = m_heard.find('\r')) {
            std::array<char, 4096> more{};
            const ssize_t length = ::read(m_port, more.data(), more.size());
            demand(length > 0, "cannot receive");
            m_heard.append(more.data(), static_cast<std::size_t>(length));
        }
        std::string line = m_heard.substr(0, end);
        m_heard.erase(0, end + 1);
        return line;
    }

    int m_port;
    unsigned m_wished;
    unsigned m_speed = 0;
    Clock::time_point m_free{}; // when the bus has carried what the adapter was given
    int m_unanswered = 0;
    std::string m_heard;
    std::deque<std::string> m_frames;
};

} // namespace

std::unique_ptr<BareLink> bareCan(const std::string &interface, unsigned) {
    return std::make_unique<BareSocket>(interface);
}

std::unique_ptr<BareLink> bareAdapter(const std::string &port, unsigned bitsPerSecond) {
    return std::make_unique<BareAdapter>(port, bitsPerSecond);
}

} // namespace bench
