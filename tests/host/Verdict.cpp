#include "tests/host/Verdict.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <iterator>
#include <regex>
#include <sstream>
#include <stdexcept>

#include <sys/resource.h>
#include <sys/syscall.h>

namespace host {
namespace {

constexpr int connectFailed = 2;
constexpr int unexpectedEnd = 70;
constexpr int notLoaded = 127;
constexpr std::size_t fourSectors = 4096; // of the chip

// The file that a good run makes.
std::optional<std::string> wanted(const Place &place, const Job &job, const Good &good) {
    return job.end == End::chip ? place.cells().substr(0, fourSectors) : good.output;
}

bool endsProcess(const Fault &fault) {
    return fault.harm == Harm::signalled && fault.value != SIGSTOP;
}

bool onlyTakesTime(const Fault &fault) {
    const bool stops = fault.harm == Harm::signalled && fault.value == SIGSTOP;
    return stops || fault.harm == Harm::held || fault.harm == Harm::cut;
}

// A line that is overwritten counts as lines.
std::vector<std::string> linesOf(std::string text) {
    std::replace(text.begin(), text.end(), '\r', '\n');
    std::istringstream in(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);)
        if (!line.empty())
            lines.push_back(line);
    return lines;
}

// The last words of the run are none of those of a good one.
bool tells(const Run &run, const Run &good) {
    const std::vector<std::string> said = linesOf(run.text);
    const std::vector<std::string> usual = linesOf(good.text);
    if (!run.errors.empty())
        return true;
    return !said.empty() && std::find(usual.begin(), usual.end(), said.back()) == usual.end();
}

bool isHeard(const Case &harmed, const Run &run) {
    const bool isOpen = std::find(harmed.closed.begin(), harmed.closed.end(), 1) == harmed.closed.end();
    return isOpen && harmed.output == Output::file && !run.hitOutput && harmed.limits.count(RLIMIT_FSIZE) == 0;
}

// MEANT: OTP data that can't be opened are none, and there is nothing to write.
bool foundNothing(const Job &job, const std::string &changes) {
    return job.mayFindNothing && changes.find("ZVBL_DNLOAD") == std::string::npos;
}

// MEANT: what the chip does not tell of its version is left out, and no failure.
std::string withoutVersion(const std::string &text) {
    static const std::regex version(" BID:.*");
    return std::regex_replace(text, version, "");
}

std::string ofSuccess(Place &place, const Job &job, const Case &harmed, const Good &good, const Run &run) {
    if (isHeard(harmed, run) && withoutVersion(run.text) != withoutVersion(good.run.text))
        return "success with another text";
    if (job.output != nullptr && place.file(job.output) != wanted(place, job, good))
        return "success with a wrong file";
    if (job.end == End::chip)
        return place.changes() == place.cells() ? "" : "success with wrong cells";
    const std::string changes = place.changes();
    if (changes == good.changes || foundNothing(job, changes))
        return "";
    return "success, and something else went to the chip:\n" + changes;
}

// Without any memory the loader of programs does not get as far as to say so.
bool isOfTheLoader(const Case &harmed, const Run &run) {
    const bool lacksMemory = harmed.fault.call == SYS_mmap || harmed.limits.count(RLIMIT_AS) != 0;
    return lacksMemory && run.text.empty() && run.status > 128;
}

std::string ofFailure(const Job &job, const Case &harmed, const Good &good, const Run &run) {
    if (endsProcess(harmed.fault))
        return run.status == 128 + harmed.fault.value ? "" : "the signal did not end it";
    // An erase is not tried twice; all that an upload asks for is.
    if (onlyTakesTime(harmed.fault) && job.end == End::chip && job.output != nullptr)
        return "a failure, and nothing but time was lost";
    if (isOfTheLoader(harmed, run))
        return "";
    const int allowed[] = {job.failure, connectFailed, unexpectedEnd, notLoaded};
    if (std::find(std::begin(allowed), std::end(allowed), run.status) == std::end(allowed))
        return run.status > 128 ? "a crash" : "an exit status of something else";
    if (isHeard(harmed, run) && !tells(run, good.run))
        return "failure without a word";
    return linesOf(run.text).size() > 0 && linesOf(run.text).back() == job.success ? "failure, and the words of success"
                                                                                   : "";
}

// The file in its place is the old one or the new one, and whatever stands beside it is the new one.
std::string ofFiles(Place &place, const Job &job, const Case &harmed, const Good &good, bool &left) {
    if (job.output != nullptr) {
        const std::optional<std::string> now = place.file(job.output);
        const std::optional<std::string> old = job.replaces ? std::optional<std::string>("old") : std::nullopt;
        if (now != old && now != wanted(place, job, good))
            return "half a file";
    }
    for (const std::string &name : place.litter(job)) {
        if (!endsProcess(harmed.fault) || place.file(name.c_str()) != wanted(place, job, good))
            return "left behind: " + name;
        left = true;
    }
    return "";
}

// The chip takes the same words again, and then all is well.
std::string ofNextRun(Place &place, const Job &job, const Good &good) {
    const Run again = place.run(job);
    if (again.status != 0)
        return "the next run fails with " + std::to_string(again.status);
    if (job.output != nullptr && place.file(job.output) != wanted(place, job, good))
        return "the next run makes a wrong file";
    return place.changes() == place.cells() ? "" : "wrong cells after the next run";
}

} // namespace

Good goodRun(Place &place, const Job &job) {
    place.prepare(job);
    Good good{place.run(job), {}, {}};
    good.changes = place.changes();
    if (job.output != nullptr)
        good.output = place.file(job.output);
    const bool isRight = job.end == End::paper || good.changes == place.cells();
    const std::vector<std::string> said = linesOf(good.run.text);
    if (good.run.status != 0 || said.back() != job.success || !isRight || !good.run.errors.empty())
        throw std::runtime_error(std::string(job.name) + " fails when nothing goes wrong\n" + good.run.text +
                                 good.run.errors);
    if (good.run.asksForTheTime)
        throw std::runtime_error(std::string(job.name) + " waits for a time of the machine's clock");
    return good;
}

Verdict judge(Place &place, const Job &job, const Case &harmed, const Good &good) {
    place.prepare(job);
    const Run run = place.run(job, harmed);
    Verdict verdict;
    verdict.reached = harmed.fault.harm == Harm::none || run.hit;
    verdict.right = run.status == 0;
    // The double has limits too, and ends the process where it can't note a call.
    if (run.errors.rfind("zvbl double:", 0) == 0)
        return {false, false, false, ""};
    if (run.hung)
        verdict.lie = "it does not end";
    if (verdict.lie.empty())
        verdict.lie = ofFiles(place, job, harmed, good, verdict.left);
    if (verdict.lie.empty() && verdict.right)
        verdict.lie = ofSuccess(place, job, harmed, good, run);
    else if (verdict.lie.empty())
        verdict.lie = ofFailure(job, harmed, good, run);
    if (verdict.lie.empty() && !verdict.right && job.end == End::chip)
        verdict.lie = ofNextRun(place, job, good);
    if (!verdict.lie.empty())
        verdict.lie += ", status " + std::to_string(run.status) + "\n" + run.text + run.errors;
    return verdict;
}

} // namespace host
