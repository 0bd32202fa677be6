#include "sim/chip/Otp.h"

namespace sim {

namespace {
constexpr std::size_t lockCount = 128;
constexpr std::size_t blockLength = 32;
constexpr std::uint8_t locked = 0x00;
constexpr std::uint8_t blank = 0xFF;

Outcome program(Cells &cells, std::size_t offset, const Bytes &bytes) {
    return cells.program(offset, bytes) ? Outcome{} : Outcome::powerLost();
}
} // namespace

Otp::Otp(const ChipFacts &chip, Faults &faults)
    : m_data(chip.otpLength, CellKind::flash, 1, faults),
      m_locks(chip.otpLength == 0 ? 0 : lockCount, CellKind::flash, 1, faults) {}

Outcome Otp::writeData(std::size_t offset, const Bytes &bytes) {
    const std::size_t lastBlock = (offset + bytes.size() - 1) / blockLength;
    for (std::size_t block = offset / blockLength; block <= lastBlock; ++block)
        if (m_locks.data()[block] == locked)
            return Outcome::refuse("OTP block " + std::to_string(block) + " is locked");
    if (!m_data.canProgram(offset, bytes))
        return Outcome::refuseNotErased("OTP cell is written already");
    return program(m_data, offset, bytes);
}

Outcome Otp::writeLocks(std::size_t offset, const Bytes &bytes) {
    for (const std::uint8_t byte : bytes)
        if (byte != locked && byte != blank)
            return Outcome::refuse("a lock byte takes 00 only");
    if (!m_locks.canProgram(offset, bytes))
        return Outcome::refuseNotErased("lock byte is written already");
    return program(m_locks, offset, bytes);
}

} // namespace sim
