#include "line/gang/Maker.h"

#include <algorithm>
#include <ctime>
#include <utility>

#include "line/gang/Causes.h"
#include "line/gang/UnitRecord.h"
#include "line/hooks/Permission.h"
#include "line/plan/Order.h"
#include "programs/Text.h"

namespace {

// Shown as steps.
constexpr char asking[] = "ask"; // while the hook before runs
constexpr char pausing[] = "retry";

std::map<std::string, std::string> textsOf(const Json &supply) {
    std::map<std::string, std::string> texts;
    for (const auto &one : supply.items())
        texts[one.key()] = one.value().is_string() ? one.value().get<std::string>() : one.value().dump();
    return texts;
}

} // namespace

void Maker::start() {
    m_record = newRecord(m_shift, m_nest);
    m_verdict = std::nullopt;
    m_tries = 0;
    m_isBurning = false;
    m_isUsedUp = false;
    m_shown.number = std::nullopt;
    m_shown.why.clear();
    begin();
}

void Maker::begin() {
    ++m_tries;
    m_attempt =
        std::make_unique<Attempt>(makeOrder(m_shift.job, m_shift.plan, linkJson(m_shift.station.link, m_nest.port)));
    m_shown.phase = Phase::busy;
    m_shown.step = m_attempt->step();
    m_shown.percent = -1;
}

std::string Maker::uid() const {
    return isBusy() && m_record.at("uid").is_string() ? m_record.at("uid").get<std::string>() : "";
}

void Maker::look() {
    if (!m_attempt)
        return;
    m_attempt->look();
    m_shown.percent = m_attempt->percent();
}

void Maker::watch(std::vector<pollfd> &all) const {
    if (m_attempt)
        m_attempt->watch(all);
    if (m_hook)
        m_hook->watch(all);
}

Maker::Clock::time_point Maker::deadline() const {
    const auto never = Clock::time_point::max();
    if (m_lost)
        return m_mayRetry && !m_verdict ? m_again : Clock::time_point();
    return std::min(m_attempt ? m_attempt->deadline() : never, m_hook ? m_hook->deadline() : never);
}

bool Maker::proceed() {
    if (m_hook && m_hook->proceed())
        answered();
    if (m_lost)
        return again();
    while (m_attempt && m_entry == Entry::none) {
        const Attempt::Event event = m_attempt->next();
        if (event == Attempt::Event::nothing)
            return false;
        if (take(event))
            return true;
    }
    return false;
}

bool Maker::take(Attempt::Event event) {
    m_shown.percent = m_attempt->percent();
    switch (event) {
    case Attempt::Event::step: m_shown.step = m_attempt->step(); return true;
    case Attempt::Event::identified: identified(); return false;
    case Attempt::Event::irreversible: m_entry = Entry::burning; return false;
    case Attempt::Event::end: return ended();
    default: return false;
    }
}

void Maker::write() {
    if (m_entry == Entry::beginning)
        m_beginning = m_shift.units.begin(m_record, m_shift.terms(), m_shift.delivers());
    else if (m_entry == Entry::burning)
        m_shift.units.burning(m_record.at("attempt"));
    else
        keep();
}

bool Maker::written() {
    const Entry entry = std::exchange(m_entry, Entry::none);
    if (entry == Entry::beginning)
        begun();
    if (entry == Entry::burning && !m_verdict) { // it may have been stopped by what was written with it
        m_isBurning = true;
        m_attempt->burn();
    }
    if (entry != Entry::end)
        return false;
    if (m_kept.is_object())
        m_record = std::move(m_kept);
    show();
    return true;
}

void Maker::notWritten(const Refusal &refusal) {
    m_entry = Entry::none;
    m_hook.reset();
    m_attempt.reset();
    m_lost.reset();
    m_shown.phase = Phase::fail;
    m_shown.why = std::string("not recorded: ") + refusal.what();
}

void Maker::identified() {
    const Json &identified = m_attempt->outcome().identified;
    if (isBegun()) { // this is a further try
        if (identified.at("uid") == m_record.at("uid"))
            sendImage();
        else
            decline("fail", "link-lost", "another chip has come in its place");
        return;
    }
    setIdentified(m_record, identified);
    if (!m_shift.station.before)
        return allow(Json::object());
    m_shown.step = asking;
    m_hook = std::make_unique<Hook>(*m_shift.station.before, m_record);
}

