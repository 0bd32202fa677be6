#include "operations/ThreadEnd.h"

void ThreadEnd::Signal::raise() {
    const std::lock_guard<std::mutex> lock(mutex);
    ended = true;
    raised.notify_all();
}

// Destroyed with its thread. It holds the signal itself, because the watcher may be gone by then.
struct ThreadEnd::Watch {
    std::shared_ptr<Signal> signal;
    ~Watch() {
        if (signal) {
            signal->raise();
        }
    }
};

void ThreadEnd::watchThisThread() {
    thread_local Watch watch;
    watch.signal = signal;
}

void ThreadEnd::wait() {
    std::unique_lock<std::mutex> lock(signal->mutex);
    signal->raised.wait(lock, [this] { return signal->ended; });
}
