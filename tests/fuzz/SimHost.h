#pragma once

#include <streambuf>

#include "tests/fuzz/Target.h"
#include "tests/sim/Rig.h"

namespace fuzz {

// Chips that differ in what their bootloaders know. Small ones, for the speed: none has external flash.
inline const char *chipOf(std::uint8_t number) {
    static constexpr const char *names[] = {"ZV32L021_16K", "ZV32F421_16K", "ZV32F425_24K", "ZV32F415_64K"};
    return names[number % std::size(names)];
}

// What a host does between two things that it sends, by one byte of the input: mostly nothing.
enum class Pause { none, millisecond, second, button };

inline Pause pauseOf(std::uint8_t byte) {
    switch (byte) {
    case 0xFD: return Pause::millisecond;
    case 0xFE: return Pause::second;
    case 0xFF: return Pause::button;
    default: return Pause::none;
    }
}

// Makes the pause on a rig; `button` presses the reset.
template <typename Rig, typename Button>
void make(Pause pause, Rig &rig, Button button) {
    if (pause == Pause::millisecond)
        rig.now += sim::millisecond;
    else if (pause == Pause::second)
        rig.now += sim::second;
    else if (pause == Pause::button)
        button();
}

} // namespace fuzz