void Maker::answered() {
    const Permission permission = permissionOf(*m_shift.station.before, m_hook->end());
    m_hook.reset();
    if (permission.given)
        allow(permission.supply);
    else
        decline("refused", "not-allowed", permission.why);
}

void Maker::allow(const Json &supply) {
    m_supply = supply;
    m_entry = Entry::beginning;
}

void Maker::begun() {
    const Beginning beginning = std::exchange(m_beginning, {});
    for (const Orphan &orphan : beginning.orphans)
        m_shift.orphan(orphan);
    m_isUsedUp = beginning.isUsedUp;
    if (!beginning.cause.empty()) {
        decline("refused", beginning.cause, beginning.text);
        if (beginning.cause == "same-id")
            m_shift.sameId(m_record.at("uid"));
        return;
    }
    m_record = beginning.record;
    if (m_record.at("number").is_number())
        m_shown.number = m_record.at("number").get<std::uint32_t>();
    m_facts.number = m_shown.number.value_or(0);
    m_facts.uid = bytesOfHex(m_record.at("uid"));
    m_facts.time = std::time(nullptr);
    m_facts.order = m_shift.order;
    m_facts.supply = textsOf(m_supply);
    sendImage();
}

void Maker::sendImage() {
    try {
        const Runs image = wholeWords(unitImageOf(m_shift.job, m_shift.image, m_facts));
        setImage(m_record, image);
        m_attempt->go(image);
    } catch (const Refusal &refusal) { // the unit's data have no room
        decline("fail", "not-allowed", refusal.what());
    }
}

void Maker::decline(const char *result, const std::string &cause, const std::string &text) {
    m_verdict = Verdict{result, cause, text};
    if (m_attempt)
        m_attempt->stop();
}

void Maker::stop() {
    finish();
    m_hook.reset();
    if (m_attempt)
        m_attempt->stop();
}

void Maker::giveUpSameId() {
    if (isBusy() && isBegun() && !m_isBurning)
        decline("fail", "same-id", "another nest has met a chip with this identifier");
}

bool Maker::ended() {
    const Outcome outcome = m_attempt->outcome();
    m_hook.reset();
    m_attempt.reset();
    const Retry retry = causeOf(outcome.cause).retry;
    const bool mayRetry = !m_verdict && !m_isBurning && m_mayRetry && m_tries <= m_shift.station.retries;
    if (retry == Retry::none || !mayRetry) {
        over(outcome);
        return false;
    }
    m_lost = outcome;
    m_again = Clock::now() + std::chrono::seconds(retry == Retry::later ? m_shift.station.retryAfter : 0);
    m_shown.step = pausing;
    m_shown.percent = -1;
    return again();
}

// Begins the next try when it is time, or leaves it at the last one.
bool Maker::again() {
    const bool mayRetry = m_mayRetry && !m_verdict;
    if (mayRetry && Clock::now() < m_again)
        return false;
    const Outcome lost = *m_lost;
    m_lost.reset();
    if (mayRetry)
        begin();
    else
        over(lost);
    return mayRetry;
}

void Maker::over(const Outcome &outcome) {
    setOutcome(m_record, outcome, m_tries);
    if (m_verdict)
        setResult(m_record, m_verdict->result, m_verdict->cause, m_verdict->text);
    m_kept = Json();
    m_entry = Entry::end;
}

void Maker::keep() {
    if (isBegun())
        m_kept = m_shift.units.close(m_record, m_shift.delivers());
    else if (m_record.at("result") != "interrupted") // of which nothing has come
        m_kept = m_shift.units.note(m_record, m_shift.delivers());
}

void Maker::show() {
    const std::string result = m_record.at("result");
    m_shown.phase = result == "pass" ? Phase::pass : result == "refused" ? Phase::refused : Phase::fail;
    if (result == "interrupted")
        m_shown.why = "interrupted";
    else if (result != "pass")
        m_shown.why = whyOf(m_record.at("cause"), m_record.at("text"));
}
