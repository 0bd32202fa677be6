#include "bench/Noise.h"

#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>
#include <stdlib.h>

#include <unistd.h>

namespace bench {

Noise::Noise(std::size_t bytes) : m_path((std::filesystem::temp_directory_path() / "links_bench.XXXXXX.bin").string()) {
    const int file = ::mkstemps(m_path.data(), 4);
    if (file < 0)
        throw std::runtime_error("no file for the image");
    ::close(file);
    std::ofstream image(m_path, std::ios::binary);
    std::mt19937 random(4711);
    for (std::size_t i = 0; i < bytes; ++i)
        image.put(static_cast<char>(random()));
}

Noise::~Noise() {
    ::unlink(m_path.c_str());
}

} // namespace bench
