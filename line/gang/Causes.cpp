#include "line/gang/Causes.h"

namespace {

constexpr Cause causes[] = {
    {"no-port", "nothing at the port", false, false},
    {"permission", "the port may not be opened", false, false},
    {"port-busy", "another program has the port", false, false},
    {"no-answer", "no answer: boot pin, cable", true, false},
    {"link-lost", "answers no more: contact, supply", true, false},
    {"wrong-chip", "another chip", false, true},
    {"protected", "the chip is protected", false, false},
    {"already-made", "made already", false, false},
    {"same-id", "two nests at one identifier", false, false},
    {"not-allowed", "not allowed", false, true},
    {"no-number", "no number", false, true},
    {"erase", "can't be erased", false, false},
    {"write", "can't be written", false, false},
    {"verify-differs", "holds something else than was written", false, false},
    {"verify-not-done", "can't be compared", false, false},
    {"options", "option bytes can't be set", false, false},
    {"sector-protection", "sector protection can't be changed", false, false},
    {"otp", "OTP memory", false, true},
    {"access", "access protection can't be set", false, false},
    {"timeout", "took too long", false, false},
    {"worker-crash", "its process has ended", false, false},
    {"station-died", "the line has ended meanwhile", false, false},
};
constexpr Cause unknown = {"", "a cause without a name", false, true};

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
