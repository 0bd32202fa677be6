#pragma once

#include <utility>

#include "sim/links/usb/UsbDevice.h"

namespace sim {

// Whether a device that takes its power from the bus is plugged in.
class UsbPlug {
public:
    // Unplugs it; plugged in again after that time, without one never.
    void unplug(std::optional<unsigned> replugMs, Nanoseconds now);

    // When it has been plugged in again by now: since when. Told once; the device is as after power on then.
    std::optional<Nanoseconds> pluggedInAgain(Nanoseconds now);

    // It was away for no time at all.
    void flicker() { ++attachments_; }

    bool away() const { return away_; }
    std::optional<Nanoseconds> back() const { return backAt_; }
    UsbPresence presence() const { return {!away_, attachments_, away_ && !backAt_}; }

private:
    bool away_ = false;
    std::optional<Nanoseconds> backAt_;
    unsigned attachments_ = 1;
};

inline void UsbPlug::unplug(std::optional<unsigned> replugMs, Nanoseconds now) {
    away_ = true;
    backAt_ = replugMs ? std::optional(now + *replugMs * millisecond) : std::nullopt;
}

inline std::optional<Nanoseconds> UsbPlug::pluggedInAgain(Nanoseconds now) {
    if (!backAt_ || now < *backAt_)
        return std::nullopt;
    away_ = false;
    ++attachments_;
    return std::exchange(backAt_, std::nullopt);
}

} // namespace sim
