#include "libs/files/ByteBuffer.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include <sys/mman.h>
#include <unistd.h>

namespace files {

namespace {

constexpr std::size_t minCapacity = 64 * 1024;
constexpr std::size_t hugePage = 2 * 1024 * 1024;

std::size_t wholePages(std::size_t length) {
    const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    return (length + page - 1) / page * page;
}

void unmap(BYTE *data, std::size_t capacity) {
    if (data)
        ::munmap(data, capacity);
}

} // namespace

ByteBuffer::~ByteBuffer() {
    unmap(m_data, m_capacity);
}

void ByteBuffer::grow(std::size_t atLeast) {
    const std::size_t capacity = wholePages(std::max({atLeast, m_capacity * 2, minCapacity}));
    void *block = m_data ? ::mremap(m_data, m_capacity, capacity, MREMAP_MAYMOVE)
                         : ::mmap(nullptr, capacity, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (block == MAP_FAILED)
        throw std::bad_alloc();
    // Taking an image in by small pages would cost half as much time as decoding it.
    if (capacity >= 2 * hugePage)
        (void)::madvise(block, capacity, MADV_HUGEPAGE);
    m_data = static_cast<BYTE *>(block);
    m_capacity = capacity;
}

void ByteBuffer::append(const BYTE *bytes, std::size_t length) {
    if (length == 0)
        return;
    std::memcpy(room(length), bytes, length);
    add(length);
}

void ByteBuffer::forgetBefore(std::size_t offset) {
    const std::size_t end = offset / hugePage * hugePage;
    if (end <= m_forgotten)
        return;
    (void)::madvise(m_data + m_forgotten, end - m_forgotten, MADV_DONTNEED);
    m_forgotten = end;
}

void ByteBuffer::swap(ByteBuffer &other) noexcept {
    std::swap(m_data, other.m_data);
    std::swap(m_size, other.m_size);
    std::swap(m_capacity, other.m_capacity);
    std::swap(m_forgotten, other.m_forgotten);
}

std::shared_ptr<BYTE> ByteBuffer::release() {
    const std::size_t used = wholePages(m_size);
    BYTE *data = std::exchange(m_data, nullptr);
    const std::size_t capacity = std::exchange(m_capacity, 0);
    m_size = 0;
    if (used < capacity)
        unmap(data + used, capacity - used);
    if (used == 0)
        return nullptr;
    return std::shared_ptr<BYTE>(data, [used](BYTE *block) { unmap(block, used); });
}

} // namespace files
