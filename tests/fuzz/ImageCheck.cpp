#include "tests/fuzz/ImageCheck.h"

#include <functional>

#include "tests/fuzz/Target.h"
#include "tests/fuzz/Workplace.h"
#include "tests/libfiles/LibFiles.h"

namespace fuzz {

namespace {

using libfiles::Handle;
using libfiles::noError;

constexpr std::uint64_t sectorSize = 2048;
constexpr std::uint64_t longestFlat = 1024 * 1024;

Cells cellsOf(const Handle &image) {
    Cells cells;
    for (const libfiles::Piece &piece : image.pieces())
        for (std::size_t i = 0; i < piece.bytes.size(); ++i)
            require(cells.emplace(piece.address + i, piece.bytes[i]).second, "elements do not overlap");
    return cells;
}

void read(const std::string &path, Handle &image) {
    require(FILES_ImageFromFile(path.c_str(), image.out(), libfiles::programImage) == noError, "what was read is read");
}

void checkCut(const std::string &path, const Cells &cells) {
    Handle image;
    read(path, image);
    libfiles::Map map(libfiles::uniform(0x08000000, sectorSize, 64));
    require(FILES_FilterImageForOperation(image.get(), map.get(), 2, 0) == noError, "it can be cut");
    require(cellsOf(image) == cells, "cutting keeps every cell");
    for (const libfiles::Piece &piece : image.pieces())
        if (piece.address >= 0x08000000 && piece.address < 0x08000000 + 64 * sectorSize)
            require(piece.address / sectorSize == (piece.address + piece.bytes.size() - 1) / sectorSize,
                    "no element crosses a sector's border");
}

void checkOptimised(const std::string &path, const Cells &cells) {
    Handle image;
    read(path, image);
    libfiles::Map map(libfiles::uniform(0x08000000, sectorSize, 64));
    require(FILES_FilterImageForOperation(image.get(), map.get(), 2, 1) == noError, "it can be cut");
    const Cells left = cellsOf(image);
    for (const auto &[address, byte] : cells) {
        const auto place = left.find(address);
        require(place == left.end() ? byte == 0xFF : byte == place->second, "only blank cells are left out");
    }
    require(left.size() <= cells.size(), "no cell is added");
}

void checkSaved(const Handle &image, const Cells &cells, const std::string &suffix) {
    const std::string path = workplace() / ("saved." + suffix);
    require(FILES_ImageToFile(path.c_str(), image.get()) == noError, "it can be saved");
    Handle again;
    read(path, again);
    require(cellsOf(again) == cells, "what was saved is what is read");
}

// A flat file starts where it is told to, and has blank cells in its gaps.
void checkSavedFlat(const Handle &image, const Cells &cells) {
    const std::string path = workplace() / "saved.bin";
    require(FILES_ImageToFile(path.c_str(), image.get()) == noError, "it can be saved");
    const libfiles::Bytes bytes = libfiles::readBytes(path);
    const std::uint64_t first = cells.begin()->first;
    require(bytes.size() == cells.rbegin()->first - first + 1, "a flat file reaches to the last cell");
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto place = cells.find(first + i);
        require(bytes[i] == (place == cells.end() ? 0xFF : place->second), "a flat file has the cells");
    }
}

} // namespace

void checkImage(const std::string &suffix, const std::string &content, const std::optional<Cells> &plain) {
    const std::string path = workplace() / ("input." + suffix);
    fill(path, content);
    Handle image;
    const unsigned int status = FILES_ImageFromFile(path.c_str(), image.out(), libfiles::programImage);
    require((status == noError) == plain.has_value(), "both readers take the file, or both refuse it");
    require((status == noError) == (image.get() != nullptr), "there is an image when it was read, and only then");
    if (status != noError) {
        require(status == libfiles::badFormat || status == libfiles::badAddressRange, "the status of a bad file");
        return;
    }
    require(cellsOf(image) == *plain, "both readers find the same cells");
    // The rest takes ten times as long: one input in eight, whichever.
    if (std::hash<std::string>()(content) % 8 != 0)
        return;
    checkCut(path, *plain);
    checkOptimised(path, *plain);
    if (plain->empty())
        return;
    checkSaved(image, *plain, "hex");
    checkSaved(image, *plain, "s19");
    if (plain->rbegin()->first - plain->begin()->first < longestFlat)
        checkSavedFlat(image, *plain);
}

} // namespace fuzz
