// Every function of libZVBLLIB.so.1, recorded and answered by the script.

#include <algorithm>
#include <cstring>

#include "Script.h"
#include "link/ZVBLLIB.h"

using zvbldouble::Answer;
using zvbldouble::bytesText;
using zvbldouble::called;
using zvbldouble::format;

namespace {

// The capability record by name, in its order.
const char *const CapabilityNames[] = {"GET_CMD",
                                       "GET_VER_ROPS_CMD",
                                       "GET_ID_CMD",
                                       "SET_SPEED_CMD",
                                       "READ_CMD",
                                       "GO_CMD",
                                       "WRITE_CMD",
                                       "ERASE_CMD",
                                       "ERASE_EXT_CMD",
                                       "ERASEPROGRAM_PROTECT_CMD",
                                       "ERASEPROGRAM_TEMP_UNPROTECT_CMD",
                                       "ERASEPROGRAM_PERM_UNPROTECT_CMD",
                                       "ACCESS_PROTECT_CMD",
                                       "ACCESS_TEMP_UNPROTECT_CMD",
                                       "ACCESS_PERM_UNPROTECT_CMD",
                                       "FIRMWARE_CRC_CMD",
                                       "ENABLE_BANK3_CMD",
                                       "ZV32_ISP_CMD",
                                       "ENABLE_SLIB_CMD",
                                       "DISABLE_SLIB_CMD",
                                       "GET_SLIB_STATUS_CMD",
                                       "REMAP_ENABLE_CMD",
                                       "RESET_MCU_CMD",
                                       "ACCESS_LEVEL_PROTECT_CMD"};
constexpr size_t CapabilityCount = sizeof CapabilityNames / sizeof *CapabilityNames;
static_assert(CapabilityCount * sizeof(BOOL) == sizeof(Commands), "one name per member");

std::string linkText(HANDLE link) {
    return format("h=%lX", reinterpret_cast<unsigned long>(link));
}

// One word of the "caps" key: all, none, NAME or -NAME.
void applyCapability(const std::string &word, BOOL *members) {
    const bool off = word[0] == '-';
    for (size_t i = 0; i < CapabilityCount; ++i)
        if (word == "all" || word == "none" || word.substr(off ? 1 : 0) == CapabilityNames[i])
            members[i] = word == "none" || off ? 0 : 1;
}

void fillCapabilities(const std::string &list, Commands *commands) {
    BOOL members[CapabilityCount] = {};
    for (size_t at = 0; at < list.size();) {
        const size_t comma = std::min(list.find(',', at), list.size());
        applyCapability(list.substr(at, comma - at), members);
        at = comma + 1;
    }
    std::memcpy(commands, members, sizeof members);
}

} // namespace

