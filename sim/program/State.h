#pragma once

#include <string>

#include "sim/chip/Chip.h"

namespace sim {

// The file that keeps a chip's memory between runs. It is always written whole beside the old one, under a name
// that nobody knows before, and renamed over it.
class StateFile {
public:
    StateFile(std::string path, Chip &chip) : m_path(std::move(path)), m_chip(chip) {}

    // Reads the file into the chip. A file that is not there leaves the chip as it comes from the factory.
    // False and a message for one that is damaged or of another chip: then the chip is not to be used.
    bool load(std::string &error);

    // Writes when the memory has changed since the last time. False and a message when it cannot.
    bool save(std::string &error);

private:
    bool readAll(int fd, Bytes &file, std::string &error);
    bool replace(const Bytes &file) const;

    std::string m_path;
    Chip &m_chip;
    bool m_everSaved = false;
    std::uint64_t m_savedChanges = 0;
};

} // namespace sim
