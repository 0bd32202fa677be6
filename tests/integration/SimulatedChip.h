#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <sys/types.h>

#include "tests/integration/Place.h"

// A simulated chip in a process of its own, at a port of the test's link, with a directory of its own. All
// end with the object.
class SimulatedChip {
public:
    // Returns when the port is there; throws std::runtime_error when it does not come.
    explicit SimulatedChip(const std::string &name, const std::vector<std::string> &options = {});
    ~SimulatedChip();
    SimulatedChip(const SimulatedChip &) = delete;
    SimulatedChip &operator=(const SimulatedChip &) = delete;

    const Place &place() const { return place_; }
    std::string port() const { return place_.port; }
    // What the chip refused so far, one line each.
    std::string log() const;
    const std::filesystem::path &directory() const { return directory_; }

    // The reset button; returns when the bootloader listens again.
    void pressReset() const;

private:
    pid_t start(std::vector<std::string> words, const std::string &name) const;
    void startBus();
    void awaitReady() const;

    std::filesystem::path directory_;
    Place place_;
    pid_t bus_ = -1;
    pid_t process_ = -1;
};

// How long a chip needs to start, which a test has to wait in real time; sleeps may be shortened.
void waitForStart();
