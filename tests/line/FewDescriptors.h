#pragma once

#include <sys/resource.h>
#include <unistd.h>

// Leaves us only so many further descriptors, to the end of the block. What is open stays open.
class FewDescriptors {
public:
    explicit FewDescriptors(int more) {
        getrlimit(RLIMIT_NOFILE, &m_before);
        const int next = dup(STDIN_FILENO);
        close(next);
        const rlimit few = {static_cast<rlim_t>(next) + static_cast<rlim_t>(more), m_before.rlim_max};
        setrlimit(RLIMIT_NOFILE, &few);
    }
    ~FewDescriptors() { setrlimit(RLIMIT_NOFILE, &m_before); }
    FewDescriptors(const FewDescriptors &) = delete;
    FewDescriptors &operator=(const FewDescriptors &) = delete;

private:
    rlimit m_before{};
};
