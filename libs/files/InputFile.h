#pragma once

#include <cstddef>
#include <cstdint>

#include "libs/files/Status.h"

namespace files {

// A regular file, open for reading. Anything else (directory, FIFO, device) is refused at once,
// without waiting for it.
class InputFile {
public:
    InputFile() = default;
    ~InputFile();
    InputFile(const InputFile &) = delete;
    InputFile &operator=(const InputFile &) = delete;

    Status open(const char *path);

    // Bytes that are in memory in the place of a file. They have to stay there.
    void open(const void *bytes, std::size_t length);

    // Length in bytes when it was opened.
    std::uint64_t size() const { return m_size; }

    // Reads up to `wanted` bytes; `got` is less only at the end of the file.
    Status read(void *target, std::size_t wanted, std::size_t &got);

    // Where the record begins that a reader of its format did not take, as an offset in bytes, or just behind it.
    void stopAt(std::uint64_t offset) { m_stoppedAt = offset; }
    std::uint64_t stoppedAt() const { return m_stoppedAt; }

private:
    int m_fd = -1;
    const char *m_bytes = nullptr;
    std::uint64_t m_left = 0; // of the bytes in memory
    std::uint64_t m_size = 0;
    std::uint64_t m_stoppedAt = 0;
};

} // namespace files
