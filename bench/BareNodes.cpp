// The two buses of nodes whose every message is a call.

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <linux/i2c-dev.h>
#include <linux/i2c.h>
#include <linux/spi/spidev.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "bench/BareLink.h"
#include "libs/zvbl/wire/Wire.h"

namespace bench {
namespace {

class Node {
public:
    explicit Node(const std::string &name) : m_fd(::open(("/dev/" + name).c_str(), O_RDWR)) {
        demand(m_fd >= 0, "no such node");
    }
    ~Node() { ::close(m_fd); }
    Node(const Node &) = delete;
    Node &operator=(const Node &) = delete;

    bool control(unsigned long request, void *argument) const { return ioctl(m_fd, request, argument) >= 0; }

private:
    int m_fd;
};

// Each group is a message, and so is each answer and each reply.
class BareI2c : public BareGroups {
public:
    explicit BareI2c(const std::string &name) : m_node(name) {}
    void connect() override {}

protected:
    void ask(std::uint8_t, const Bytes &group, std::uint8_t *reply, std::size_t size) override {
        Bytes sent = group;
        demand(transfer(0, sent.data(), sent.size()), "not acknowledged");
        std::uint8_t answer = wire::busy;
        while (answer == wire::busy)
            demand(transfer(I2C_M_RD, &answer, 1), "no answer");
        demand(answer == wire::ack, "refused");
        demand(size == 0 || transfer(I2C_M_RD, reply, size), "no reply");
    }

private:
    bool transfer(std::uint16_t flags, std::uint8_t *bytes, std::size_t size) const {
        i2c_msg message{wire::i2cAddress, flags, static_cast<std::uint16_t>(size), bytes};
        i2c_rdwr_ioctl_data call{&message, 1};
        return m_node.control(I2C_RDWR, &call);
    }

    Node m_node;
};

// A group and the fetch of its answer travel in one call.
class BareSpi : public BareGroups {
public:
    BareSpi(const std::string &name, unsigned hertz) : m_node(name), m_hertz(hertz) {}
    void connect() override {
        while (exchange({wire::sync}, answerSize) != wire::nack) {
        }
    }

protected:
    void ask(std::uint8_t, const Bytes &group, std::uint8_t *reply, std::size_t size) override {
        const std::size_t whole = answerSize + (size > 0 ? 1 + size + 1 : 0);
        std::uint8_t answer = exchange(group, whole);
        while (answer == wire::spiIdle)
            answer = exchange({}, whole);
        demand(answer == wire::ack, "refused");
        demand(size == 0 || m_heard.size() == whole, "no reply");
        if (size > 0)
            std::copy_n(m_heard.begin() + answerSize + 1, size, reply);
    }

private:
    static constexpr std::size_t answerSize = 2; // the start byte and the answer

    spi_ioc_transfer part(const Bytes *sent, Bytes *heard) const {
        spi_ioc_transfer part{};
        part.tx_buf = sent ? reinterpret_cast<std::uintptr_t>(sent->data()) : 0;
        part.rx_buf = heard ? reinterpret_cast<std::uintptr_t>(heard->data()) : 0;
        part.len = static_cast<std::uint32_t>(sent ? sent->size() : heard->size());
        part.speed_hz = m_hertz;
        part.cs_change = sent != nullptr;
        return part;
    }

    // The first answer that is heard, 0 for none.
    std::uint8_t exchange(const Bytes &group, std::size_t count) {
        Bytes message{wire::spiStart};
        message.insert(message.end(), group.begin(), group.end());
        m_heard.assign(count, 0);
        spi_ioc_transfer parts[2] = {part(&message, nullptr), part(nullptr, &m_heard)};
        const bool done =
            group.empty() ? m_node.control(SPI_IOC_MESSAGE(1), &parts[1]) : m_node.control(SPI_IOC_MESSAGE(2), parts);
        demand(done, "cannot send");
        m_heard.erase(m_heard.begin(), std::find(m_heard.begin(), m_heard.end(), wire::spiStart));
        return m_heard.size() > 1 ? m_heard[1] : wire::spiIdle;
    }

    Node m_node;
    unsigned m_hertz;
    Bytes m_heard;
};

} // namespace

std::unique_ptr<BareLink> bareI2c(const std::string &port, unsigned) {
    return std::make_unique<BareI2c>(port);
}

std::unique_ptr<BareLink> bareSpi(const std::string &port, unsigned hertz) {
    return std::make_unique<BareSpi>(port, hertz);
}

} // namespace bench
