#include "libs/files/Image.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace files {

namespace {

constexpr BYTE blank = 0xFF;

std::shared_ptr<BYTE> newBlock(std::size_t length) {
    return std::shared_ptr<BYTE>(new BYTE[length], std::default_delete<BYTE[]>());
}

Element copyOf(const IMAGEELEMENT &source) {
    Element element{static_cast<std::uint32_t>(source.dwAddress), static_cast<std::uint32_t>(source.dwDataLength),
                    newBlock(source.dwDataLength)};
    std::memcpy(element.bytes.get(), source.Data, source.dwDataLength);
    return element;
}

} // namespace

bool Element::isBlank() const {
    // Each byte equals the next one, and the first is blank.
    const BYTE *data = bytes.get();
    return data[0] == blank && std::memcmp(data, data + 1, length - 1) == 0;
}

Status Image::check(const IMAGEELEMENT &source, std::size_t replaced) const {
    if (!source.Data || source.dwDataLength == 0)
        return Status::badParameter;
    if (source.dwAddress >= addressSpace || source.dwDataLength > addressSpace - source.dwAddress)
        return Status::badAddressRange;
    if (source.dwDataLength > maxImageSize ||
        m_inserted - std::min(m_inserted, replaced) > maxImageSize - source.dwDataLength)
        return Status::elementsFull;
    return Status::ok;
}

Status Image::insert(std::size_t index, const IMAGEELEMENT &source) {
    if (index > elements.size())
        return Status::badParameter;
    const Status checked = check(source, 0);
    if (checked != Status::ok)
        return checked;
    elements.insert(elements.begin() + static_cast<std::ptrdiff_t>(index), copyOf(source));
    m_inserted += source.dwDataLength;
    return Status::ok;
}

Status Image::replace(std::size_t index, const IMAGEELEMENT &source) {
    if (index >= elements.size())
        return Status::badParameter;
    Element &element = elements[index];
    const Status checked = check(source, element.length);
    if (checked != Status::ok)
        return checked;
    if (element.length == source.dwDataLength) {
        std::memcpy(element.bytes.get(), source.Data, element.length);
        element.address = static_cast<std::uint32_t>(source.dwAddress);
        return Status::ok;
    }
    m_inserted -= std::min<std::size_t>(m_inserted, element.length);
    m_inserted += source.dwDataLength;
    element = copyOf(source);
    return Status::ok;
}

Status Image::makeSectors(const MAPPING &mapping, std::uint64_t spimBytes) {
    if (mapping.NbSectors > 0 && !mapping.pSectors)
        return Status::badParameter;
    std::vector<Element> sectors;
    std::uint64_t total = 0;
    const auto add = [&](std::uint64_t address, std::uint64_t size) {
        total += size;
        if (size == 0 || size > maxImageSize || total > maxImageSize || address > addressSpace - size)
            return false;
        sectors.push_back({static_cast<std::uint32_t>(address), static_cast<std::uint32_t>(size), nullptr});
        return true;
    };
    for (DWORD i = 0; i < mapping.NbSectors; ++i)
        if (!add(mapping.pSectors[i].dwStartAddress, mapping.pSectors[i].dwSectorSize))
            return Status::badAddressRange;
    for (std::uint64_t at = 0; at + spimSectorSize <= spimBytes; at += spimSectorSize)
        if (!add(spimBase + at, spimSectorSize))
            return Status::badAddressRange;

    const std::shared_ptr<BYTE> block = newBlock(total);
    std::memset(block.get(), blank, total);
    std::uint64_t offset = 0;
    for (Element &sector : sectors) {
        sector.bytes = std::shared_ptr<BYTE>(block, block.get() + offset);
        offset += sector.length;
    }
    elements = std::move(sectors);
    m_inserted = total;
    return Status::ok;
}

Status Image::sorted(std::vector<const Element *> &byAddress) const {
    byAddress.clear();
    byAddress.reserve(elements.size());
    for (const Element &element : elements)
        byAddress.push_back(&element);
    const auto lower = [](const Element *a, const Element *b) { return a->address < b->address; };
    if (!std::is_sorted(byAddress.begin(), byAddress.end(), lower))
        std::sort(byAddress.begin(), byAddress.end(), lower);
    const auto overlap = [](const Element *a, const Element *b) { return a->end() > b->address; };
    if (std::adjacent_find(byAddress.begin(), byAddress.end(), overlap) != byAddress.end())
        return Status::badAddressRange;
    return Status::ok;
}

} // namespace files
