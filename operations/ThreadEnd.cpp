#include "operations/ThreadEnd.h"

#include <pthread.h>

void ThreadEnd::Signal::raise() {
    const std::lock_guard<std::mutex> lock(mutex);
    ended = true;
    raised.notify_all();
}

// Ends with its thread. It holds the signal itself, because the watcher may be gone by then.
struct ThreadEnd::Watch {
    std::shared_ptr<Signal> signal;
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
// not told, but a key that is set again comes a second time, behind all of the first round.
void ThreadEnd::Watch::end(void *self) {
    auto *watch = static_cast<Watch *>(self);
    if (!watch->othersHaveEnded) {
        watch->othersHaveEnded = true;
        if (pthread_setspecific(key(), watch) == 0)
            return;
    }
    watch->signal->raise();
    delete watch;
}

void ThreadEnd::watchThisThread() {
    auto *watch = new Watch{signal};
    if (pthread_setspecific(Watch::key(), watch) != 0)
        Watch::end(watch);
}

void ThreadEnd::wait() {
    std::unique_lock<std::mutex> lock(signal->mutex);
    signal->raised.wait(lock, [this] { return signal->ended; });
}
