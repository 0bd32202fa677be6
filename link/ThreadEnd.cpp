#include "link/ThreadEnd.h"

#include <pthread.h>
#include <utility>

void ThreadEnd::Run::end() {
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
struct ThreadEnd::Watch {
    std::shared_ptr<Run> run;
    bool othersHaveEnded = false;

    static pthread_key_t key();
    static void end(void *self);
};

pthread_key_t ThreadEnd::Watch::key() {
    static const pthread_key_t made = [] {
        pthread_key_t fresh{};
        pthread_key_create(&fresh, &Watch::end);
        return fresh;
    }();
    return made;
}

// QThread keeps data of its own under such a key, which must be gone as well. The order of the keys is
// not told, but a key that is set again comes a second time, after all of the first round.
void ThreadEnd::Watch::end(void *self) {
    auto *watch = static_cast<Watch *>(self);
    if (!watch->othersHaveEnded) {
        watch->othersHaveEnded = true;
        if (pthread_setspecific(key(), watch) == 0)
            return;
    }
    watch->run->end();
    delete watch;
}

bool ThreadEnd::claim() {
    const std::lock_guard<std::mutex> lock(m_run->mutex);
    if (m_run->isUnderWay)
        return false;
    m_run->isUnderWay = true;
    m_run->isHeld = true;
    return true;
}

void ThreadEnd::watchThisThread() {
    {
        const std::lock_guard<std::mutex> lock(m_run->mutex);
        m_run->thread = std::this_thread::get_id();
    }
    auto *watch = new Watch{m_run};
    if (pthread_setspecific(Watch::key(), watch) != 0)
        Watch::end(watch);
}

void ThreadEnd::leftToTheThread() {
    const std::lock_guard<std::mutex> lock(m_run->mutex);
    m_run->isHeld = false;
    m_run->changed.notify_all();
}

void ThreadEnd::enter() {
    const std::lock_guard<std::mutex> lock(m_run->mutex);
    m_run->thread = std::this_thread::get_id();
    m_run->isHeld = false;
}

void ThreadEnd::release() {
    const std::shared_ptr<Run> run = m_run; // the last acts may take this object away
    run->end();
}

bool ThreadEnd::isUnderWay() const {
    const std::lock_guard<std::mutex> lock(m_run->mutex);
    return m_run->isUnderWay;
}

bool ThreadEnd::isOnThisThread() const {
    const std::lock_guard<std::mutex> lock(m_run->mutex);
    return m_run->isUnderWay && m_run->thread == std::this_thread::get_id();
}

void ThreadEnd::wait() const {
    std::unique_lock<std::mutex> lock(m_run->mutex);
    m_run->changed.wait(lock, [this] { return !m_run->isUnderWay || m_run->thread == std::this_thread::get_id(); });
}

void ThreadEnd::atEnd(std::function<void()> act) {
    {
        const std::lock_guard<std::mutex> lock(m_run->mutex);
        if (m_run->isUnderWay) {
            m_run->lastActs.push_back(std::move(act));
            return;
        }
    }
    act();
}
