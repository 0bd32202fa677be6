// Stands between the console and its libraries: the linker leads every call of the one to the other through here.

#include "tests/faults/Border.h"

#include <csignal>
#include <type_traits>

#include <sys/resource.h>

#include "device/FilesInc.h"
#include "link/ZVBLLIB.h"
#include "tests/damage/VirtualTime.h"
#include "tests/faults/Power.h"

namespace faults {
namespace {

struct {
    BorderPlan plan;
    CallList *list = nullptr;
} border;

constexpr const char *names[] = {
#define CALL(name, result, parameters, arguments, half) #name,
#include "tests/faults/Calls.inc"
#undef CALL
};

// The halves of functions that have none.
struct NothingHalf {};

constexpr bool halves[] = {
#define CALL(name, result, parameters, arguments, half) #half[0] != 'N',
#include "tests/faults/Calls.inc"
#undef CALL
};

constexpr sim::Nanoseconds timeLimit = 60 * sim::second; // longer than any that the console gives a link

std::uint64_t add(std::uint64_t sum, std::uint64_t number) {
    constexpr std::uint64_t prime = 0x100000001B3;
    return (sum ^ number) * prime;
}

template <class... Arguments>
std::uint64_t sumOf(Arguments... arguments) {
    std::uint64_t sum = 0;
    const auto take = [&sum](auto argument) {
        if constexpr (std::is_integral_v<decltype(argument)>)
            sum = add(sum, static_cast<std::uint64_t>(argument));
    };
    (take(arguments), ...);
    return sum;
}

// A file can get so long and no longer.
template <class Save>
auto onFullDisk(Save save) {
    constexpr rlim_t room = 1024;
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit little{room, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &little);
    const auto status = save();
    setrlimit(RLIMIT_FSIZE, &before);
    return status;
}

template <class Result, class Real, class Half>
Result goWrong(Real real, Half half) {
    const auto status = static_cast<Result>(border.plan.status);
    switch (border.plan.way) {
    case Way::before: break;
    case Way::after: static_cast<void>(real()); break;
    case Way::half: static_cast<void>(half()); break;
    case Way::never: damage::advanceTo(damage::now() + timeLimit); break;
    }
    return status;
}

template <class Result, class Real, class Half>
Result cross(Function function, std::uint64_t arguments, Real real, Half half) {
    if (border.list == nullptr || border.list->count == CallList::most)
        return real();
    Call &call = border.list->calls[border.list->count++];
    call = {function, 0, arguments, border.list->count == border.plan.call};
    if constexpr (std::is_void_v<Result>) {
        if (!call.wrong || border.plan.way == Way::after)
            real();
    } else {
        const Result result = call.wrong ? goWrong<Result>(real, half) : real();
        call.status = static_cast<std::uint32_t>(result);
        return result;
    }
}

} // namespace

const char *nameOf(Function function) {
    return names[static_cast<std::size_t>(function)];
}

bool isOfFiles(Function function) {
    return function >= Function::FILES_CreateImage;
}

bool hasHalf(Function function) {
    return halves[static_cast<std::size_t>(function)];
}

void watchBorder(const BorderPlan &plan, CallList &list) {
    list.count = 0;
    border.plan = plan;
    border.list = &list;
}

} // namespace faults

using namespace faults;

extern "C" {
#define REAL(name) __real_##name
#define NOTHING_HALF NothingHalf()
#define CALL(name, result, parameters, arguments, half)                                                      \
    result __real_##name parameters;                                                                         \
    result __wrap_##name parameters {                                                                        \
        return cross<result>(                                                                                \
            Function::name, sumOf arguments, [&] { return __real_##name arguments; }, [&] { return half; }); \
    }
#include "tests/faults/Calls.inc"
#undef CALL
#undef NOTHING_HALF
#undef REAL
}
