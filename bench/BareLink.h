#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace bench {

using Bytes = std::vector<std::uint8_t>;

// The sectors of the chip of the bench.
constexpr std::size_t sectorSize = 2048;

// Ends the program with 1 and a line when it is false: a bare client repeats nothing.
void demand(bool right, const char *what);

// What any programmer has to send over a link at least, and nothing else: no step is checked but by its answer, and
// nothing is waited for but that.
class BareLink {
public:
    virtual ~BareLink() = default;

    virtual void connect() = 0;
    virtual void erase(std::size_t sectors) = 0;
    virtual std::size_t packetSize() const = 0;

    // One packet at an offset of the flash; the packets of a job follow each other from 0 on.
    virtual void write(std::size_t offset, const std::uint8_t *data) = 0;
    virtual void read(std::size_t offset, std::uint8_t *data) = 0;
};

// A link on which commands travel as groups, each answered by an ACK.
class BareGroups : public BareLink {
public:
    void erase(std::size_t sectors) override; // all of bank 1
    std::size_t packetSize() const override;
    void write(std::size_t offset, const std::uint8_t *data) override;
    void read(std::size_t offset, std::uint8_t *data) override;

protected:
    virtual void command(std::uint8_t opcode);

    // Sends a group as it is and takes its ACK, and `reply` bytes after it.
    virtual void ask(std::uint8_t opcode, const Bytes &group, std::uint8_t *reply = nullptr, std::size_t size = 0) = 0;

    void askChecked(std::uint8_t opcode, Bytes group);
    void commandAt(std::uint8_t opcode, std::size_t offset);
};

std::unique_ptr<BareLink> bareUsart(const std::string &port, unsigned baud);
std::unique_ptr<BareLink> bareI2c(const std::string &port, unsigned);
std::unique_ptr<BareLink> bareSpi(const std::string &port, unsigned hertz);
std::unique_ptr<BareLink> bareCan(const std::string &interface, unsigned bitsPerSecond);
std::unique_ptr<BareLink> bareAdapter(const std::string &port, unsigned bitsPerSecond);
std::unique_ptr<BareLink> bareDfu(const std::string &, unsigned);

} // namespace bench
