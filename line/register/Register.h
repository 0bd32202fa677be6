#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "line/register/Database.h"
#include "programs/Json.h"

// On what terms a chip may be made.
struct Terms {
    std::string series;        // that it takes its number from, empty for none
    std::int64_t first = 0;    // number of the series
    std::int64_t last = 0;     // and the last one
    std::int64_t quantity = 0; // units of an order
    bool again = false;        // also one that was made already
};

// An attempt that its owner did not live to close.
struct Orphan {
    Json record;  // as it was closed
    bool burning; // it had begun with what can't be undone
};

// What became of a wish to begin.
// NOLINTNEXTLINE(bugprone-exception-escape): the move of Json says that it throws nothing, and calls what could
struct Beginning {
    Json record;                 // as in the register: with attempt, series and number
    std::string cause;           // why there is no attempt at this chip; empty where there is one
    std::string text;            // the same for a person
    bool isUsedUp = false;       // there are no numbers left, or the order has its units
    std::vector<Orphan> orphans; // of this chip, now closed
};

// The register of units: one number per chip and one chip per number, in a database that several processes use at once.
// What a function has written is on disk when it returns. Whatever goes wrong is a Refusal with registerUnusable, and
// then nothing of it is written.
//
// A record is what is kept of an attempt, written once and kept as it was written; docs/line.md tells its keys. The
// register reads of it "plan", "order", "station", "nest", "uid", "started", "result" and "cause", and writes
// "attempt", "series" and "number". Whoever wants a closed record delivered says so.
class Register {
public:
    // Makes one where there is none, for its group to read and write.
    explicit Register(const std::string &path);

    // Makes one commit of what is written by the functions below meanwhile: all of it is on disk when this returns, and
    // nothing of it where the work throws.
    void together(const std::function<void()> &work) { m_database.together(work); }

    // Keeps the text of a plan; records name its hash.
    void keepPlan(const std::string &hash, const std::string &name, std::int64_t quantity, const std::string &text);

    // Closes what owners that are no more have left open, as "interrupted" with the cause "station-died".
    std::vector<Orphan> closeOrphans(bool deliver);

    // Begins an attempt at the chip of the record, and gives it its number, before anything in it changes.
    Beginning begin(Json record, const Terms &terms, bool deliver);
    // Before the first byte that can't be undone.
    void burning(std::int64_t attempt);
    // Closes an attempt with its record. A chip that another nest has met meanwhile did not pass: which of the two it
    // is nobody knows. Returns the record as it was written.
    Json close(Json record, bool deliver);
    // Keeps the record of an attempt that did not begin.
    Json note(Json record, bool deliver);

    // Units of an order that have passed.
    std::int64_t made(const std::string &plan, const std::string &order);

    struct Delivery {
        std::int64_t attempt;
        std::string record; // as it was written
        std::int64_t tries; // in vain so far
    };
    // What a station has still to deliver, the least tried first, and of those the oldest; at most so many.
    std::vector<Delivery> undelivered(const std::string &station, int most);
    std::int64_t howManyUndelivered(const std::string &station);
    void delivered(std::int64_t attempt);
    void notDelivered(std::int64_t attempt, const std::string &why);

private:
    class OneAtATime;
    Register(const OneAtATime &alone, const std::string &path);

    std::int64_t insert(Json &record, const char *result, const SqlValue &ended);
    void update(const Json &record, bool deliver);
    Orphan closeOrphan(std::int64_t attempt, bool deliver);
    std::vector<Orphan> orphansAmong(const char *open, const std::vector<SqlValue> &values, bool deliver);
    bool mayBegin(Beginning &beginning, const Terms &terms);
    bool giveNumber(Beginning &beginning, const Terms &terms);

    std::string m_owner;
    Database m_database;
};

// Now, as records tell times: "2026-11-21T18:04:20.113Z".
std::string timeNow();
