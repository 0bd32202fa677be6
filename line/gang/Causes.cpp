#include "line/gang/Causes.h"

namespace {

constexpr Cause causes[] = {
    {"no-port", "nothing at the port", Retry::none, false},
    {"permission", "the port may not be opened", Retry::none, false},
    {"port-busy", "another program has the port", Retry::none, false},
    {"no-answer", "no answer: boot pin, cable", Retry::atOnce, false},
    {"link-lost", "answers no more: contact, supply", Retry::later, false},
    {"wrong-chip", "another chip", Retry::none, true},
    {"protected", "the chip is protected", Retry::none, false},
    {"already-made", "made already", Retry::none, false},
    {"same-id", "two nests at one identifier", Retry::none, false},
    {"not-allowed", "not allowed", Retry::none, true},
    {"no-number", "no number", Retry::none, true},
    {"erase", "can't be erased", Retry::none, false},
    {"write", "can't be written", Retry::none, false},
    {"verify-differs", "holds something else than was written", Retry::none, false},
    {"verify-not-done", "can't be compared", Retry::none, false},
    {"options", "option bytes can't be set", Retry::none, false},
    {"sector-protection", "sector protection can't be changed", Retry::none, false},
    {"otp", "OTP memory", Retry::none, true},
    {"access", "access protection can't be set", Retry::none, false},
    {"timeout", "took too long", Retry::none, false},
    {"worker-crash", "its process has ended", Retry::none, false},
    {"station-died", "the line has ended meanwhile", Retry::none, false},
};
constexpr Cause unknown = {"", "a cause without a name", Retry::none, true};

} // namespace

const Cause &causeOf(const std::string &name) {
    for (const Cause &cause : causes)
        if (name == cause.name)
            return cause;
    return unknown;
}

std::string whyOf(const std::string &cause, const std::string &text) {
    const Cause &row = causeOf(cause);
    return row.tellsText && !text.empty() ? std::string(row.words) + ": " + text : row.words;
}
