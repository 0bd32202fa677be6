#include "sim/program/StateImage.h"

#include <algorithm>
#include <cstring>

#include "sim/chip/Crc32.h"

namespace sim {

namespace {

constexpr char magic[] = "ZV32SIM1";
constexpr std::uint8_t blank = 0xFF;
constexpr std::size_t worthSkipping = 64; // a shorter run of FF costs less than the head of a new run
constexpr std::size_t crcLength = 4;

void put32(Bytes &out, std::uint32_t value) {
    for (unsigned shift = 0; shift < 32; shift += 8)
        out.push_back(static_cast<std::uint8_t>(value >> shift));
}

void putText(Bytes &out, std::string_view text) {
    put32(out, static_cast<std::uint32_t>(text.size()));
    out.insert(out.end(), text.begin(), text.end());
}

// The length of the run of FF at `at`, up to `end`.
std::size_t blankRun(const std::uint8_t *data, std::size_t at, std::size_t end) {
    std::size_t i = at;
    std::uint64_t word = 0;
    while (i + sizeof word <= end && (std::memcpy(&word, data + i, sizeof word), word == ~std::uint64_t{0}))
        i += sizeof word;
    while (i < end && data[i] == blank)
        ++i;
    return i - at;
}

// Where the run of content that starts at `at` ends: before a stretch of FF that is worth skipping.
std::size_t contentEnd(const std::uint8_t *data, std::size_t at, std::size_t end) {
    while (at < end) {
        const std::size_t run = data[at] == blank ? blankRun(data, at, end) : 0;
        if (run >= worthSkipping || at + run == end)
            return at;
        at += std::max<std::size_t>(run, 1);
    }
    return end;
}

void putCells(Bytes &out, const Cells &cells) {
    put32(out, static_cast<std::uint32_t>(cells.size()));
    const std::size_t countAt = out.size();
    put32(out, 0);
    std::uint32_t runs = 0;
    std::size_t at = blankRun(cells.data(), 0, cells.size());
    while (at < cells.size()) {
        const std::size_t end = contentEnd(cells.data(), at, cells.size());
        put32(out, static_cast<std::uint32_t>(at));
        put32(out, static_cast<std::uint32_t>(end - at));
        out.insert(out.end(), cells.data() + at, cells.data() + end);
        ++runs;
        at = end + blankRun(cells.data(), end, cells.size());
    }
    Bytes count;
    put32(count, runs);
    std::copy(count.begin(), count.end(), out.begin() + static_cast<std::ptrdiff_t>(countAt));
}

// Takes a file apart; once something is missing, `good` stays false.
class Reader {
public:
    explicit Reader(const Bytes &file) : m_file(file) {}

    bool good = true;

    const std::uint8_t *take(std::size_t length) {
        if (!good || length > m_file.size() - m_at) {
            good = false;
            return nullptr;
        }
        m_at += length;
        return m_file.data() + (m_at - length);
    }

    std::uint32_t number() {
        const std::uint8_t *bytes = take(4);
        std::uint32_t value = 0;
        for (unsigned i = 0; bytes != nullptr && i < 4; ++i)
            value |= static_cast<std::uint32_t>(bytes[i]) << (8 * i);
        return value;
    }

    std::string text() {
        const std::uint32_t length = number();
        const std::uint8_t *bytes = take(length);
        return bytes == nullptr ? std::string() : std::string(reinterpret_cast<const char *>(bytes), length);
    }

    bool atEnd() const { return good && m_at == m_file.size(); }

private:
    const Bytes &m_file;
    std::size_t m_at = 0;
};

// Fills the cells; false for another size or a run outside of it.
bool takeCells(Reader &in, Cells &cells) {
    if (in.number() != cells.size() || !in.good)
        return false;
    std::fill_n(cells.raw(), cells.size(), blank);
    for (std::uint32_t runs = in.number(); in.good && runs > 0; --runs) {
        const std::size_t at = in.number();
        const std::size_t length = in.number();
        const std::uint8_t *bytes = in.take(length);
        if (bytes == nullptr || at > cells.size() || length > cells.size() - at)
            return false;
        std::copy(bytes, bytes + length, cells.raw() + at);
    }
    return in.good;
}

Slib::Area takeArea(Reader &in) {
    Slib::Area area;
    area.enabled = in.number() != 0;
    area.password = in.number();
    area.start = static_cast<std::uint16_t>(in.number());
    area.dataStart = static_cast<std::uint16_t>(in.number());
    area.end = static_cast<std::uint16_t>(in.number());
    return area;
}

bool soundFile(const Bytes &file) {
    constexpr std::size_t magicLength = sizeof magic - 1;
    if (file.size() < magicLength + crcLength || std::memcmp(file.data(), magic, magicLength) != 0)
        return false;
    Bytes crc;
    put32(crc, crc32(file.data(), file.size() - crcLength));
    return std::equal(crc.begin(), crc.end(), file.end() - static_cast<std::ptrdiff_t>(crcLength));
}

} // namespace

Bytes encodeState(Chip &chip) {
    Bytes out(magic, magic + sizeof magic - 1);
    putText(out, chip.facts().name);
    for (const Chip::Section &section : chip.sections())
        putCells(out, *section.cells);
    const Slib::Area &area = chip.slib();
    for (const std::uint32_t value : {std::uint32_t{area.enabled}, area.password, std::uint32_t{area.start},
                                      std::uint32_t{area.dataStart}, std::uint32_t{area.end}})
        put32(out, value);
    put32(out, crc32(out.data(), out.size()));
    return out;
}

std::size_t longestState(Chip &chip) {
    constexpr std::size_t head = 4096; // and tail
    std::size_t length = head;
    for (const Chip::Section &section : chip.sections())
        length += 2 * section.cells->size(); // with the heads of its runs
    return length;
}

std::string decodeState(const Bytes &file, Chip &chip) {
    constexpr char damaged[] = "is no state file, or a damaged one";
    if (!soundFile(file))
        return damaged;
    const Bytes body(file.begin(), file.end() - static_cast<std::ptrdiff_t>(crcLength));
    Reader in(body);
    in.take(sizeof magic - 1);
    const std::string name = in.text();
    if (name != chip.facts().name)
        return "holds the memory of another chip: " + name;
    for (const Chip::Section &section : chip.sections())
        if (!takeCells(in, *section.cells))
            return std::string("does not fit: another size of ") + section.name;
    chip.restoreSlib(takeArea(in));
    return in.atEnd() ? std::string() : damaged;
}

} // namespace sim
