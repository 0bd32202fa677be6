#pragma once

#include <new>

#include "libs/zvbl/Registry.h"

// What stands between the C interface and the library: here a Status becomes a status byte, and no
// exception gets past.

namespace zvbl {

constexpr BYTE outOfMemory = 0x22;

constexpr BYTE statusByte(Status status) {
    switch (status) {
    case Status::ok: return 0;
    case Status::notOpen: return 1;
    case Status::cantOpen: return 3;
    case Status::gone: return 4;
    case Status::noAnswer: return 5;
    case Status::outOfStep: return 5;
    case Status::noStart: return 0x11;
    case Status::refusedCommand: return 0x13;
    case Status::differs: return 0x13;
    case Status::refused: return 0x14;
    case Status::badArgument: return 0x21;
    }
    return 0x21;
}

template <class Call>
BYTE guarded(Call call) noexcept {
    try {
        return statusByte(call());
    } catch (const std::bad_alloc &) {
        return outOfMemory;
    } catch (...) {
        return statusByte(Status::gone); // the system refused something: a lock, a thread
    }
}

// Calls with the link of the handle, open or not.
template <class Call>
BYTE withLink(HANDLE handle, Call call) noexcept {
    return guarded([&] {
        const std::shared_ptr<Session> link = findLink(handle);
        return link ? call(*link) : Status::notOpen;
    });
}

// Calls with the open link of the handle if the arguments are sound.
template <class Call>
BYTE withOpenLink(HANDLE handle, bool argumentsSound, Call call) noexcept {
    return withLink(handle, [&](Session &link) {
        if (!link.isOpen())
            return Status::notOpen;
        return argumentsSound ? call(link) : Status::badArgument;
    });
}

// Whether a stretch of memory with a buffer of its length can be.
inline bool isStretch(unsigned int address, const void *data, unsigned int length) {
    return data && length <= 0x100000000ULL - address;
}

} // namespace zvbl
