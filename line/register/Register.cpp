#include "line/register/Register.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "line/register/Owner.h"
#include "line/register/RegisterFile.h"
#include "line/register/Sql.h"
#include "programs/Status.h"

namespace {

// A text of a record as a value; null and what is not there is NULL.
SqlValue valueOf(const Json &record, const char *key) {
    const auto found = record.find(key);
    if (found == record.end() || found->is_null())
        return {};
    if (found->is_number_integer())
        return found->get<std::int64_t>();
    return found->get<std::string>();
}

std::string textOf(const Json &record) {
    return record.dump(-1, ' ', false, Json::error_handler_t::replace);
}

bool refuse(Beginning &beginning, const char *cause, const std::string &text, bool isUsedUp = false) {
    beginning.cause = cause;
    beginning.text = text;
    beginning.isUsedUp = isUsedUp;
    return false;
}

} // namespace

std::string timeNow() {
    using std::chrono::milliseconds;
    const auto since = std::chrono::system_clock::now().time_since_epoch();
    const auto count = std::chrono::duration_cast<milliseconds>(since).count();
    const std::time_t seconds = count / 1000;
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    char day[32];
    std::strftime(day, sizeof day, "%Y-%m-%dT%H:%M:%S", &parts);
    char text[40];
    std::snprintf(text, sizeof text, "%s.%03dZ", day, static_cast<int>(count % 1000));
    return text;
}

