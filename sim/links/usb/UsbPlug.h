#pragma once

#include <utility>

#include "sim/links/usb/UsbDevice.h"

namespace sim {

// Whether a device that takes its power from the bus is plugged in.
class UsbPlug {
public:
    // Unplugs it; plugged in again after that time, without one never.
    void unplug(std::optional<unsigned> replugMs, Nanoseconds now);

    // To be asked at every turn: the time at which it was plugged in again, once that is past. Told once, for
    // the device to start anew then; after that, and before it, nothing.
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
