#pragma once

#include <array>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "sim/chip/Chip.h"
#include "tests/damage/Line.h"
#include "tests/faults/Border.h"

namespace faults {

struct Link {
    const char *name;
    const char *words; // with which a command line begins
    std::unique_ptr<damage::Line> (*make)(const sim::ChipFacts &facts);
};

enum LinkNumber { usart, dfu, i2c, can, spi, slcan, linkCount };
extern const Link links[linkCount];

// What goes wrong in a run.
struct Fate {
    BorderPlan border{};
    damage::Kind kind = damage::Kind::bit;
    std::vector<std::size_t> toChip{}; // units of the line, as damage::Lane takes them
    std::vector<std::size_t> toHost{};
    std::uint32_t seed = 0;
    std::optional<sim::Fault> ofChip{}; // its power, or an answer
};

// What a chip keeps without power, by the names of sim::Chip::Section.
using Memory = std::map<std::string, zvbl::Bytes>;

enum class Units { toChip, toHost, flashSteps, optionSteps, erasingSteps, commands, count };
using Counts = std::array<std::size_t, static_cast<std::size_t>(Units::count)>;

struct Ending {
    int status = -1;                          // exit status; 128 and the number for a signal
    std::string text;                         // on standard output, carriage returns as new lines
    Memory memory;                            // of the chip
    std::map<std::string, std::string> files; // of the directory
    std::vector<Call> calls;
    Counts counts{};
    sim::Nanoseconds time = 0;  // that the run took, of its own
    bool becameAnother = false; // a command, on the way to the chip, where no check guards it
};

// The real console with both libraries, and a simulated chip at the end of the line. Each run is a process of its own,
// in a directory whose files and a chip whose memory are the caller's.
class Machine {
public:
    Machine();
    ~Machine();
    Machine(const Machine &) = delete;
    Machine &operator=(const Machine &) = delete;

    // A chip from the factory, with content in all of its flash.
    static Memory newChip(const std::string &chip);

    // Without a word in front of `words`; the files of the directory are these, and no others.
    Ending run(const std::string &chip, LinkNumber link, const std::string &words, const Memory &memory,
               const std::map<std::string, std::string> &files, const Fate &fate = {});

private:
    struct Shared;

    void layOut(const std::string &chip, const std::map<std::string, std::string> &files);
    std::map<std::string, std::string> look() const;
    void connect(const std::string &chip, LinkNumber link, const Memory &memory);
    [[noreturn]] void beConsole(const std::string &words, const Memory &memory, const Fate &fate) const;

    std::string m_directory;
    std::string m_chip;                         // whose map is in the directory
    std::map<std::string, std::string> m_files; // that are in the directory
    LinkNumber m_link = linkCount;
    std::unique_ptr<damage::Line> m_line; // as each run finds it
    Shared *m_shared;
    int m_output; // a file without a name
};

} // namespace faults
