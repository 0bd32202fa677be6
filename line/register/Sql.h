#pragma once

// All SQL of the register: tables, then triggers, then what is asked. Tables and questions are in words that PostgreSQL
// takes too. Triggers are not: there each needs a function. Times are texts, UTC, "2026-11-21T18:04:20.113Z", so their
// order is that of the texts.
namespace sql {

constexpr char tables[] = R"(
CREATE TABLE IF NOT EXISTS plan (
    hash TEXT PRIMARY KEY,
    name TEXT NOT NULL,
    quantity BIGINT NOT NULL,
    text TEXT NOT NULL
);
CREATE TABLE IF NOT EXISTS number (
    series TEXT NOT NULL,
    n BIGINT NOT NULL,
    uid TEXT NOT NULL,
    PRIMARY KEY (series, n),
    UNIQUE (series, uid),
    UNIQUE (series, n, uid)
);
CREATE TABLE IF NOT EXISTS attempt (
    id INTEGER PRIMARY KEY,
    plan TEXT NOT NULL REFERENCES plan (hash),
    order_name TEXT NOT NULL,
    station TEXT NOT NULL,
    nest TEXT NOT NULL,
    uid TEXT,
    series TEXT,
    n BIGINT,
    owner TEXT NOT NULL,
    burning INTEGER NOT NULL DEFAULT 0 CHECK (burning IN (0, 1)),
    result TEXT NOT NULL CHECK (result IN ('open', 'pass', 'fail', 'refused', 'interrupted')),
    cause TEXT,
    started TEXT NOT NULL,
    ended TEXT,
    FOREIGN KEY (series, n, uid) REFERENCES number (series, n, uid),
    CHECK ((result = 'open') = (ended IS NULL)),
    CHECK (cause IS NULL OR result NOT IN ('open', 'pass')),
    CHECK (cause IS NOT NULL OR result NOT IN ('fail', 'refused')),
    CHECK (uid IS NOT NULL OR result IN ('fail', 'refused')),
    CHECK ((series IS NULL) = (n IS NULL))
);
CREATE UNIQUE INDEX IF NOT EXISTS attempt_open ON attempt (uid) WHERE result = 'open';
CREATE INDEX IF NOT EXISTS attempt_of_chip ON attempt (uid, plan, result);
CREATE INDEX IF NOT EXISTS attempt_of_order ON attempt (plan, order_name, result, uid);
CREATE INDEX IF NOT EXISTS attempt_started ON attempt (started, order_name, result, cause);
CREATE TABLE IF NOT EXISTS record (
    attempt INTEGER PRIMARY KEY REFERENCES attempt (id),
    text TEXT NOT NULL
);
CREATE TABLE IF NOT EXISTS delivery (
    attempt INTEGER PRIMARY KEY REFERENCES attempt (id),
    tries BIGINT NOT NULL DEFAULT 0,
    why TEXT,
    delivered TEXT
);
CREATE INDEX IF NOT EXISTS delivery_open ON delivery (tries, attempt) WHERE delivered IS NULL;
)";

constexpr char triggers[] = R"(
CREATE TRIGGER IF NOT EXISTS number_stays BEFORE UPDATE ON number
BEGIN SELECT RAISE(ABORT, 'a number is never changed'); END;
CREATE TRIGGER IF NOT EXISTS number_remains BEFORE DELETE ON number
BEGIN SELECT RAISE(ABORT, 'a number is never deleted'); END;
CREATE TRIGGER IF NOT EXISTS plan_stays BEFORE UPDATE ON plan
BEGIN SELECT RAISE(ABORT, 'a plan is never changed'); END;
CREATE TRIGGER IF NOT EXISTS plan_remains BEFORE DELETE ON plan
BEGIN SELECT RAISE(ABORT, 'a plan is never deleted'); END;
CREATE TRIGGER IF NOT EXISTS attempt_closed BEFORE UPDATE ON attempt WHEN OLD.result <> 'open'
BEGIN SELECT RAISE(ABORT, 'a closed attempt is never changed'); END;
CREATE TRIGGER IF NOT EXISTS attempt_stays BEFORE UPDATE OF
    id, plan, order_name, station, nest, uid, series, n, owner, started ON attempt
BEGIN SELECT RAISE(ABORT, 'what an attempt is about is never changed'); END;
CREATE TRIGGER IF NOT EXISTS attempt_burns BEFORE UPDATE OF burning ON attempt WHEN OLD.burning > NEW.burning
BEGIN SELECT RAISE(ABORT, 'what has burned has burned'); END;
CREATE TRIGGER IF NOT EXISTS attempt_remains BEFORE DELETE ON attempt
BEGIN SELECT RAISE(ABORT, 'an attempt is never deleted'); END;
CREATE TRIGGER IF NOT EXISTS record_stays BEFORE UPDATE ON record
WHEN OLD.attempt <> NEW.attempt OR (SELECT result FROM attempt WHERE id = OLD.attempt) <> 'open'
BEGIN SELECT RAISE(ABORT, 'the record of a closed attempt is never changed'); END;
CREATE TRIGGER IF NOT EXISTS record_remains BEFORE DELETE ON record
BEGIN SELECT RAISE(ABORT, 'a record is never deleted'); END;
CREATE TRIGGER IF NOT EXISTS delivery_done BEFORE UPDATE ON delivery
WHEN OLD.delivered IS NOT NULL OR OLD.attempt <> NEW.attempt
BEGIN SELECT RAISE(ABORT, 'what is delivered is delivered'); END;
CREATE TRIGGER IF NOT EXISTS delivery_remains BEFORE DELETE ON delivery
BEGIN SELECT RAISE(ABORT, 'a delivery is never deleted'); END;
)";

