#pragma once

#include <functional>
#include <string>

#include "line/channel/Channel.h"
#include "line/job/Job.h"
#include "line/plan/Plan.h"
#include "line/plan/UnitImage.h"

// How an attempt at a unit ended.
// NOLINTNEXTLINE(bugprone-exception-escape): the move of Json says that it throws nothing, and calls what could
struct Outcome {
    std::string cause; // empty where it passed
    std::string text;
    int code = 0;    // of the console's results
    Json identified; // null where it did not come so far
    Json end;        // what the process that made it told last, null where that did not come
    bool passed() const { return cause.empty(); }
};

// One attempt at a unit, in a process of its own.
class Attempt {
public:
    // The image of the unit whose identifier this is, 12 bytes.
    using MakeImage = std::function<Runs(const std::string &uid)>;
    // A step begins.
    using Tell = std::function<void(const std::string &step)>;

    Attempt(const Job &job, const Plan &plan, MakeImage makeImage, Tell tell)
        : m_job(job), m_plan(plan), m_makeImage(std::move(makeImage)), m_tell(std::move(tell)) {}

    // At a link, as Messages.h tells of it. Refusal of makeImage goes through.
    Outcome run(const Json &link);

private:
    bool take(const Json &message, Channel &channel, Outcome &outcome);
    void go(const Json &identified, Channel &channel) const;

    const Job &m_job;
    const Plan &m_plan;
    const MakeImage m_makeImage;
    const Tell m_tell;
    std::string m_step = "connect";
};
