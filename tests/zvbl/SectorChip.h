#pragma once

#include <atomic>
#include <set>
#include <thread>

#include "tests/zvbl/Pty.h"

// A chip that knows GET, READ, ERASE_EXT of one sector and FIRMWARE_CRC, and whose checksum may be of many kinds.
class SectorChip {
public:
    static constexpr unsigned base = 0x08000000;

    enum class Crc {
        ours,
        otherPolynomial,
        otherStart,
        alwaysTheSame,
        notListed,
        hiddenOnce, // the first list has a damaged byte in its place
        spoiltOnce, // the first sum has a damaged byte, and fits its check byte all the same
        sizeNotTold,
        sizeLost,     // the first two answers tell another size
        oddSize,      // a size that no sector has
        tinySize,     // another, which is too small
        hugeSize,     // and one that is too large
        listsDiffer,  // no two lists are the same, and none has the command
        listedOnce,   // the second list is refused, and the first has not the command
        droppedLater, // no answer to the number of sectors, but to the first
        notOfEach,    // it knows no question for several checksums
        fewOfEach,    // it refuses that question for more than two sectors
        silentOfEach, // no answer to that question
        deadlyOfEach, // no answer to that question and to anything that follows
        refused,      // by a NACK after the opcode
        refusedCount, // by a NACK after the number of sectors, but the size is told
        dropped,      // no answer to the number of sectors
        deadly        // no answer to that and to anything that follows
    };

    SectorChip(Pty &pty, zvbl::Bytes memory, Crc crc = Crc::ours);
    ~SectorChip();
    SectorChip(const SectorChip &) = delete;
    SectorChip &operator=(const SectorChip &) = delete;

    std::set<int> damagedReads; // numbers of READs, from 1, whose reply has a wrong byte
    bool damageAll = false;
    std::atomic<int> reads{0};
    std::atomic<int> questions{0};       // for a checksum
    std::atomic<int> questionsOfEach{0}; // for one of each sector
    std::atomic<int> sizeQuestions{0};
    std::atomic<int> lists{0};
    std::atomic<int> lastRead{0}; // after so many READs it is dead, if not 0

private:
    void serve();
    void serveOne(std::uint8_t opcode);
    void serveList();
    void serveRead();
    void serveCrc();
    void serveCrcOfEach(std::size_t from, std::size_t sectors);
    void serveErase();
    zvbl::Bytes take(std::size_t count);
    void answer(const zvbl::Bytes &bytes);
    std::size_t toldSize() const;
    std::uint32_t checksum(std::size_t from, std::size_t count) const;

    Pty &m_pty;
    zvbl::Bytes m_memory;
    const Crc m_crc;
    zvbl::Bytes m_heard;
    bool m_dead = false;
    std::atomic<bool> m_stop{false};
    std::thread m_thread;
};
