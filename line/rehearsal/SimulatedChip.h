#pragma once

#include <memory>
#include <string>

#include "line/channel/Child.h"

// A simulated chip at a serial port of its own, to the end of the block.
class SimulatedChip {
public:
    // Keeps the chip's memory in a file, unless it has no name. Each unit of a kind has an identifier of its own.
    // Throws Refusal, with noUnit, where there is none to be had.
    SimulatedChip(const std::string &chip, const std::string &keep, int unit = 0);
    ~SimulatedChip();

    const std::string &port() const { return m_port; }

private:
    std::string m_directory;
    std::string m_port;
    std::unique_ptr<Child> m_chip;
};
