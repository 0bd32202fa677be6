#pragma once

#include <cstddef>
#include <memory>

#include "foundation/LibraryTypes.h"

namespace files {

// A growing block of bytes that is handed over in the end. It lies in pages of its own: they grow
// without being copied and go back to the system at once, so that an image is in memory once.
class ByteBuffer {
public:
    ByteBuffer() = default;
    ~ByteBuffer();
    ByteBuffer(const ByteBuffer &) = delete;
    ByteBuffer &operator=(const ByteBuffer &) = delete;

    const BYTE *data() const { return m_data; }
    std::size_t size() const { return m_size; }
    std::size_t capacity() const { return m_capacity; }

    // Address space only: memory is taken as it is written to.
    void reserve(std::size_t capacity) {
        if (capacity > m_capacity)
            grow(capacity);
    }

    // Room for `length` bytes after the last one; add(length) then makes them part of the buffer.
    BYTE *room(std::size_t length) {
        if (length > m_capacity - m_size)
            grow(m_size + length);
        return m_data + m_size;
    }
    void add(std::size_t length) { m_size += length; }
    void append(const BYTE *bytes, std::size_t length);

    // Gives the memory of the bytes before `offset` back; they must not be read any more, and
    // the buffer must not grow.
    void forgetBefore(std::size_t offset);

    void swap(ByteBuffer &other) noexcept;

    // Trims the block to its size and gives it away.
    std::shared_ptr<BYTE> release();

private:
    void grow(std::size_t atLeast);

    BYTE *m_data = nullptr;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0; // whole pages
    std::size_t m_forgotten = 0;
};

} // namespace files