#pragma GCC visibility push(default)
extern "C" {

// Forgets links and call counts, for tests that share a process.
void zvbl_double_reset() {
    zvbldouble::reset();
}

BYTE SetCOMSettings(HANDLE *link, int portNumber, const char *portName, int baud, int dataBits, int parity,
                    float stopBits) {
    const std::string name = portName == nullptr ? "null" : "\"" + std::string(portName) + "\"";
    const Answer answer = called(
        "SetCOMSettings", linkText(*link) + format(" port=%d name=%s baud=%d bits=%d parity=%d stop=%.1f", portNumber,
                                                   name.c_str(), baud, dataBits, parity, double(stopBits)));
    if (answer.ok() && *link == nullptr)
        *link = zvbldouble::makeLink();
    return answer.status;
}

BYTE Interface_Open(HANDLE link) {
    const Answer answer = called("Interface_Open", linkText(link));
    if (answer.ok())
        zvbldouble::setOpen(link, true);
    return answer.status;
}

BYTE Interface_Close(HANDLE link) {
    const Answer answer = called("Interface_Close", linkText(link));
    zvbldouble::setOpen(link, false);
    return answer.status;
}

int Interface_is_Open(HANDLE link) {
    return int(called("Interface_is_Open", linkText(link)).number("open", zvbldouble::isOpen(link) ? 1 : 0));
}

BYTE SetTimeOut(HANDLE link, unsigned int milliseconds) {
    return called("SetTimeOut", linkText(link) + format(" ms=%u", milliseconds)).status;
}

BYTE SetPaketSize(HANDLE link, BYTE bytes) {
    return called("SetPaketSize", linkText(link) + format(" bytes=%u", bytes)).status;
}

BYTE ZVBL_SetDtr(HANDLE link, BYTE level) {
    return called("ZVBL_SetDtr", linkText(link) + format(" level=%u", level)).status;
}

BYTE ZVBL_SetRts(HANDLE link, BYTE level) {
    return called("ZVBL_SetRts", linkText(link) + format(" level=%u", level)).status;
}

void TARGET_SetComIntType(BYTE interfaceType) {
    called("TARGET_SetComIntType", format("type=%u", interfaceType));
}

BYTE ZVBL_GetZVDeviceList(signed char *count, unsigned short *vendorIds, unsigned short *productIds,
                          TDeviceInfo *info) {
    const Answer answer = called("ZVBL_GetZVDeviceList", format("count=%d", *count));
    if (!answer.ok())
        return answer.status;
    *count = static_cast<signed char>(answer.number("count", 1));
    for (int i = 0; i < *count && i < 99; ++i) {
        vendorIds[i] = 0x1209;
        productIds[i] = 0x0001;
        std::strcpy(info->deviceInfo[i], "simulated");
    }
    return 0;
}

BYTE ZVBL_Init_BL(HANDLE link, unsigned short address, unsigned long rate, BYTE dutyCycle) {
    return called("ZVBL_Init_BL", linkText(link) + format(" addr=%X rate=%lu duty=%u", address, rate, dutyCycle))
        .status;
}

BYTE ZVBL_SetSpeed(HANDLE link, unsigned long speed) {
    return called("ZVBL_SetSpeed", linkText(link) + format(" speed=%lu", speed)).status;
}

BYTE ZVBL_GET(HANDLE link, BYTE *scratch, Commands *commands) {
    const Answer answer = called("ZVBL_GET", linkText(link));
    if (answer.ok()) {
        *scratch = 0x20;
        fillCapabilities(answer.text("caps", "all"), commands);
    }
    return answer.status;
}

BYTE ZVBL_GET_VER_ROPS(HANDLE link, BYTE *version, BYTE *bidReserve, BYTE *bid) {
    const Answer answer = called("ZVBL_GET_VER_ROPS", linkText(link));
    if (answer.ok()) {
        *version = BYTE(answer.hex("version", 0x21));
        *bidReserve = BYTE(answer.hex("res", 0x34));
        *bid = BYTE(answer.hex("bid", 0x12));
    }
    return answer.status;
}

BYTE ZVBL_GET_ID(HANDLE link, BYTE *length, BYTE *id) {
    const Answer answer = called("ZVBL_GET_ID", linkText(link) + (id == nullptr ? " id=null" : " id=buffer"));
    if (!answer.ok())
        return answer.status;
    const std::string bytes = zvbldouble::bytesOf(answer.text("id", "0347700507"));
    *length = BYTE(bytes.size());
    if (id != nullptr)
        std::memcpy(id, bytes.data(), bytes.size());
    return 0;
}

BYTE ZVBL_GO(HANDLE link, unsigned int address) {
    return called("ZVBL_GO", linkText(link) + format(" addr=%08X", address), address).status;
}

BYTE ZVBL_ResetMCU(HANDLE link) {
    return called("ZVBL_ResetMCU", linkText(link)).status;
}

BYTE ZVBL_UPLOAD(HANDLE link, unsigned int address, BYTE *data, unsigned int length) {
    const Answer answer = called("ZVBL_UPLOAD", linkText(link) + format(" addr=%08X len=%u", address, length), address);
    if (answer.ok())
        answer.fillBuffer(data, length, "");
    return answer.status;
}

BYTE ZVBL_DNLOAD(HANDLE link, unsigned int address, BYTE *data, unsigned int length, BYTE optimise) {
    return called("ZVBL_DNLOAD",
                  linkText(link) + format(" addr=%08X ", address) + bytesText(data, length) +
                      format(" optimise=%u", optimise),
                  address)
        .status;
}

BYTE ZVBL_VERIFY(HANDLE link, unsigned int address, BYTE *data, unsigned int length, BYTE optimise) {
    return called("ZVBL_VERIFY",
                  linkText(link) + format(" addr=%08X ", address) + bytesText(data, length) +
                      format(" optimise=%u", optimise),
                  address)
        .status;
}

BYTE ZVBL_ERASE(HANDLE link, unsigned short selector, BYTE *sectors, unsigned int sectorSize) {
    const std::string list = sectors == nullptr ? "null" : format("%u", sectors[0] | sectors[1] << 8);
    return called("ZVBL_ERASE",
                  linkText(link) + format(" selector=%X sector=%s size=%u", selector, list.c_str(), sectorSize),
                  selector)
        .status;
}

BYTE ZVBL_BLOCK_ERASE(HANDLE link, unsigned short selector, unsigned int address) {
    return called("ZVBL_BLOCK_ERASE", linkText(link) + format(" selector=%X addr=%08X", selector, address), address)
        .status;
}

BYTE ZVBL_GetFirmwareCRC(HANDLE link, unsigned int address, unsigned short sectors, BYTE *crc) {
    const Answer answer =
        called("ZVBL_GetFirmwareCRC", linkText(link) + format(" addr=%08X sectors=%u", address, sectors), address);
    const std::string bytes = zvbldouble::bytesOf(answer.text("crc", "12345678"));
    if (answer.ok())
        std::memcpy(crc, bytes.data(), std::min<size_t>(bytes.size(), 4));
    return answer.status;
}

BYTE ZVBL_SPIMREMAP(HANDLE link, BYTE remap) {
    return called("ZVBL_SPIMREMAP", linkText(link) + format(" remap=%u", remap)).status;
}

BYTE ZVBL_EnableBank3(HANDLE link, BYTE flashType, unsigned int size, unsigned int flashAddress) {
    return called("ZVBL_EnableBank3",
                  linkText(link) + format(" type=%u size=%u addr=%08X", flashType, size, flashAddress))
        .status;
}

BYTE TARGET_GetFlashSize(HANDLE link, unsigned int address, int *kilobytes) {
    const Answer answer = called("TARGET_GetFlashSize", linkText(link) + format(" addr=%08X", address), address);
    if (answer.ok())
        *kilobytes = int(answer.number("kb", 1024));
    return answer.status;
}

BYTE TARGET_GetUserSystemData(HANDLE link, unsigned int address, BYTE *data, unsigned int length) {
    const Answer answer =
        called("TARGET_GetUserSystemData", linkText(link) + format(" addr=%08X len=%u", address, length), address);
    if (answer.ok())
        answer.fillBuffer(data, length, "A5");
    return answer.status;
}

BYTE TARGET_SetUserSystemData(HANDLE link, unsigned int address, BYTE *data, unsigned int length) {
    return called("TARGET_SetUserSystemData", linkText(link) + format(" addr=%08X ", address) + bytesText(data, length),
                  address)
        .status;
}

BYTE ZVBL_ACCESS_PROTECT(HANDLE link) {
    return called("ZVBL_ACCESS_PROTECT", linkText(link)).status;
}

BYTE ZVBL_ACCESS_PROTECT_LEVEL(HANDLE link, BYTE level) {
    return called("ZVBL_ACCESS_PROTECT_LEVEL", linkText(link) + format(" level=%u", level)).status;
}

BYTE ZVBL_ACCESS_PERM_UNPROTECT(HANDLE link) {
    return called("ZVBL_ACCESS_PERM_UNPROTECT", linkText(link)).status;
}

BYTE ZVBL_ERASEPROGRAM_PROTECT(HANDLE link, BYTE count, BYTE *bits) {
    std::string list;
    for (int i = 0; i < count; ++i)
        list += format("%s%u", i == 0 ? "" : ",", bits[i]);
    return called("ZVBL_ERASEPROGRAM_PROTECT", linkText(link) + format(" count=%u bits=", count) + list).status;
}

BYTE ZVBL_ERASEPROGRAM_PERM_UNPROTECT(HANDLE link) {
    return called("ZVBL_ERASEPROGRAM_PERM_UNPROTECT", linkText(link)).status;
}

BYTE ZVBL_EnableSlib(HANDLE link, unsigned int password, unsigned short startSector, unsigned short startDataSector,
                     unsigned short endSector) {
    return called("ZVBL_EnableSlib", linkText(link) + format(" password=%08X start=%u datastart=%u end=%u", password,
                                                             startSector, startDataSector, endSector))
        .status;
}

BYTE ZVBL_DisableSlib(HANDLE link, unsigned int password) {
    return called("ZVBL_DisableSlib", linkText(link) + format(" password=%08X", password)).status;
}

BYTE ZVBL_GetSlibStatus(HANDLE link, BYTE *enabled) {
    const Answer answer = called("ZVBL_GetSlibStatus", linkText(link));
    if (answer.ok())
        *enabled = BYTE(answer.number("enabled", 0));
    return answer.status;
}

BYTE ZVBL_GetSlibStatus_Ex(HANDLE link, BYTE *enabled, unsigned short *startSector, unsigned short *startDataSector,
                           unsigned short *endSector) {
    const Answer answer = called("ZVBL_GetSlibStatus_Ex", linkText(link));
    if (answer.ok()) {
        *enabled = BYTE(answer.number("enabled", 0));
        *startSector = static_cast<unsigned short>(answer.number("start", 0));
        *startDataSector = static_cast<unsigned short>(answer.number("datastart", 0));
        *endSector = static_cast<unsigned short>(answer.number("end", 0));
    }
    return answer.status;
}

BYTE ZVBL_ZV32ISP_TOOL(HANDLE link) {
    return called("ZVBL_ZV32ISP_TOOL", linkText(link)).status;
}
}
#pragma GCC visibility pop
