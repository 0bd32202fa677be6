#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>

// Tells when a thread has left all of its code, the closing lines of the class that ran it included.
// QThread::wait can return while QThread's own last lines still touch the object.
class ThreadEnd {
public:
    // On the thread: the end of this thread is meant.
    void watchThisThread();
    // On another thread: returns behind that end. The thread must have been started.
    void wait();

private:
    struct Signal {
        std::mutex mutex;
        std::condition_variable raised;
        bool ended = false;
        void raise();
    };
    struct Watch;
    std::shared_ptr<Signal> signal = std::make_shared<Signal>();
};
