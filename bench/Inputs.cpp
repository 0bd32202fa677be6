#include "bench/Inputs.h"

#include <cstdint>
#include <cstdio>
#include <memory>
#include <stdexcept>

namespace bench {

namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE *)>;

File create(const std::string &path) {
    File file(std::fopen(path.c_str(), "wb"), &std::fclose);
    if (!file)
        throw std::runtime_error("cannot write " + path);
    return file;
}

// The byte at a place of the image: a function of the place alone, so that no image is kept here.
unsigned byteAt(std::uint64_t place) {
    std::uint64_t mixed = (place + 1) * 0x9E3779B97F4A7C15u;
    mixed ^= mixed >> 29;
    mixed *= 0xBF58476D1CE4E5B9u;
    return static_cast<unsigned>(mixed >> 56);
}

class HexWriter {
public:
    explicit HexWriter(const std::string &path) : m_file(create(path)) {}
    ~HexWriter() { std::fputs(":00000001FF\n", m_file.get()); }
    HexWriter(const HexWriter &) = delete;
    HexWriter &operator=(const HexWriter &) = delete;

    void write(std::uint32_t place, std::size_t length) {
        const std::uint32_t address = 0x08000000 + place;
        if (address >> 16 != m_page) {
            m_page = address >> 16;
            const unsigned sum = 2 + 4 + (m_page >> 8) + (m_page & 0xFF);
            std::fprintf(m_file.get(), ":02000004%04X%02X\n", m_page, (0x100 - (sum & 0xFF)) & 0xFF);
        }
        unsigned sum = static_cast<unsigned>(length) + (address >> 8 & 0xFF) + (address & 0xFF);
        std::fprintf(m_file.get(), ":%02X%04X00", static_cast<unsigned>(length), address & 0xFFFF);
        for (std::size_t i = 0; i < length; ++i) {
            const unsigned byte = byteAt(place + i);
            sum += byte;
            std::fprintf(m_file.get(), "%02X", byte);
        }
        std::fprintf(m_file.get(), "%02X\n", (0x100 - (sum & 0xFF)) & 0xFF);
    }

private:
    File m_file;
    std::uint32_t m_page = ~0u;
};

// Numbers below `count` in an order without a pattern: a full-period generator over the next power
// of two, its surplus left out.
template <typename Visit>
void visitShuffled(std::size_t count, Visit visit) {
    std::size_t range = 1;
    while (range < count)
        range *= 2;
    std::size_t state = 12345 % range;
    for (std::size_t i = 0; i < range; ++i) {
        state = (state * 1664525 + 1013904223) % range;
        // The high bits of the state are the ones without a pattern: bring them down.
        std::size_t index = 0;
        for (std::size_t bit = 1; bit < range; bit *= 2)
            index = index * 2 + (state & bit ? 1 : 0);
        if (index < count)
            visit(index);
    }
}

} // namespace

void writeBinary(const std::string &path) {
    const File file = create(path);
    for (std::size_t i = 0; i < ImageSize; ++i)
        std::fputc(static_cast<int>(byteAt(i)), file.get());
}

void writeScattered(const std::string &path) {
    HexWriter hex(path);
    visitShuffled(ScatteredRuns,
                  [&](std::size_t i) { hex.write(static_cast<std::uint32_t>(i * 256), ScatteredRunSize); });
}

void writeShuffled(const std::string &path) {
    constexpr std::size_t Record = 16;
    HexWriter hex(path);
    visitShuffled(ImageSize / Record,
                  [&](std::size_t i) { hex.write(static_cast<std::uint32_t>(i * Record), Record); });
}

} // namespace bench
