#pragma once

#include <cstddef>
#include <string>

namespace bench {

// A file of so many bytes of no pattern, always the same ones, as long as the object lives.
class Noise {
public:
    explicit Noise(std::size_t bytes); // throws std::runtime_error
    ~Noise();
    Noise(const Noise &) = delete;
    Noise &operator=(const Noise &) = delete;

    const std::string &path() const { return m_path; }

private:
    std::string m_path;
};

} // namespace bench
