#include "libs/files/ByteBuffer.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

#include <sys/mman.h>
#include <unistd.h>

namespace files {

namespace {

constexpr std::size_t HugePage = 2 * 1024 * 1024;

// Asks for large pages: taking an image in page by page would cost half as much as decoding it.
void preferHugePages(void *block, std::size_t length) {
    if (length < 2 * HugePage)
        return;
    const std::uintptr_t page = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
    const std::uintptr_t begin = (reinterpret_cast<std::uintptr_t>(block) + page - 1) / page * page;
    const std::uintptr_t end = (reinterpret_cast<std::uintptr_t>(block) + length) / page * page;
    (void)::madvise(reinterpret_cast<void *>(begin), end - begin, MADV_HUGEPAGE);
}

} // namespace

ByteBuffer::~ByteBuffer() {
    std::free(m_data);
}

void ByteBuffer::grow(std::size_t atLeast) {
    const std::size_t capacity = std::max(atLeast, m_capacity * 2);
    void *block = std::realloc(m_data, capacity);
    if (!block)
        throw std::bad_alloc();
    m_data = static_cast<BYTE *>(block);
    m_capacity = capacity;
    preferHugePages(block, capacity);
}

void ByteBuffer::append(const BYTE *bytes, std::size_t length) {
    std::memcpy(room(length), bytes, length);
    add(length);
}

void ByteBuffer::swap(ByteBuffer &other) noexcept {
    std::swap(m_data, other.m_data);
    std::swap(m_size, other.m_size);
    std::swap(m_capacity, other.m_capacity);
}

std::shared_ptr<BYTE> ByteBuffer::release() {
    if (m_size > 0 && m_size < m_capacity) {
        if (void *trimmed = std::realloc(m_data, m_size))
            m_data = static_cast<BYTE *>(trimmed);
    }
    std::shared_ptr<BYTE> block(std::exchange(m_data, nullptr), &std::free);
    m_size = m_capacity = 0;
    return block;
}

} // namespace files
