#pragma once

#include <cstddef>
#include <memory>

#include "foundation/LibraryTypes.h"

namespace files {

// A growing block of bytes that is handed over in the end. It grows by realloc, which moves large
// blocks page by page instead of copying them, so that an image is never in memory twice.
class ByteBuffer {
public:
    ByteBuffer() = default;
    ~ByteBuffer();
    ByteBuffer(const ByteBuffer &) = delete;
    ByteBuffer &operator=(const ByteBuffer &) = delete;

    const BYTE *data() const { return m_data; }
    std::size_t size() const { return m_size; }

    // Address space only: memory is taken as it is written to.
    void reserve(std::size_t capacity) {
        if (capacity > m_capacity)
            grow(capacity);
    }

    // Room for `length` bytes behind the last one; add(length) then makes them part of the buffer.
    BYTE *room(std::size_t length) {
        if (length > m_capacity - m_size)
            grow(m_size + length);
        return m_data + m_size;
    }
    void add(std::size_t length) { m_size += length; }

    void append(const BYTE *bytes, std::size_t length);
    void swap(ByteBuffer &other) noexcept;

    // Trims the block to its size and gives it away.
    std::shared_ptr<BYTE> release();

private:
    void grow(std::size_t atLeast);

    BYTE *m_data = nullptr;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
};

} // namespace files
