#include "line/rehearsal/SimulatedChip.h"

#include <cstdlib>
#include <filesystem>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include "programs/Status.h"

namespace {

constexpr int startMilliseconds = 20000;

std::string newDirectory() {
    std::string name = std::filesystem::temp_directory_path() / "zv32-line.XXXXXX";
    if (mkdtemp(name.data()) == nullptr)
        throw Refusal(noUnit, name + ": can't be made");
    return name;
}

// Whether something comes before the end of what is written there.
bool comes(int descriptor) {
    pollfd wait = {descriptor, POLLIN, 0};
    char byte;
    return poll(&wait, 1, startMilliseconds) > 0 && read(descriptor, &byte, 1) == 1;
}

} // namespace

SimulatedChip::SimulatedChip(const std::string &chip, const std::string &keep, int unit)
    : m_directory(newDirectory()), m_port(m_directory + "/port") {
    std::vector<std::string> words = {"--chip",  chip,   "--unit", std::to_string(unit),
                                      "--usart", m_port, "--log",  "/dev/null"};
    if (!keep.empty())
        words.insert(words.end(), {"--state", keep});
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        throw Refusal(noUnit, "no pipe to be had");
    const std::string program = besideUs("zv32-sim");
    m_chip = std::make_unique<Child>(program, words, std::vector<Start::Given>{{ends[1], STDOUT_FILENO}});
    close(ends[1]);
    const bool ready = comes(ends[0]);
    close(ends[0]);
    if (ready)
        return;
    m_chip.reset();
    std::filesystem::remove_all(m_directory);
    throw Refusal(noUnit, program + ": gives no simulated " + chip);
}

SimulatedChip::~SimulatedChip() {
    m_chip.reset();
    std::error_code ignored;
    std::filesystem::remove_all(m_directory, ignored);
}
