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

    // Length in bytes when it was opened.
    std::uint64_t size() const { return m_size; }

    // Reads up to `wanted` bytes; `got` is less only at the end of the file.
    Status read(void *target, std::size_t wanted, std::size_t &got);

private:
    int m_fd = -1;
    std::uint64_t m_size = 0;
};

} // namespace files
