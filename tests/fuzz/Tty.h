#pragma once

#include "tests/fuzz/Target.h"

namespace fuzz {

// A tty that is there in this process only, with a clock of its own that waits for nobody: what would take seconds
// takes microseconds. The linker puts it in front of the system calls and of the clock of the library under test (the
// option list ttyCalls of CMakeLists.txt).
constexpr const char *ttyName = "/dev/fuzz";

// What is at the other end.
class Peer {
public:
    virtual ~Peer() = default;
    virtual std::vector<std::uint8_t> answer(const std::vector<std::uint8_t> &sent) = 0;

    // Whether it may come twice what it answers to these, and nobody has to mind.
    virtual bool mayComeTwice(const std::vector<std::uint8_t> &) { return true; }
};

// From here on the peer answers, and the input says what becomes of its answers on their way: nothing, as long as the
// input is at its end.
void plugIn(Peer &peer, Input &damage);

// Whether the last answer since it was asked before came twice, at once, and may not.
bool ttyCameTwice();

// So much has passed on that clock, in nanoseconds.
std::int64_t ttyTime();

// One call of the tty that fails, by its name: after so many that work, with that error. Without an error a read or a
// write moves nothing, and a wait ends for another reason than the awaited one.
struct TtyFault {
    std::string call;
    unsigned after = 0;
    int error = 0;
};
void failOnce(const TtyFault &fault); // from the next plugIn() on
bool ttyHasFailed();

} // namespace fuzz
