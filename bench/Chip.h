#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

namespace bench {

// Where a simulated chip sits.
enum class Place { usart, dfu, i2c, can, slcan, spi };

// A simulated chip of 1 MB whose wire takes its time, in a process of its own, for the life of the object.
class Chip {
public:
    // `programs` is the build directory, `unit` tells chips of one kind apart. Returns when the chip is ready; throws
    // std::runtime_error.
    Chip(Place place, const std::string &programs, int unit = 0);
    ~Chip();
    Chip(const Chip &) = delete;
    Chip &operator=(const Chip &) = delete;

    // The path of its serial port or adapter.
    std::string port() const { return m_dir + "/port"; }

    // What a program prints that finds the port; throws std::runtime_error when it fails. It takes the libraries of
    // `libraries`, a directory, when it is not empty. One program at a time.
    std::string outputOf(const std::vector<std::string> &command, const std::string &libraries = {}) const;

    // The same, and how long the whole process took, in seconds.
    double secondsOf(const std::vector<std::string> &command, const std::string &libraries = {}) const;

private:
    using Words = std::vector<std::string>;
    Words surroundings() const;
    pid_t start(const Words &command, const std::string &output, const Words &environment) const;
    void run(const Words &command, const std::string &libraries) const;
    void awaitReady();

    Place m_place;
    std::string m_programs;
    std::string m_dir;
    std::string m_nodes; // the directory of emulated nodes
    pid_t m_bus = -1;
    pid_t m_chip = -1;
};

} // namespace bench
