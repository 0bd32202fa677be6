#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

// What the targets share. Each target is one LLVMFuzzerTestOneInput, the entry that libFuzzer calls with one input
// after the other; without libFuzzer, Replay.cpp calls it with the files of a directory.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace fuzz {

// Ends the process when the condition does not hold: a fuzzer keeps the input then.
inline void require(bool holds, const char *what) {
    if (holds)
        return;
    std::fprintf(stderr, "not so: %s\n", what);
    std::abort();
}

// An input, taken from its front. After its end every byte is 0.
class Input {
public:
    Input(const std::uint8_t *data, std::size_t size) : m_at(data), m_end(data + size) {}

    bool empty() const { return m_at == m_end; }
    std::uint8_t byte() { return empty() ? 0 : *m_at++; }
    unsigned word() {
        const unsigned high = byte();
        return high << 8 | byte();
    }

    // As many bytes as there are, up to the count.
    std::vector<std::uint8_t> bytes(std::size_t count) {
        std::vector<std::uint8_t> taken;
        while (count-- > 0 && !empty())
            taken.push_back(byte());
        return taken;
    }
    std::string rest() {
        const std::string text(m_at, m_end);
        m_at = m_end;
        return text;
    }

private:
    const std::uint8_t *m_at;
    const std::uint8_t *m_end;
};

} // namespace fuzz
