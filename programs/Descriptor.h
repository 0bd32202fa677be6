#pragma once

#include <utility>

#include <unistd.h>

// An open file descriptor, closed at the end. A negative one is none.
class Descriptor {
public:
    explicit Descriptor(int open = -1) : m_number(open) {}
    ~Descriptor() { reset(); }
    Descriptor(Descriptor &&other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
    Descriptor &operator=(Descriptor &&other) noexcept {
        std::swap(m_number, other.m_number);
        return *this;
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    int number() const { return m_number; }
    bool isOpen() const { return m_number >= 0; }
    void reset() {
        if (isOpen())
            close(std::exchange(m_number, -1));
    }

private:
    int m_number;
};