constexpr char keepPlan[] =
    "INSERT INTO plan (hash, name, quantity, text) VALUES ($1, $2, $3, $4) ON CONFLICT DO NOTHING";

// Of a chip.
constexpr char openOfChip[] = "SELECT id, owner FROM attempt WHERE uid = $1 AND result = 'open'";
constexpr char passedThePlan[] = "SELECT count(*) FROM attempt WHERE uid = $1 AND plan = $2 AND result = 'pass'";
constexpr char metTwice[] = "SELECT count(*) FROM attempt WHERE uid = $1 AND id > $2 AND cause = 'same-id'";

// Of an order. Without the chip itself: who makes it again makes no further unit.
constexpr char othersOfOrder[] = "SELECT count(DISTINCT uid) FROM attempt WHERE plan = $1 AND order_name = $2 "
                                 "AND result IN ('pass', 'open') AND uid <> $3";
constexpr char passedOfOrder[] =
    "SELECT count(DISTINCT uid) FROM attempt WHERE plan = $1 AND order_name = $2 AND result = 'pass'";

// Of a series.
constexpr char numberOfChip[] = "SELECT n FROM number WHERE series = $1 AND uid = $2";
constexpr char highestNumber[] = "SELECT max(n) FROM number WHERE series = $1 AND n BETWEEN $2 AND $3";
constexpr char giveNumber[] = "INSERT INTO number (series, n, uid) VALUES ($1, $2, $3)";

// Of an attempt.
constexpr char nextAttempt[] = "SELECT coalesce(max(id), 0) + 1 FROM attempt";
constexpr char beginAttempt[] =
    "INSERT INTO attempt (id, plan, order_name, station, nest, uid, series, n, owner, result, cause, started, ended) "
    "VALUES ($1, $2, $3, $4, $5, $6, $7, $8, $9, $10, $11, $12, $13)";
constexpr char beginRecord[] = "INSERT INTO record (attempt, text) VALUES ($1, $2)";
constexpr char burnAttempt[] = "UPDATE attempt SET burning = 1 WHERE id = $1";
constexpr char closeRecord[] = "UPDATE record SET text = $2 WHERE attempt = $1";
constexpr char closeAttempt[] = "UPDATE attempt SET result = $2, cause = $3, ended = $4 WHERE id = $1";
constexpr char isBurning[] = "SELECT burning FROM attempt WHERE id = $1";
constexpr char recordOf[] = "SELECT text FROM record WHERE attempt = $1";
constexpr char allOpen[] = "SELECT id, owner FROM attempt WHERE result = 'open' ORDER BY id";

// Of deliveries: those of a station, which may share its register with others.
constexpr char queueDelivery[] = "INSERT INTO delivery (attempt) VALUES ($1)";
constexpr char undelivered[] = "SELECT d.attempt, r.text, d.tries FROM delivery d "
                               "JOIN attempt a ON a.id = d.attempt JOIN record r ON r.attempt = d.attempt "
                               "WHERE d.delivered IS NULL AND a.station = $1 ORDER BY d.tries, d.attempt LIMIT $2";
constexpr char howManyUndelivered[] = "SELECT count(*) FROM delivery d JOIN attempt a ON a.id = d.attempt "
                                      "WHERE d.delivered IS NULL AND a.station = $1";
constexpr char delivered[] = "UPDATE delivery SET tries = tries + 1, why = NULL, delivered = $2 "
                             "WHERE attempt = $1 AND delivered IS NULL";
constexpr char notDelivered[] = "UPDATE delivery SET tries = tries + 1, why = $2 "
                                "WHERE attempt = $1 AND delivered IS NULL";

// Of the books: each a beginning, to which the conditions below are added with AND, and an order.
constexpr char someUnits[] =
    "SELECT a.id, a.started, a.nest, a.order_name, a.result, a.series, a.n, a.uid, a.cause FROM attempt a WHERE true";
constexpr char someRecords[] = "SELECT r.text FROM attempt a JOIN record r ON r.attempt = a.id WHERE true";
constexpr char someEnds[] = "SELECT a.nest, a.result, a.cause, a.started, a.ended FROM attempt a WHERE true";
constexpr char someOfChips[] = "SELECT a.uid, a.result, a.id FROM attempt a "
                               "WHERE a.uid IS NOT NULL AND a.result NOT IN ('refused', 'open')";
constexpr char inOrder[] = " ORDER BY a.id";
// An index has them in this order, with all that is asked of an attempt except its order.
constexpr char byChip[] = " ORDER BY a.uid";
// Those of an order are sorted: to look up each attempt in the order of that index takes longer.
constexpr char byChipOfSome[] = " ORDER BY a.uid || ''";
// A "?" is the place of a value.
constexpr char isOfChip[] = "a.uid = ?";
constexpr char hasNumber[] = "a.n = ?";
constexpr char isOfOrder[] = "a.order_name = ?";
constexpr char isOfResult[] = "a.result = ?";
// Attempts are begun one after the other, so that their numbers tell of most which ones are older, and only the few in
// between are looked up. Registers of several stations may have some.
constexpr char startedSince[] = "a.id >= ? AND (a.id > ? OR a.started >= ?)";
constexpr char firstSince[] = "SELECT min(id) FROM attempt WHERE started >= $1";
constexpr char lastBefore[] = "SELECT max(id) FROM attempt WHERE started < $1";
constexpr char allUndelivered[] = "SELECT count(*) FROM delivery WHERE delivered IS NULL";

} // namespace sql
