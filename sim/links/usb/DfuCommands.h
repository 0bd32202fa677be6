#pragma once

#include "sim/bootloader/Bootloader.h"

namespace sim {

// bStatus of GETSTATUS, as far as the chip says it.
enum class DfuStatus : std::uint8_t {
    ok = 0x00,
    errTarget = 0x01,
    errWrite = 0x03,
    errErase = 0x04,
    errCheckErased = 0x05,
    errAddress = 0x08,
    errVendor = 0x0B,
    errStalledPkt = 0x0F,
};

// What the blocks of DNLOAD and UPLOAD mean: commands, replies, and memory at the address pointer. It knows
// nothing of the states of DFU.
class DfuCommands {
public:
    DfuCommands(Chip &chip, Faults &faults, Log &log);

    struct Result {
        DfuStatus status;
        Next ended;     // whether the chip resets after it, runs its own code, or has lost its power
        Nanoseconds at; // when the work is done
    };

    // One block, not empty, that is to be carried out now.
    Result download(std::uint16_t block, const Bytes &data, Nanoseconds now);

    // Reads memory; `block` is 2 or more.
    Result upload(std::uint16_t block, std::size_t length, Nanoseconds now, Bytes &data);

    // Runs at the pointer.
    Result leave(Nanoseconds now);

    // The commands of block 0, and the reply to the last one, which is fetched once.
    Bytes list() const;
    std::optional<Bytes> takeReply();

    // The pointer is at the start of flash, and there is no reply.
    void forget();

    Bootloader &bootloader() { return m_bootloader; }
    const Bootloader &bootloader() const { return m_bootloader; }

private:
    static const CommandTable &variants();

    Result command(std::uint8_t code, const Bytes &rest, Nanoseconds now);
    Result setPointer(const Bytes &rest, Nanoseconds now);
    Result conclude(DfuStatus refusal);
    Bytes addressOf(std::uint16_t block) const;

    Bootloader m_bootloader;
    Chip &m_chip;
    Log &m_log;
    std::uint32_t m_pointer;
    std::optional<Bytes> m_reply;
};

} // namespace sim
