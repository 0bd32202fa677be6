#pragma once

// What the tests of libFiles share. They reach the library through its C interface only.

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "device/FilesInc.h"

namespace libfiles {

constexpr unsigned int noError = 0x12340000;
constexpr unsigned int badSuffix = 2;
constexpr unsigned int unableToOpenFile = 3;
constexpr unsigned int unableToOpenTempFile = 4;
constexpr unsigned int badFormat = 5;
constexpr unsigned int badAddressRange = 6;
constexpr unsigned int badParameter = 8;
constexpr unsigned int unexpectedError = 10;
constexpr unsigned int generalError = 13;
constexpr unsigned int elementsFull = 15;

constexpr int programImage = 1;
constexpr int userSystemDataImage = 0;

using Bytes = std::vector<BYTE>;

struct Piece {
    std::uint64_t address;
    Bytes bytes;
    bool operator==(const Piece &other) const { return address == other.address && bytes == other.bytes; }
};
using Pieces = std::vector<Piece>;
std::ostream &operator<<(std::ostream &out, const Piece &piece);

// A directory of its own for each test, removed at its end.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir &) = delete;
    TempDir &operator=(const TempDir &) = delete;

    const std::string &path() const { return m_path; }
    std::string operator/(const std::string &name) const { return m_path + "/" + name; }
    std::vector<std::string> entries() const; // sorted, hidden ones too

private:
    std::string m_path;
};

// A handle that is destroyed at its end.
class Handle {
public:
    Handle() = default;
    ~Handle();
    Handle(const Handle &) = delete;
    Handle &operator=(const Handle &) = delete;

    HANDLE *out() { return &m_image; }
    HANDLE get() const { return m_image; }

    Pieces pieces() const;
    unsigned int insert(unsigned int index, std::uint64_t address, Bytes bytes) const;
    unsigned int replace(unsigned int index, std::uint64_t address, Bytes bytes) const;

private:
    HANDLE m_image = nullptr;
};

// The map of sectors with these starts and sizes.
class Map {
public:
    explicit Map(const std::vector<std::pair<DWORD, DWORD>> &sectors);
    PMAPPING get() { return &m_map; }

private:
    std::vector<MAPPINGSECTOR> m_sectors;
    MAPPING m_map{};
};

// `count` sectors of `size` from `address` on.
std::vector<std::pair<DWORD, DWORD>> uniform(DWORD address, DWORD size, DWORD count);

void writeFile(const std::string &path, const std::string &content);
void writeFile(const std::string &path, const Bytes &content);
std::string readFile(const std::string &path);
Bytes readBytes(const std::string &path);

Bytes pattern(std::size_t length, unsigned seed = 1); // no two seeds alike, never 0xFF

// One record, its checksum right, without a line end.
std::string ihex(unsigned type, unsigned offset, const Bytes &data);
std::string srec(unsigned type, std::uint32_t address, const Bytes &data);

// Reads a file of that content; `pieces` receives the elements.
unsigned int load(const TempDir &dir, const std::string &name, const std::string &content, Pieces &pieces,
                  int program = programImage);

// Runs a program; its exit status.
int run(const std::string &command);

constexpr unsigned nobody = 65534; // a user without rights

// Runs `work` in a process of its own; its raw wait status.
int inChild(const std::function<int()> &work);

// The same without the rights of root, for a status below 254.
unsigned int unprivileged(const std::function<unsigned int()> &work);

} // namespace libfiles
