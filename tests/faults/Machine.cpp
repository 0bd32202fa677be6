#include "tests/faults/Machine.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include "sim/chip/ChipTable.h"
#include "tests/faults/Power.h"

int consoleMain(int argc, char **argv); // the main of the console

namespace fs = std::filesystem;

namespace faults {

const Link links[linkCount] = {
    {"USART", "-com --pn tty", damage::makeUsartLine}, {"USB DFU", "-dfu", damage::makeDfuLine},
    {"I2C", "-i2c --pn i2c", damage::makeI2cLine},     {"CAN", "-can --pn can0", damage::makeCanLine},
    {"SPI", "-spi --pn spi", damage::makeSpiLine},     {"CAN adapter", "-can --pn ./adapter", damage::makeSlcanLine},
};

struct Machine::Shared {
    bool orderly;
    bool becameAnother;
    Counts counts;
    sim::Nanoseconds time;
    CallList list;
    bool changed[8];                      // of each section: whether it is below
    std::uint8_t memory[8 * 1024 * 1024]; // the sections one behind the other
};

namespace {

constexpr unsigned longestRun = 60; // seconds; a run takes milliseconds

damage::Line *theLine = nullptr;

zvbl::Bytes content(std::size_t size, std::uint32_t seed) {
    zvbl::Bytes bytes(size);
    std::mt19937 random(seed);
    for (std::uint8_t &byte : bytes)
        byte = static_cast<std::uint8_t>(random());
    return bytes;
}

std::vector<sim::Chip::Section> sectionsOf(damage::Line &line) {
    return line.chip().sections();
}

std::string readFile(const fs::path &path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

bool holds(const sim::Chip::Section &section, const Memory &memory) {
    const zvbl::Bytes &bytes = memory.at(section.name);
    return std::equal(bytes.begin(), bytes.end(), section.cells->data());
}

void putIn(sim::Chip &chip, const Memory &memory) {
    for (const sim::Chip::Section &section : chip.sections())
        if (!holds(section, memory))
            std::copy(memory.at(section.name).begin(), memory.at(section.name).end(), section.cells->raw());
    chip.reset(); // the option bytes hold from now on
}

void harm(damage::Line &line, const Fate &fate) {
    line.toChip.harm(fate.kind, fate.toChip, fate.seed);
    line.toHost.harm(fate.kind, fate.toHost, fate.seed + 1);
    if (fate.ofChip)
        line.faults().add(*fate.ofChip);
}

Counts countsOf(damage::Line &line) {
    const auto steps = [&line](sim::CellKind kind) { return static_cast<std::size_t>(line.faults().steps(kind)); };
    return {line.toChip.passed(),          line.toHost.passed(),
            steps(sim::CellKind::flash),   steps(sim::CellKind::options),
            steps(sim::CellKind::erasing), static_cast<std::size_t>(line.faults().frames())};
}

std::vector<std::string> split(const std::string &line) {
    std::istringstream stream(line);
    std::vector<std::string> words{"ZV32_ISP_Console"};
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

} // namespace

void cutPower() {
    constexpr std::uint64_t further = 5; // bytes or option bytes
    sim::Faults &faults = theLine->faults();
    for (const sim::CellKind kind : {sim::CellKind::flash, sim::CellKind::options, sim::CellKind::erasing}) {
        sim::Fault cut;
        cut.kind = sim::FaultKind::powerCut;
        cut.cells = kind;
        cut.at = faults.steps(kind) + (kind == sim::CellKind::erasing ? 3 : further);
        faults.add(cut);
    }
}

Machine::Machine() {
    char inMemory[] = "/dev/shm/faults-XXXXXX"; // where no disk is waited for
    char onDisk[] = "/tmp/faults-XXXXXX";
    const char *made = mkdtemp(inMemory);
    made = made != nullptr ? made : mkdtemp(onDisk);
    if (made == nullptr)
        throw std::runtime_error("no directory");
    m_directory = made;
    void *memory = mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    m_output = memfd_create("output", MFD_CLOEXEC);
    if (memory == MAP_FAILED || m_output < 0)
        throw std::runtime_error("no memory");
    m_shared = static_cast<Shared *>(memory);
}

Machine::~Machine() {
    munmap(m_shared, sizeof(Shared));
    close(m_output);
    std::error_code ignored;
    fs::remove_all(m_directory, ignored);
}

Memory Machine::newChip(const std::string &name) {
    const auto line = links[usart].make(*sim::findChip(name.c_str()));
    Memory memory;
    std::uint32_t seed = 1;
    for (const sim::Chip::Section &section : sectionsOf(*line)) {
        const bool isFlash = std::strcmp(section.name, "flash") == 0;
        memory[section.name] = isFlash
                                   ? content(section.cells->size(), seed++)
                                   : zvbl::Bytes(section.cells->data(), section.cells->data() + section.cells->size());
    }
    return memory;
}

void Machine::layOut(const std::string &chip, const std::map<std::string, std::string> &files) {
    const fs::path directory(m_directory);
    if (chip != m_chip) {
        fs::remove_all(directory / "Map");
        fs::create_directory(directory / "Map");
        fs::copy_file(fs::path(MAP_DIR) / (chip + ".ZVmap"), directory / "Map" / (chip + ".ZVmap"));
        m_chip = chip;
    }
    if (m_files == files)
        return;
    for (const fs::directory_entry &entry : fs::directory_iterator(directory))
        if (entry.path().filename() != "Map")
            fs::remove(entry.path());
    for (const auto &[name, text] : files)
        std::ofstream(directory / name, std::ios::binary) << text;
}

std::map<std::string, std::string> Machine::look() const {
    std::map<std::string, std::string> files;
    for (const fs::directory_entry &entry : fs::directory_iterator(m_directory))
        if (entry.path().filename() != "Map")
            files[entry.path().filename()] = readFile(entry.path());
    return files;
}

void Machine::connect(const std::string &chip, LinkNumber link, const Memory &memory) {
    if (m_line && m_link == link && chip == m_line->chip().facts().name)
        return;
    m_line.reset();
    m_line = links[link].make(*sim::findChip(chip.c_str()));
    m_link = link;
    putIn(m_line->chip(), memory); // a run with the same memory has nothing to put in
}

void Machine::beConsole(const std::string &words, const Memory &memory, const Fate &fate) const {
    alarm(longestRun); // a wait that never ends is a failure, not a hang
    dup2(m_output, STDOUT_FILENO);
    unsetenv("ZV32_MAP_DIR");
    if (chdir(m_directory.c_str()) != 0)
        _exit(127);
    damage::Line *line = m_line.get();
    theLine = line;
    putIn(line->chip(), memory);
    harm(*line, fate);
    std::vector<std::string> list = split(words);
    std::vector<char *> pointers;
    for (std::string &word : list)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    const sim::Nanoseconds begin = damage::now();
    watchBorder(fate.border, m_shared->list);
    const int status = consoleMain(static_cast<int>(list.size()), pointers.data());
    std::fflush(stdout);
    m_shared->counts = countsOf(*line);
    m_shared->becameAnother = line->becameAnother();
    m_shared->time = damage::now() - begin;
    std::uint8_t *at = m_shared->memory;
    bool *changed = m_shared->changed;
    for (const sim::Chip::Section &section : sectionsOf(*line))
        if ((*changed++ = !holds(section, memory)))
            at = std::copy_n(section.cells->data(), section.cells->size(), at);
    m_shared->orderly = true;
    _exit(status); // a job may be running that nobody waits for
}

Ending Machine::run(const std::string &chip, LinkNumber link, const std::string &words, const Memory &memory,
                    const std::map<std::string, std::string> &files, const Fate &fate) {
    layOut(chip, files);
    connect(chip, link, memory);
    if (ftruncate(m_output, 0) != 0 || lseek(m_output, 0, SEEK_SET) != 0)
        throw std::runtime_error("no output");
    m_shared->orderly = false;
    m_shared->list.count = 0;
    const pid_t child = fork();
    if (child == 0)
        beConsole(words, memory, fate);
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child)
        throw std::runtime_error("no process");
    Ending ending;
    ending.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    ending.text.resize(static_cast<std::size_t>(lseek(m_output, 0, SEEK_END)));
    if (pread(m_output, ending.text.data(), ending.text.size(), 0) != static_cast<ssize_t>(ending.text.size()))
        throw std::runtime_error("no text");
    std::replace(ending.text.begin(), ending.text.end(), '\r', '\n');
    ending.files = m_files = look();
    ending.calls.assign(m_shared->list.calls, m_shared->list.calls + m_shared->list.count);
    if (!m_shared->orderly)
        return ending;
    ending.counts = m_shared->counts;
    ending.becameAnother = m_shared->becameAnother;
    ending.time = m_shared->time;
    ending.memory = memory;
    const std::uint8_t *at = m_shared->memory;
    const bool *changed = m_shared->changed;
    for (const sim::Chip::Section &section : sectionsOf(*m_line)) {
        zvbl::Bytes &bytes = ending.memory.at(section.name);
        if (*changed++)
            std::copy_n(std::exchange(at, at + bytes.size()), bytes.size(), bytes.begin());
    }
    return ending;
}

} // namespace faults
