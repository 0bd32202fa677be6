#pragma once

// What the tests of the link library stand on: its C interface, and a chip at the other end.

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "link/ZVBLLIB.h"
#include "tests/integration/SimulatedChip.h"
#include "tests/integration/Witness.h"

// Status bytes of the library.
constexpr BYTE done = 0;
constexpr BYTE gone = 4;
constexpr BYTE noAnswer = 5;
constexpr BYTE commandRefused = 0x13;
constexpr BYTE dataDiffer = 0x13; // of ZVBL_VERIFY alone
constexpr BYTE refused = 0x14;
constexpr BYTE badArgument = 0x21;

constexpr unsigned flashBase = 0x08000000;
constexpr unsigned spimBase = 0x08400000;
constexpr unsigned ramBase = 0x20000000;
constexpr unsigned firstSpimSector = 0x8000;

// A new open link to the chip, the bootloader in its command state. The library keeps links to the end of
// the process.
HANDLE openLink(const SimulatedChip &chip);
// Once more, after a restart of the chip.
BYTE startLink(HANDLE link, const SimulatedChip &chip);

class LibraryTest : public testing::Test {
protected:
    ~LibraryTest() override;

    // A chip at the other end of "link".
    void connect(const std::string &chip, const std::vector<std::string> &options = {});
    // After a command that resets the chip.
    BYTE initAgain();

    BYTE write(unsigned address, Bytes bytes);
    Bytes read(unsigned address, std::size_t length);
    BYTE erase(unsigned sector);

    std::unique_ptr<SimulatedChip> chip;
    HANDLE link = nullptr;
};
