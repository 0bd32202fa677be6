#pragma once

#include <cstdint>
#include <vector>

#include "libs/files/ByteBuffer.h"
#include "libs/files/Image.h"
#include "libs/files/Status.h"

namespace files {

// Puts the records of a file together into contiguous elements.
//
// Bytes are kept in the order in which they come, with a short note where each run of them belongs.
// As long as addresses rise, that is already the image. Otherwise the runs are sorted and joined
// once at the end, and in between whenever there are too many of them, so that shuffled records
// take n log n time and repeated ones no memory.
class RunCollector {
public:
    void reserve(std::size_t bytes) { m_bytes.reserve(bytes); }

    // Room for the next record's bytes, valid until the next call.
    BYTE *room(std::size_t length) { return m_bytes.room(length); }

    // Takes in the first `length` bytes of that room for `address`. badAddressRange past 32 bits or
    // past the size of an image, badFormat where an address gets two different values (which may
    // show as late as finish()).
    Status commit(std::uint64_t address, std::size_t length) {
        if (length == 0 || m_runs.empty() || m_runs.back().end() != address || address + length > addressSpace ||
            m_bytes.size() + length > m_byteLimit)
            return commitElsewhere(address, length);
        m_runs.back().length += static_cast<std::uint32_t>(length);
        m_bytes.add(length);
        return Status::ok;
    }

    // Hands the elements over: contiguous, in rising order, none touching the next.
    Status finish(std::vector<Element> &elements);

private:
    static constexpr std::size_t minRunStep = 128 * 1024;
    static constexpr std::size_t minByteStep = 16 * 1024 * 1024;

    struct Run {
        std::uint32_t address;
        std::uint32_t length;
        std::uint32_t offset; // into m_bytes
        std::uint64_t end() const { return std::uint64_t(address) + length; }
    };

    Status commitElsewhere(std::uint64_t address, std::size_t length);
    bool isSettled() const;
    Status settle();

    ByteBuffer m_bytes;
    std::vector<Run> m_runs;
    std::size_t m_settledBytes = 0;      // so many bytes lie in the order of their addresses
    std::size_t m_runLimit = minRunStep; // settle() when there are more
    std::size_t m_byteLimit = minByteStep;
};

} // namespace files
