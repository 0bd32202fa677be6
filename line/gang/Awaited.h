#pragma once

#include <chrono>
#include <cstddef>
#include <vector>

#include <poll.h>

// All that one thread waits for in one poll(), in parts, so that only what is ready is called.
class Awaited {
public:
    struct Part {
        std::size_t first = 0;
        std::size_t end = 0;
    };

    void clear() { m_all.clear(); }
    // What somebody adds to the list is a part of it.
    template <typename Add>
    Part add(const Add &toList) {
        const std::size_t first = m_all.size();
        toList(m_all);
        return {first, m_all.size()};
    }
    // One for reading; a negative one is passed over.
    Part add(int descriptor) {
        return add([=](std::vector<pollfd> &all) { all.push_back({descriptor, POLLIN, 0}); });
    }

    // Until something is ready; for so long at most.
    void wait(std::chrono::steady_clock::duration atMost);
    // Whether anything of a part was, at the end of the wait.
    bool isReady(const Part &part) const;

private:
    std::vector<pollfd> m_all;
};
