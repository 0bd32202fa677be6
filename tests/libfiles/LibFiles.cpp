#include "tests/libfiles/LibFiles.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>
#include <stdexcept>

#include <sys/wait.h>
#include <unistd.h>

namespace libfiles {

std::ostream &operator<<(std::ostream &out, const Piece &piece) {
    out << std::hex << "0x" << piece.address << std::dec << " +" << piece.bytes.size() << " {" << std::hex;
    for (std::size_t i = 0; i < std::min<std::size_t>(piece.bytes.size(), 16); ++i)
        out << ' ' << unsigned(piece.bytes[i]);
    return out << std::dec << " }";
}

TempDir::TempDir() {
    std::string path = (std::filesystem::temp_directory_path() / "libfiles-XXXXXX").string();
    if (!::mkdtemp(&path[0]))
        throw std::runtime_error("mkdtemp");
    m_path = path;
}

TempDir::~TempDir() {
    std::error_code ignored;
    std::filesystem::permissions(m_path, std::filesystem::perms::owner_all, ignored);
    std::filesystem::remove_all(m_path, ignored);
}

std::vector<std::string> TempDir::entries() const {
    std::vector<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(m_path))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

Handle::~Handle() {
    if (m_image)
        FILES_DestroyImage(&m_image);
}

Pieces Handle::pieces() const {
    unsigned int count = 0;
    if (FILES_GetImageNbElement(m_image, &count) != noError)
        throw std::runtime_error("no element count");
    Pieces pieces;
    for (unsigned int i = 0; i < count; ++i) {
        IMAGEELEMENT element{};
        if (FILES_GetImageElement(m_image, i, &element) != noError)
            throw std::runtime_error("no element");
        Piece piece{element.dwAddress, Bytes(element.dwDataLength)};
        element.Data = piece.bytes.data();
        if (FILES_GetImageElement(m_image, i, &element) != noError)
            throw std::runtime_error("no element bytes");
        pieces.push_back(std::move(piece));
    }
    return pieces;
}

unsigned int Handle::insert(unsigned int index, std::uint64_t address, Bytes bytes) const {
    return FILES_SetImageElement(m_image, index, 1, {address, bytes.size(), bytes.data()});
}

unsigned int Handle::replace(unsigned int index, std::uint64_t address, Bytes bytes) const {
    return FILES_SetImageElement(m_image, index, 0, {address, bytes.size(), bytes.data()});
}

Map::Map(const std::vector<std::pair<DWORD, DWORD>> &sectors) {
    for (const auto &[start, size] : sectors) {
        MAPPINGSECTOR sector{};
        sector.dwStartAddress = start;
        sector.dwSectorSize = size;
        sector.dwSectorIndex = m_sectors.size();
        m_sectors.push_back(sector);
    }
    m_map.NbSectors = m_sectors.size();
    m_map.pSectors = m_sectors.data();
}

std::vector<std::pair<DWORD, DWORD>> uniform(DWORD address, DWORD size, DWORD count) {
    std::vector<std::pair<DWORD, DWORD>> sectors;
    for (DWORD i = 0; i < count; ++i)
        sectors.emplace_back(address + i * size, size);
    return sectors;
}

void writeFile(const std::string &path, const std::string &content) {
    // Some file systems flush a file that is cut to nothing and written anew; a test need not wait.
    std::filesystem::remove(path);
    std::ofstream(path, std::ios::binary) << content;
}

void writeFile(const std::string &path, const Bytes &content) {
    writeFile(path, std::string(content.begin(), content.end()));
}

std::string readFile(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        throw std::runtime_error("cannot read " + path);
    return {std::istreambuf_iterator<char>(in), {}};
}

Bytes readBytes(const std::string &path) {
    const std::string text = readFile(path);
    return Bytes(text.begin(), text.end());
}

Bytes pattern(std::size_t length, unsigned seed) {
    Bytes bytes(length);
    std::uint32_t state = seed * 2654435761u + 12345;
    for (BYTE &byte : bytes) {
        state = state * 1664525u + 1013904223u;
        byte = static_cast<BYTE>((state >> 24) % 255);
    }
    return bytes;
}

namespace {

std::string digits(const Bytes &bytes) {
    std::string text;
    char pair[3];
    for (const BYTE byte : bytes) {
        std::snprintf(pair, sizeof pair, "%02X", byte);
        text += pair;
    }
    return text;
}

unsigned sumOf(const Bytes &bytes) {
    unsigned sum = 0;
    for (const BYTE byte : bytes)
        sum += byte;
    return sum;
}

} // namespace

std::string ihex(unsigned type, unsigned offset, const Bytes &data) {
    Bytes record{static_cast<BYTE>(data.size()), static_cast<BYTE>(offset >> 8), static_cast<BYTE>(offset),
                 static_cast<BYTE>(type)};
    record.insert(record.end(), data.begin(), data.end());
    record.push_back(static_cast<BYTE>(0x100 - (sumOf(record) & 0xFF)));
    return ":" + digits(record);
}

std::string srec(unsigned type, std::uint32_t address, const Bytes &data) {
    const unsigned addressBytes[] = {2, 2, 3, 4, 2, 2, 3, 4, 3, 2};
    Bytes record{static_cast<BYTE>(addressBytes[type] + data.size() + 1)};
    for (unsigned i = addressBytes[type]; i-- > 0;)
        record.push_back(static_cast<BYTE>(address >> 8 * i));
    record.insert(record.end(), data.begin(), data.end());
    record.push_back(static_cast<BYTE>(0xFF - (sumOf(record) & 0xFF)));
    return "S" + std::to_string(type) + digits(record);
}

unsigned int load(const TempDir &dir, const std::string &name, const std::string &content, Pieces &pieces,
                  int program) {
    writeFile(dir / name, content);
    Handle image;
    const unsigned int status = FILES_ImageFromFile((dir / name).c_str(), image.out(), program);
    pieces = image.get() ? image.pieces() : Pieces();
    return status;
}

int run(const std::string &command) {
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

int inChild(const std::function<int()> &work) {
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(work());
    int status = 0;
    ::waitpid(child, &status, 0);
    return status;
}

unsigned int unprivileged(const std::function<unsigned int()> &work) {
    const int status = inChild([&] {
        if (::geteuid() == 0 && (::setegid(nobody) != 0 || ::seteuid(nobody) != 0))
            return 255;
        return static_cast<int>(work());
    });
    return WIFEXITED(status) ? static_cast<unsigned int>(WEXITSTATUS(status)) : 254;
}

} // namespace libfiles
