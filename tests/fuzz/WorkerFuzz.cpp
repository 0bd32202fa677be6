#include <sys/socket.h>
#include <unistd.h>

#include "line/gang/Attempt.h"
#include "programs/Text.h"
#include "tests/fuzz/Target.h"

namespace {

constexpr std::size_t uidBytes = 12;
constexpr std::size_t longest = 4096; // which a socket holds

void checkIdentified(const Json &identified) {
    fuzz::require(bytesOfHex(identified.at("uid")).size() == uidBytes, "an identifier has 12 bytes");
    for (const char *key : {"chip", "pid", "bootloader"})
        fuzz::require(identified.at(key).is_string(), "a chip has names");
}

void checkEnd(const Outcome &outcome) {
    if (outcome.passed())
        fuzz::require(outcome.identified.is_object() && outcome.end.at("verified") == true &&
                          outcome.end.at("result") == "pass",
                      "what passes was identified and verified");
    if (outcome.end.is_object())
        fuzz::require(outcome.end.at("ms").is_object() && outcome.end.at("options").size() == 2, "a record is whole");
}

} // namespace

// Anything as what the process says that makes a unit: it is understood, or the process counts as broken.
int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    int ends[2];
    if (size > longest || socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        return 0;
    Attempt attempt(std::make_unique<Channel>(ends[0]));
    const bool isSaid = size == 0 || write(ends[1], data, size) == static_cast<ssize_t>(size);
    fuzz::require(isSaid, "the socket holds it");
    shutdown(ends[1], SHUT_WR);
    for (std::size_t turn = 0;; ++turn) {
        fuzz::require(turn <= size + 2, "each turn takes something");
        const Attempt::Event event = attempt.next();
        if (event == Attempt::Event::identified) {
            checkIdentified(attempt.outcome().identified);
            attempt.go({});
        }
        if (event == Attempt::Event::end)
            break;
    }
    close(ends[1]);
    checkEnd(attempt.outcome());
    return 0;
}
