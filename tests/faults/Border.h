#pragma once

#include <cstdint>

namespace faults {

// The calls that the console makes to its two libraries, in the order of Calls.inc.
enum class Function : std::uint16_t {
#define CALL(name, result, parameters, arguments, half) name,
#include "tests/faults/Calls.inc"
#undef CALL
    count
};

const char *nameOf(Function function);
bool isOfFiles(Function function);

// What becomes of one call. `before`: it answers the status and has done nothing. `after`: it does, and has done all.
// `half`: it has done a half; `never`: it has not come back within the time limit of the link.
enum class Way : std::uint8_t { before, after, half, never };
bool hasHalf(Function function);

struct BorderPlan {
    unsigned call = 0; // the number of the one that goes wrong, from 1; 0: none
    Way way = Way::before;
    unsigned status = 0; // what it answers
};

struct Call {
    Function function;
    std::uint32_t status;
    std::uint64_t arguments; // a sum over the numbers among them
    bool wrong;
};

// What is told of a run, in memory that outlives it.
struct CallList {
    static constexpr unsigned most = 8192;
    unsigned count;
    Call calls[most];
};

// From here on the calls of this process go through the border.
void watchBorder(const BorderPlan &plan, CallList &list);

} // namespace faults
