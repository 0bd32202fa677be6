#pragma once

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

// One run of a job, from the claim to the end of all code on its thread, the closing lines of the class
// that ran the thread included: QThread::wait can return while QThread's own last lines still touch the
// object. Copies stand for the same run. Every thread may call everything.
class JobRun {
public:
    // Takes the run for the caller; false while the one before it has not ended.
    bool claim();

    // A run on a thread of its own: the thread calls watchThisThread first thing, whoever made it calls
    // leftToTheThread when it no longer needs the job. The run ends with the thread, not before both.
    void watchThisThread();
    void leftToTheThread();

    // A run on the calling thread: from enter to release.
    void enter();
    void release();

    bool isUnderWay() const;
    bool isOnThisThread() const;
    // Returns when no run is under way; at once on the thread of the run itself.
    void wait() const;
    // Does the last act of the run, on its thread, before any wait returns; at once without a run.
    void atEnd(std::function<void()> act);

private:
    struct State {
        mutable std::mutex mutex;
        std::condition_variable changed;
        bool isUnderWay = false;
        bool isHeld = false; // by whoever makes the thread
        std::thread::id thread;
        std::vector<std::function<void()>> lastActs;
        void end();
    };
    struct Watch;
    std::shared_ptr<State> m_state = std::make_shared<State>();
};
