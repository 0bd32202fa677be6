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
    void flicker() { ++m_attachments; }

    bool away() const { return m_away; }
    std::optional<Nanoseconds> back() const { return m_backAt; }
    UsbPresence presence() const { return {!m_away, m_attachments, m_away && !m_backAt}; }

private:
    bool m_away = false;
    std::optional<Nanoseconds> m_backAt;
    unsigned m_attachments = 1;
};

inline void UsbPlug::unplug(std::optional<unsigned> replugMs, Nanoseconds now) {
    m_away = true;
    m_backAt = replugMs ? std::optional(now + *replugMs * millisecond) : std::nullopt;
}

inline std::optional<Nanoseconds> UsbPlug::pluggedInAgain(Nanoseconds now) {
    if (!m_backAt || now < *m_backAt)
        return std::nullopt;
    m_away = false;
    ++m_attachments;
    return std::exchange(m_backAt, std::nullopt);
}

} // namespace sim
