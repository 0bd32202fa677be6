#pragma once

#include <optional>
#include <string>

#include "sim/chip/ChipTable.h"
#include "sim/chip/Time.h"

namespace sim {

// The first packet of a control transfer (USB 2.0, 9.3). On the bus numbers of two bytes go lowest byte first.
struct UsbSetup {
    std::uint8_t type = 0; // bmRequestType: 80 towards the host, 60 standard, class or vendor, 1F the recipient
    std::uint8_t request = 0;
    std::uint16_t value = 0;
    std::uint16_t index = 0;
    std::uint16_t length = 0; // of the data stage

    bool towardsHost() const { return (type & 0x80) != 0; }
    bool standard() const { return (type & 0x60) == 0; }
};

// The eight bytes of one.
UsbSetup parseSetup(const std::uint8_t *bytes);

// What becomes of a transfer.
struct UsbAnswer {
    enum class Kind {
        done,
        stall,
        silent, // it never completes: the host gives it up, or the device goes away
        wait,   // nothing to fetch yet: asked again when something has happened (see nextEvent)
    };
    Kind kind = Kind::done;
    Bytes data;         // towards the host, never longer than was asked for
    Nanoseconds at = 0; // it completes then, if the device is still there

    static UsbAnswer done(Nanoseconds at, Bytes data = {}) { return {Kind::done, std::move(data), at}; }
    static UsbAnswer stall(Nanoseconds at) { return {Kind::stall, {}, at}; }
    static UsbAnswer silent() { return {Kind::silent, {}, 0}; }
    static UsbAnswer wait() { return {Kind::wait, {}, 0}; }
};

// As they travel; USB 2.0, 9.6.
struct UsbDescriptors {
    Bytes device;
    Bytes configuration;              // the only one, with all that belongs to it
    std::vector<std::string> strings; // ASCII; the first one has number 1
};

// Whether a device is on the bus.
struct UsbPresence {
    bool attached = true;
    unsigned attachments = 1; // how often it has come so far: when it differs, the device was away in between
    bool forGood = false;     // unplugged, and nobody will plug it in again
};

// A device on a bus, as the host's side of the cable sees it. It never looks at a clock: whoever asks says
// when. All transfers of a port go through here; the port delivers each answer at its time, or the loss of
// the device when that comes first.
class UsbDevice {
public:
    UsbDevice() = default;
    virtual ~UsbDevice() = default;
    UsbDevice(const UsbDevice &) = delete;
    UsbDevice &operator=(const UsbDevice &) = delete;

    virtual const UsbDescriptors &descriptors() const = 0;

    // A control transfer on endpoint 0; `out` is its data stage when that goes to the device.
    virtual UsbAnswer control(const UsbSetup &setup, const Bytes &out, Nanoseconds now) = 0;

    // A bulk or interrupt transfer; endpoint without the direction bit. `length` is the room that the host has.
    virtual UsbAnswer out(std::uint8_t /*endpoint*/, const Bytes & /*data*/, Nanoseconds now) {
        return UsbAnswer::stall(now);
    }
    virtual UsbAnswer in(std::uint8_t /*endpoint*/, std::size_t /*length*/, Nanoseconds now) {
        return UsbAnswer::stall(now);
    }

    // When the answer of the last control transfer gets to the host, where that is later than it said.
    virtual void delivered(Nanoseconds /*at*/) {}

    // The host resets the port: no configuration is chosen any more.
    virtual void busReset(Nanoseconds /*now*/) {}

    virtual UsbPresence presence(Nanoseconds now) = 0;

    // When something happens without a transfer next: data to fetch, going away, coming back. Nothing: never.
    // It is later than now; what has happened by now is told by presence() at the same time, and by in().
    virtual std::optional<Nanoseconds> nextEvent(Nanoseconds /*now*/) { return std::nullopt; }

    // The reset button of the board, and a loss of its power (it is unplugged; power is back at that time).
    virtual void pressReset(Nanoseconds now) = 0;
    virtual void losePower(Nanoseconds now) = 0;
};

} // namespace sim