// A database whose tables are being made can't be shared yet, so one process after the other opens it. The lock is on
// the directory: whoever closes the file itself would lose the locks of the database on it.
class Register::OneAtATime {
public:
    explicit OneAtATime(const std::string &path)
        : m_directory(open(directoryOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        if (m_directory < 0 || flock(m_directory, LOCK_EX) != 0)
            throw Refusal(registerUnusable, path + ": its directory can't be locked: " + std::strerror(errno));
        makeRegisterFile(path);
    }
    ~OneAtATime() { ::close(m_directory); }
    OneAtATime(const OneAtATime &) = delete;
    OneAtATime &operator=(const OneAtATime &) = delete;

private:
    const int m_directory;
};

Register::Register(const std::string &path) : Register(OneAtATime(path), path) {}

Register::Register(const OneAtATime & /*to the end of this*/, const std::string &path)
    : m_owner(ownerOfThis()), m_database(path, Database::Purpose::writing) {
    m_database.together([&] {
        m_database.run(sql::tables);
        m_database.run(sql::triggers);
    });
}

void Register::keepPlan(const std::string &hash, const std::string &name, std::int64_t quantity,
                        const std::string &text) {
    m_database.tell(sql::keepPlan, {hash, name, quantity, text});
}

// A record keeps its place of "attempt" where it has one.
std::int64_t Register::insert(Json &record, const char *result, const SqlValue &ended) {
    const std::int64_t attempt = m_database.number(sql::nextAttempt, {});
    record["attempt"] = attempt;
    m_database.tell(sql::beginAttempt,
                    {attempt, valueOf(record, "plan"), valueOf(record, "order"), valueOf(record, "station"),
                     valueOf(record, "nest"), valueOf(record, "uid"), valueOf(record, "series"),
                     valueOf(record, "number"), m_owner, std::string(result), valueOf(record, "cause"),
                     valueOf(record, "started"), ended});
    m_database.tell(sql::beginRecord, {attempt, textOf(record)});
    return attempt;
}

// The record first: that of a closed attempt is never changed.
void Register::update(const Json &record, bool deliver) {
    const SqlValue attempt = valueOf(record, "attempt");
    m_database.tell(sql::closeRecord, {attempt, textOf(record)});
    m_database.tell(sql::closeAttempt, {attempt, valueOf(record, "result"), valueOf(record, "cause"), timeNow()});
    if (deliver)
        m_database.tell(sql::queueDelivery, {attempt});
}

Orphan Register::closeOrphan(std::int64_t attempt, bool deliver) {
    std::string text;
    m_database.each(sql::recordOf, {attempt}, [&](const SqlRow &row) { text = row.text(0); });
    Orphan orphan{Json::parse(text), m_database.number(sql::isBurning, {attempt}) != 0};
    orphan.record["result"] = "interrupted";
    orphan.record["cause"] = "station-died";
    orphan.record["text"] = orphan.burning ? "the line ended while this unit was burning" : "the line ended";
    update(orphan.record, deliver);
    return orphan;
}

std::vector<Orphan> Register::orphansAmong(const char *open, const std::vector<SqlValue> &values, bool deliver) {
    std::vector<std::int64_t> dead;
    m_database.each(open, values, [&](const SqlRow &row) {
        if (!lives(row.text(1)))
            dead.push_back(row.number(0));
    });
    std::vector<Orphan> orphans;
    orphans.reserve(dead.size());
    for (const std::int64_t attempt : dead)
        orphans.push_back(closeOrphan(attempt, deliver));
    return orphans;
}

std::vector<Orphan> Register::closeOrphans(bool deliver) {
    std::vector<Orphan> orphans;
    m_database.together([&] { orphans = orphansAmong(sql::allOpen, {}, deliver); });
    return orphans;
}

bool Register::mayBegin(Beginning &beginning, const Terms &terms) {
    const SqlValue uid = valueOf(beginning.record, "uid");
    const SqlValue plan = valueOf(beginning.record, "plan");
    const SqlValue order = valueOf(beginning.record, "order");
    if (m_database.number(sql::openOfChip, {uid}) != 0)
        return refuse(beginning, "same-id", "another nest is at a chip with this identifier");
    if (!terms.again && m_database.number(sql::passedThePlan, {uid, plan}) != 0)
        return refuse(beginning, "already-made", "it was made by this plan already");
    if (m_database.number(sql::othersOfOrder, {plan, order, uid}) >= terms.quantity)
        return refuse(beginning, "no-number", "the order has its " + std::to_string(terms.quantity) + " units", true);
    return terms.series.empty() || giveNumber(beginning, terms);
}

bool Register::giveNumber(Beginning &beginning, const Terms &terms) {
    const SqlValue uid = valueOf(beginning.record, "uid");
    std::int64_t number = m_database.number(sql::numberOfChip, {terms.series, uid}, -1);
    if (number < 0) {
        number = m_database.number(sql::highestNumber, {terms.series, terms.first, terms.last}, terms.first - 1) + 1;
        if (number > terms.last)
            return refuse(beginning, "no-number", "the series " + terms.series + " is used up", true);
        m_database.tell(sql::giveNumber, {terms.series, number, uid});
    }
    beginning.record["series"] = terms.series;
    beginning.record["number"] = number;
    return true;
}

Beginning Register::begin(Json record, const Terms &terms, bool deliver) {
    Beginning beginning;
    beginning.record = std::move(record);
    m_database.together([&] {
        beginning.orphans = orphansAmong(sql::openOfChip, {valueOf(beginning.record, "uid")}, deliver);
        if (mayBegin(beginning, terms))
            insert(beginning.record, "open", {});
    });
    return beginning;
}

void Register::burning(std::int64_t attempt) {
    m_database.tell(sql::burnAttempt, {attempt});
}

Json Register::close(Json record, bool deliver) {
    m_database.together([&] {
        const SqlValue attempt = valueOf(record, "attempt");
        if (m_database.number(sql::metTwice, {valueOf(record, "uid"), attempt}) != 0 && record["result"] == "pass") {
            record["result"] = "fail";
            record["cause"] = "same-id";
            record["text"] = "another nest has met a chip with this identifier";
        }
        update(record, deliver);
    });
    return record;
}

Json Register::note(Json record, bool deliver) {
    m_database.together([&] {
        const std::int64_t attempt = insert(record, record.at("result").get<std::string>().c_str(), timeNow());
        if (deliver)
            m_database.tell(sql::queueDelivery, {attempt});
    });
    return record;
}

std::int64_t Register::made(const std::string &plan, const std::string &order) {
    return m_database.number(sql::passedOfOrder, {plan, order});
}

std::vector<Register::Delivery> Register::undelivered(const std::string &station, int most) {
    std::vector<Delivery> found;
    m_database.each(sql::undelivered, {station, std::int64_t(most)}, [&](const SqlRow &row) {
        found.push_back({row.number(0), row.text(1), row.number(2)});
    });
    return found;
}

std::int64_t Register::howManyUndelivered(const std::string &station) {
    return m_database.number(sql::howManyUndelivered, {station});
}

void Register::delivered(std::int64_t attempt) {
    m_database.tell(sql::delivered, {attempt, timeNow()});
}

void Register::notDelivered(std::int64_t attempt, const std::string &why) {
    m_database.tell(sql::notDelivered, {attempt, why});
}
