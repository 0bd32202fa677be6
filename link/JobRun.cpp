#include "link/JobRun.h"

#include <pthread.h>
#include <utility>

void JobRun::State::end() {
    std::unique_lock<std::mutex> lock(mutex);
    changed.wait(lock, [this] { return !isHeld; });
    const auto acts = std::exchange(lastActs, {});
    lock.unlock();
    for (const auto &act : acts)
        act();
    lock.lock();
    isUnderWay = false;
    thread = std::thread::id();
    changed.notify_all();
}

// Ends with its thread. It holds the run itself, because the job may be gone by then.
struct JobRun::Watch {
    std::shared_ptr<State> state;
    bool othersHaveEnded = false;

    static pthread_key_t key();
    static void end(void *self);
};

pthread_key_t JobRun::Watch::key() {
    static const pthread_key_t made = [] {
        pthread_key_t fresh{};
        pthread_key_create(&fresh, &Watch::end);
        return fresh;
    }();
    return made;
}

// QThread keeps data of its own under such a key, which must be gone as well. The order of the keys is
// not told, but a key that is set again comes a second time, after all of the first round.
void JobRun::Watch::end(void *self) {
    auto *watch = static_cast<Watch *>(self);
    if (!watch->othersHaveEnded) {
        watch->othersHaveEnded = true;
        if (pthread_setspecific(key(), watch) == 0)
            return;
    }
    watch->state->end();
    delete watch;
}

bool JobRun::claim() {
    const std::lock_guard<std::mutex> lock(m_state->mutex);
    if (m_state->isUnderWay)
        return false;
    m_state->isUnderWay = true;
    m_state->isHeld = true;
    return true;
}

void JobRun::watchThisThread() {
    {
        const std::lock_guard<std::mutex> lock(m_state->mutex);
        m_state->thread = std::this_thread::get_id();
    }
    auto *watch = new Watch{m_state};
    if (pthread_setspecific(Watch::key(), watch) != 0)
        Watch::end(watch);
}

void JobRun::leftToTheThread() {
    const std::lock_guard<std::mutex> lock(m_state->mutex);
    m_state->isHeld = false;
    m_state->changed.notify_all();
}

void JobRun::enter() {
    const std::lock_guard<std::mutex> lock(m_state->mutex);
    m_state->thread = std::this_thread::get_id();
    m_state->isHeld = false;
}

void JobRun::release() {
    const std::shared_ptr<State> state = m_state; // the last acts may take this object away
    state->end();
}

bool JobRun::isUnderWay() const {
    const std::lock_guard<std::mutex> lock(m_state->mutex);
    return m_state->isUnderWay;
}

bool JobRun::isOnThisThread() const {
    const std::lock_guard<std::mutex> lock(m_state->mutex);
    return m_state->isUnderWay && m_state->thread == std::this_thread::get_id();
}

void JobRun::wait() const {
    const std::shared_ptr<State> state = m_state; // the last acts may take this object away
    std::unique_lock<std::mutex> lock(state->mutex);
    state->changed.wait(lock, [&] { return !state->isUnderWay || state->thread == std::this_thread::get_id(); });
}

void JobRun::atEnd(std::function<void()> act) {
    {
        const std::lock_guard<std::mutex> lock(m_state->mutex);
        if (m_state->isUnderWay) {
            m_state->lastActs.push_back(std::move(act));
            return;
        }
    }
    act();
}
