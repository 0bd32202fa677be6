#include <array>

#include "bench/BareLink.h"
#include "bench/DfuDevice.h"
#include "libs/zvbl/wire/Wire.h"

namespace bench {
namespace {

constexpr unsigned char downloadIdle = 5; // a state
constexpr std::size_t stateOfStatus = 4;

// A sector is a block: its DNLOAD, the GETSTATUS that carries it out, and the one that tells that it is done.
class BareDfu : public BareLink {
public:
    void connect() override { demand(m_device.isThere(), "no device"); }
    std::size_t packetSize() const override { return sectorSize; }
    void erase(std::size_t) override { download(wire::dfuCommandBlock, {wire::dfuErase}); }

    void write(std::size_t offset, const std::uint8_t *data) override {
        if (offset == 0)
            download(wire::dfuCommandBlock, pointToFlash);
        download(blockOf(offset), {data, data + sectorSize});
    }

    void read(std::size_t offset, std::uint8_t *data) override {
        if (offset == 0) {
            download(wire::dfuCommandBlock, pointToFlash);
            demand(m_device.send(dfuAbort, 0, nullptr, 0), "cannot abort");
        }
        demand(m_device.fetch(dfuUpload, blockOf(offset), data, sectorSize), "cannot read");
    }

private:
    static unsigned short blockOf(std::size_t offset) {
        return static_cast<unsigned short>(wire::dfuFirstDataBlock + offset / sectorSize);
    }

    void download(unsigned block, Bytes data) const {
        demand(m_device.send(dfuDownload, static_cast<unsigned short>(block), data.data(),
                             static_cast<std::uint16_t>(data.size())),
               "cannot send");
        std::array<unsigned char, 6> status{};
        while (status[stateOfStatus] != downloadIdle)
            demand(m_device.fetch(dfuGetStatus, 0, status.data(), status.size()) && status[0] == 0, "refused");
    }

    const Bytes pointToFlash{wire::dfuSetPointer, 0, 0, 0, static_cast<std::uint8_t>(wire::flashBase >> 24)};
    DfuDevice m_device;
};

} // namespace

std::unique_ptr<BareLink> bareDfu(const std::string &, unsigned) {
    return std::make_unique<BareDfu>();
}

} // namespace bench
