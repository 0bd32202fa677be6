#pragma once

#include <string>
#include <vector>

#include "foundation/LibraryTypes.h"
#include "line/channel/Channel.h"

class CBootLoader;

// The blocks of OTP memory that an order names. No cell of it is written twice: what the chip holds already stays, and
// a chip that holds anything else in the place of a byte is refused before anything is written.
class Otp {
public:
    // Reads the chip. Throws Failure.
    Otp(CBootLoader &control, const Json &blocks);

    bool writesData() const { return !m_data.empty(); }
    bool writesLocks() const { return !m_locks.empty(); }
    // First all data, then all locks, each read back. Throws Failure.
    void write() const;

private:
    struct Write {
        unsigned int address;
        std::vector<BYTE> bytes;
    };
    void addData(unsigned int address, const std::vector<BYTE> &wanted, bool isLocked);
    void addLock(unsigned int address);
    std::vector<BYTE> read(unsigned int address, std::size_t length) const;
    void write(const Write &one) const;

    CBootLoader &m_control;
    std::vector<Write> m_data;
    std::vector<Write> m_locks;
};
