#include "look/ImageFacts.h"

#include <vector>

#include "app/FileNames.h"
#include "device/Device.h"
#include "device/Families.h"
#include "files/TouchedSectors.h"
#include "foundation/Crc32.h"
#include "foundation/ShareParameter.h"
#include "look/Diagnosis.h"
#include "look/Image.h"
#include "look/ImageKind.h"
#include "look/Sectors.h"
#include "look/Status.h"
#include "programs/FileBytes.h"

namespace {

constexpr std::size_t mostBytes = std::size_t(1) << 30; // an image of 256 MB as text

// A part of the address space, both ends included.
struct Memory {
    const char *name;
    std::uint64_t first;
    std::uint64_t last;
};

std::vector<Memory> memoriesOf(const CDevice *device) {
    const std::uint64_t flashEnd = device == nullptr
                                       ? ZVCHIP_SPIM_BASE_ADDRESS
                                       : ZVCHIP_FLASH_BASE_ADDRESS + std::uint64_t(device->m_IFlashSize) * 1024;
    std::vector<Memory> memories = {
        {"flash", ZVCHIP_FLASH_BASE_ADDRESS, flashEnd - 1},
        {"SPIM", ZVCHIP_SPIM_BASE_ADDRESS, ZVCHIP_SPIM_BASE_ADDRESS + std::uint64_t(ZVCHIP_SPIM_MAX_SIZE) - 1}};
    if (device != nullptr) {
        const std::uint64_t options = device->m_UiUserSystemDataAddress;
        memories.push_back({"option bytes", options, options + device->m_UiUserSystemDataLen - 1});
        const OtpArea &otp = familyOf(*device).otp;
        if (otp.dataLength != 0)
            memories.push_back({"OTP", otp.dataAddress, std::uint64_t(otp.dataAddress) + otp.dataLength - 1});
    }
    return memories;
}

const char *memoryOf(const ImageRange &range, const std::vector<Memory> &memories) {
    for (const Memory &memory : memories)
        if (range.first >= memory.first && range.last() <= memory.last)
            return memory.name;
    return "nowhere";
}

void tellRanges(const ImageRead &image, const std::vector<Memory> &memories, Section &report) {
    std::vector<std::vector<Value>> rows;
    std::uint64_t bytes = 0;
    std::uint64_t end = 0;
    for (const ImageRange &range : image.ranges) {
        const std::uint64_t gap = rows.empty() ? 0 : range.first - end;
        end = std::uint64_t(range.last()) + 1;
        bytes += range.bytes.size();
        rows.push_back({addressValue(range.first), addressValue(range.last()), Value(range.bytes.size()), Value(gap),
                        addressValue(crc32(range.bytes.data(), range.bytes.size())), Value(memoryOf(range, memories))});
    }
    report.fact("data", {bytes, std::to_string(bytes) + " bytes"});
    report.table("ranges", {"first", "last", "bytes", "gap in front", "crc-32", "where"}, std::move(rows));
}

void checkRanges(const ImageRead &image, const std::vector<Memory> &memories, const CDevice *device, Section &report) {
    for (const ImageRange &range : image.ranges) {
        const std::string place = memoryOf(range, memories);
        if (place == "flash")
            continue;
        const std::string text = addressValue(range.first).text + "-" + addressValue(range.last()).text;
        if (place == "SPIM")
            report.finding(Mark::note, "spim", text + " lies in the SPIM: the line needs -enspim in front of the -d");
        else if (range.first < ZVCHIP_FLASH_BASE_ADDRESS)
            report.finding(Mark::error, "outside",
                           text + " lies below the flash, and the console writes it all the same",
                           "srec_cat IN -offset 0x08000000 -o OUT, if it is linked at 0");
        else
            report.finding(Mark::error, "outside",
                           text + (place == "nowhere" ? " is not inside of " : " is no program memory of ") +
                               (device == nullptr ? std::string("any memory of a program") : device->m_StrTarget));
    }
}

void tellSectors(const ImageRead &image, const CDevice &device, Section &report) {
    QList<int> sectors;
    for (const ImageRange &range : image.ranges) {
        const int first = sectorOf(range.first, device.m_ISectorSize);
        const int last = sectorOf(range.last(), device.m_ISectorSize);
        for (int sector = first; sector <= last && first >= 0; ++sector)
            if (sectors.isEmpty() || sectors.last() < sector)
                sectors.append(sector);
    }
    report.fact("sectors", sectorsValue(sectors));
}

} // namespace

int tellOfImage(const std::string &path, const CDevice *device, Section &report) {
    const std::string bytes = bytesOfFile(path, mostBytes);
    const ImageKind *kind = imageKindOf(path);
    report.fact("format", kind == nullptr ? Value("none") : Value(kind->name));
    report.fact("size", {bytes.size(), std::to_string(bytes.size()) + " bytes"});
    report.fact("sha-256", sha256Of(bytes));
    if (!isTaken(path, bytes, report))
        return notAcceptable;
    const ImageRead image = readImage(path);
    if (!image.isRead)
        throw Refusal(notAcceptable, path + ": " + image.refusal);
    const std::vector<Memory> memories = memoriesOf(device);
    if (image.ranges.empty())
        report.finding(Mark::error, "empty", "no byte in it: the console refuses it");
    tellRanges(image, memories, report);
    if (device != nullptr)
        tellSectors(image, *device, report);
    checkRanges(image, memories, device, report);
    return lookedWell;
}
