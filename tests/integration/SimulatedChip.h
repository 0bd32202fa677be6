#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

// A simulated chip in a process of its own, at a port in a directory of its own. Both end with the object.
class SimulatedChip {
public:
    // Returns when the port is there; throws std::runtime_error when it does not come.
    explicit SimulatedChip(const std::string &name, const std::vector<std::string> &options = {});
    ~SimulatedChip();
    SimulatedChip(const SimulatedChip &) = delete;
    SimulatedChip &operator=(const SimulatedChip &) = delete;

    std::string port() const;
    // What the chip refused so far, one line each.
    std::string log() const;
    const std::filesystem::path &directory() const { return directory_; }

    // The reset button; returns when the bootloader listens again.
    void pressReset() const;

private:
    void start(std::vector<std::string> words);
    void awaitReady() const;

    std::filesystem::path directory_;
    pid_t process_ = -1;
};

// How long a chip needs to start, which a test has to wait in real time; sleeps may be shortened.
void waitForStart();
