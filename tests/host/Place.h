#pragma once

#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

#include "tests/host/Sweeps.h"

namespace host {

std::string contentOf(const std::string &path);

// The simulated chip, in a process of its own.
class SimulatedChip {
public:
    explicit SimulatedChip(const std::string &directory);
    ~SimulatedChip();
    SimulatedChip(const SimulatedChip &) = delete;
    SimulatedChip &operator=(const SimulatedChip &) = delete;

private:
    pid_t m_process = 0;
};

// A directory in which the console runs again and again, and what is at the other end of its link.
class Place {
public:
    explicit Place(End end);
    ~Place();
    Place(const Place &) = delete;
    Place &operator=(const Place &) = delete;

    // Puts the files back to what they were; an image and what is read are others each time.
    void prepare(const Job &job);
    Run run(const Job &job, const Case &harmed = {});
    // What went to the chip and stays there: calls of the double, or the chip's first sectors.
    std::string changes();
    // Which entries of the directory nobody expects.
    std::vector<std::string> litter(const Job &job) const;
    std::optional<std::string> file(const char *name) const; // its content

    // What the first sectors of the chip hold, or have to hold after a good run.
    const std::string &cells() const { return m_cells; }
    void newChip();

private:
    std::string at(const std::string &name) const { return m_directory + "/" + name; }
    void makeFiles();
    void putMaps();
    Command command(const Job &job, const Case &harmed) const;

    const End m_end;
    std::string m_root;
    std::string m_directory;
    std::string m_cells;
    unsigned m_round = 0;
    std::optional<SimulatedChip> m_chip;
};

} // namespace host
