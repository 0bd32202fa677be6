#include "libs/files/Filter.h"

#include <algorithm>

namespace files {

namespace {

constexpr std::uint64_t defaultSectorSize = 2048;

struct Sector {
    std::uint64_t start;
    std::uint64_t size;
};

class SectorGrid {
public:
    explicit SectorGrid(const MAPPING &mapping);

    // The first sector border above the address.
    std::uint64_t nextBorder(std::uint64_t address) const;

private:
    std::vector<Sector> m_sectors; // by rising start
};

SectorGrid::SectorGrid(const MAPPING &mapping) {
    m_sectors.reserve(mapping.NbSectors);
    for (DWORD i = 0; i < mapping.NbSectors; ++i) {
        const Sector sector{mapping.pSectors[i].dwStartAddress, mapping.pSectors[i].dwSectorSize};
        // One that is no piece of the address space borders nothing.
        if (sector.size > 0 && sector.start < addressSpace && sector.size <= addressSpace - sector.start)
            m_sectors.push_back(sector);
    }
    const auto lower = [](const Sector &a, const Sector &b) { return a.start < b.start; };
    std::stable_sort(m_sectors.begin(), m_sectors.end(), lower);
}

// The first border above `address` on a grid of `size` that has a border at `anchor`.
std::uint64_t gridBorder(std::uint64_t address, std::uint64_t anchor, std::uint64_t size) {
    if (address < anchor)
        return anchor - (anchor - address - 1) / size * size;
    return anchor + ((address - anchor) / size + 1) * size;
}

std::uint64_t SectorGrid::nextBorder(std::uint64_t address) const {
    const auto above = std::upper_bound(m_sectors.begin(), m_sectors.end(), address,
                                        [](std::uint64_t a, const Sector &sector) { return a < sector.start; });
    std::uint64_t anchor = flashBase;
    std::uint64_t size = defaultSectorSize;
    std::uint64_t limit = address < spimBase ? spimBase : ~std::uint64_t(0);
    if (above != m_sectors.end())
        limit = std::min(limit, above->start);
    if (above != m_sectors.begin()) {
        const Sector &below = above[-1];
        anchor = below.start + below.size;
        if (address < anchor)
            return above == m_sectors.end() ? anchor : std::min(anchor, above->start);
        size = below.size;
    } else if (above != m_sectors.end()) {
        anchor = above->start;
        size = above->size;
    }
    if (address >= spimBase) {
        anchor = spimBase;
        size = spimSectorSize;
    }
    return std::min(limit, gridBorder(address, anchor, size));
}

std::vector<Element> cut(const std::vector<Element> &elements, const SectorGrid &grid) {
    std::vector<Element> pieces;
    for (const Element &element : elements) {
        std::uint64_t address = element.address;
        while (address < element.end()) {
            const std::uint64_t end = std::min(element.end(), grid.nextBorder(address));
            pieces.push_back({static_cast<std::uint32_t>(address), static_cast<std::uint32_t>(end - address),
                              std::shared_ptr<BYTE>(element.bytes, element.bytes.get() + (address - element.address))});
            address = end;
        }
    }
    return pieces;
}

void dropBlank(std::vector<Element> &elements, bool atEndOnly) {
    const auto blank = [](const Element &element) { return element.isBlank(); };
    const auto keep = atEndOnly ? std::find_if_not(elements.rbegin(), elements.rend(), blank).base()
                                : std::remove_if(elements.begin(), elements.end(), blank);
    elements.erase(keep, elements.end());
}

} // namespace

Status filterImage(Image &image, const MAPPING &mapping, bool optimise) {
    if (mapping.NbSectors > 0 && !mapping.pSectors)
        return Status::badParameter;
    std::vector<Element> pieces = cut(image.elements, SectorGrid(mapping));
    if (optimise)
        dropBlank(pieces, image.flat);
    image.elements = std::move(pieces);
    return Status::ok;
}

} // namespace files
