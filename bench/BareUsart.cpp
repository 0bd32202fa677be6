#include <asm/termbits.h>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "bench/BareLink.h"
#include "libs/zvbl/wire/Wire.h"

namespace bench {
namespace {

// 8 data bits, even parity, one stop bit, raw.
class BareUsart : public BareGroups {
public:
    BareUsart(const std::string &port, unsigned baud) : m_port(::open(port.c_str(), O_RDWR | O_NOCTTY)) {
        termios2 line{};
        line.c_cflag = CS8 | PARENB | CREAD | CLOCAL | BOTHER | (BOTHER << IBSHIFT);
        line.c_ispeed = line.c_ospeed = baud;
        line.c_cc[VMIN] = 1;
        demand(m_port >= 0 && ioctl(m_port, TCSETS2, &line) == 0, "no such port");
    }
    ~BareUsart() override { ::close(m_port); }
    BareUsart(const BareUsart &) = delete;
    BareUsart &operator=(const BareUsart &) = delete;

    void connect() override {
        send({wire::sync});
        const std::uint8_t first = answer();
        demand(first == wire::ack || first == wire::nack, "no bootloader");
    }

    // One by one, as the console does it.
    void erase(std::size_t sectors) override {
        for (std::size_t i = 0; i < sectors; ++i) {
            command(wire::opEraseExt);
            askChecked(wire::opEraseExt,
                       {0, 0, static_cast<std::uint8_t>(i >> 8), static_cast<std::uint8_t>(i & 0xFF)});
        }
    }

protected:
    void ask(std::uint8_t, const Bytes &group, std::uint8_t *reply, std::size_t size) override {
        send(group);
        demand(answer() == wire::ack, "refused");
        receive(reply, size);
    }

private:
    void send(const Bytes &bytes) const {
        demand(::write(m_port, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()), "cannot send");
    }

    void receive(std::uint8_t *bytes, std::size_t count) const {
        while (count > 0) {
            const ssize_t length = ::read(m_port, bytes, count);
            demand(length > 0, "cannot receive");
            bytes += length;
            count -= static_cast<std::size_t>(length);
        }
    }

    std::uint8_t answer() const {
        std::uint8_t byte = 0;
        receive(&byte, 1);
        return byte;
    }

    int m_port;
};

} // namespace

std::unique_ptr<BareLink> bareUsart(const std::string &port, unsigned baud) {
    return std::make_unique<BareUsart>(port, baud);
}

} // namespace bench
