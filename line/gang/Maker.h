#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "line/gang/Attempt.h"
#include "line/gang/Shift.h"
#include "line/hooks/Hook.h"
#include "line/view/State.h"
#include "programs/Status.h"

// Makes units at one nest, one after the other. Whoever waits in poll() drives it; nothing here waits, but for the
// disk. What the operator sees of a unit follows what the register knows: PASS is shown after it is on disk.
class Maker {
public:
    using Clock = std::chrono::steady_clock;

    // All of these live longer.
    Maker(const Shift &shift, const Nest &nest, NestState &shown) : m_shift(shift), m_nest(nest), m_shown(shown) {}

    // Begins a unit.
    void start();
    bool isBusy() const { return m_attempt || m_lost || m_entry != Entry::none; }
    // The identifier of the chip that is being made, empty while it is not known.
    std::string uid() const;

    // Looks how far it is, to be shown.
    void look();

    void watch(std::vector<pollfd> &all) const;
    Clock::time_point deadline() const;

    // Does what can be done now without the register. True where another step has begun: there may be more to do.
    bool proceed();

    // What it has for the register, which has to be written before anything else is done. What has ended makes room for
    // what begins, and what begins may tell that something must not burn.
    enum class Entry { end, beginning, burning, none };
    Entry entry() const { return m_entry; }
    // Writes it. Refusal of the register goes through.
    void write();
    // After that is on disk. True where the unit is over; else there may be more to do.
    bool written();
    // In its place where it could not be written: the unit is over, and nothing of how it ended is known.
    void notWritten(const Refusal &refusal);
    // Of the unit that is over.
    const Json &record() const { return m_record; }
    bool isUsedUp() const { return m_isUsedUp; } // it was refused because there are no more numbers or units

    // No more tries after this one.
    void finish() { m_mayRetry = false; }
    // At the next place where that does no harm.
    void stop();
    // Another nest has met a chip with the identifier of this one.
    void giveUpSameId();

private:
    void begin();
    bool take(Attempt::Event event);
    void identified();
    void answered();
    void allow(const Json &supply);
    void begun();
    void sendImage();
    void decline(const char *result, const std::string &cause, const std::string &text);
    bool ended();
    bool again();
    void over(const Outcome &outcome);
    void keep();
    void show();
    bool isBegun() const { return m_record.at("attempt").is_number(); }

    const Shift &m_shift;
    const Nest &m_nest;
    NestState &m_shown;
    Json m_record;
    UnitFacts m_facts;
    std::unique_ptr<Attempt> m_attempt;
    std::unique_ptr<Hook> m_hook;
    Entry m_entry = Entry::none;
    Json m_supply;                 // of the hook, for what begins
    Beginning m_beginning;         // as it was written
    Json m_kept;                   // the same of the end; null where nothing was
    std::optional<Outcome> m_lost; // of the last try, before the next one
    Clock::time_point m_again;     // when that begins
    struct Verdict {
        const char *result;
        std::string cause;
        std::string text;
    };
    std::optional<Verdict> m_verdict; // ours, whatever the attempt says
    int m_tries = 0;
    bool m_isBurning = false;
    bool m_mayRetry = true;
    bool m_isUsedUp = false;
};
