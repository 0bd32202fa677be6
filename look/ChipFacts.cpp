#include "look/ChipFacts.h"

#include <cstdio>
#include <iterator>
#include <regex>

#include "device/Families.h"
#include "foundation/Result.h"
#include "foundation/ShareParameter.h"
#include "link/AccessProtection.h"
#include "link/BootLoader.h"
#include "look/Sectors.h"
#include "look/Status.h"
#include "usersystemdata/CUserSystemData.h"

namespace {

constexpr int uniqueIdBytes = 12;
constexpr BYTE highLevel = 0xCC;
constexpr int kilobyte = 1024;

struct CommandName {
    BOOL Commands::*isPresent;
    const char *name;
};

constexpr CommandName commandNames[] = {
    {&Commands::GET_CMD, "GET"},
    {&Commands::GET_VER_ROPS_CMD, "GET_VER_ROPS"},
    {&Commands::GET_ID_CMD, "GET_ID"},
    {&Commands::SET_SPEED_CMD, "SET_SPEED"},
    {&Commands::READ_CMD, "READ"},
    {&Commands::GO_CMD, "GO"},
    {&Commands::WRITE_CMD, "WRITE"},
    {&Commands::ERASE_CMD, "ERASE"},
    {&Commands::ERASE_EXT_CMD, "ERASE_EXT"},
    {&Commands::ERASEPROGRAM_PROTECT_CMD, "ERASEPROGRAM_PROTECT"},
    {&Commands::ERASEPROGRAM_TEMP_UNPROTECT_CMD, "ERASEPROGRAM_TEMP_UNPROTECT"},
    {&Commands::ERASEPROGRAM_PERM_UNPROTECT_CMD, "ERASEPROGRAM_PERM_UNPROTECT"},
    {&Commands::ACCESS_PROTECT_CMD, "ACCESS_PROTECT"},
    {&Commands::ACCESS_TEMP_UNPROTECT_CMD, "ACCESS_TEMP_UNPROTECT"},
    {&Commands::ACCESS_PERM_UNPROTECT_CMD, "ACCESS_PERM_UNPROTECT"},
    {&Commands::FIRMWARE_CRC_CMD, "FIRMWARE_CRC"},
    {&Commands::ENABLE_BANK3_CMD, "ENABLE_BANK3"},
    {&Commands::ZV32_ISP_CMD, "ZV32_ISP"},
    {&Commands::ENABLE_SLIB_CMD, "ENABLE_SLIB"},
    {&Commands::DISABLE_SLIB_CMD, "DISABLE_SLIB"},
    {&Commands::GET_SLIB_STATUS_CMD, "GET_SLIB_STATUS"},
    {&Commands::REMAP_ENABLE_CMD, "REMAP_ENABLE"},
    {&Commands::RESET_MCU_CMD, "RESET_MCU"},
    {&Commands::ACCESS_LEVEL_PROTECT_CMD, "ACCESS_LEVEL_PROTECT"},
};
static_assert(std::size(commandNames) * sizeof(BOOL) == sizeof(Commands), "a row for each member");

std::string textOf(int result) {
    return isRefusal(result) ? "the chip refuses to tell" : CResult::GetInfoStringName(result);
}

void tellIdentity(CBootLoader &control, Section &report) {
    const CDevice &device = *control.m_ObDevice;
    std::string version;
    std::string bid;
    control.GetVersion(version, bid);
    report.fact("name", device.m_StrName);
    report.fact("flash", {device.m_IFlashSize, std::to_string(device.m_IFlashSize) + " KB"});
    report.fact("pid", device.m_StrPID);
    report.fact("bid", bid);
    report.fact("bootloader", version);
}

void tellUniqueId(CBootLoader &control, Section &report) {
    BYTE bytes[uniqueIdBytes] = {};
    const int result = control.GetUID(bytes);
    std::string text;
    for (const BYTE byte : bytes) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned>(byte));
        text += digits;
    }
    report.fact("unique identifier", result == CResult::SUCCESS ? Value(text) : Value(Json(nullptr), textOf(result)));
}

void tellCommands(const Commands &commands, Section &report) {
    Json names = Json::array();
    for (const CommandName &row : commandNames)
        if (commands.*row.isPresent == 1)
            names.push_back(row.name);
    report.fact("commands", std::move(names));
}

std::string accessText(const CBootLoader &control) {
    const BYTE byte = control.m_ObUserSystemData->FAP;
    if (byte == accessProtectionOff)
        return "off";
    return byte == highLevel && control.m_pCmds->ACCESS_LEVEL_PROTECT_CMD == 1 ? "on, at the high level" : "on";
}

void tellProtection(CBootLoader &control, Section &report) {
    const int result = control.GetUserSystemData();
    if (result != CResult::SUCCESS) {
        report.fact("access protection", isRefusal(result) ? Value("on") : Value(Json(nullptr), textOf(result)));
        report.fact("protected sectors", Value(Json(nullptr), textOf(result)));
        return;
    }
    CUserSystemData &options = *control.m_ObUserSystemData;
    report.fact("access protection", accessText(control));
    const QList<int> sectors = options.GetEPPMapSectorIndex(options.m_nSectorNums);
    report.fact("protected sectors", sectors.isEmpty() ? Value(Json::array(), "none") : sectorsValue(sectors));
}

void tellSlib(const CBootLoader &control, Section &report) {
    if (control.m_pCmds->GET_SLIB_STATUS_CMD != 1) {
        report.fact("slib", Value(Json(nullptr), "the bootloader has no command for it"));
        return;
    }
    BYTE isEnabled = 0;
    unsigned short first = 0;
    unsigned short firstData = 0;
    unsigned short last = 0;
    const int result = CResult::Convert(ZVBL_GetSlibStatus_Ex(control.m_handle, &isEnabled, &first, &firstData, &last));
    if (result != CResult::SUCCESS)
        report.fact("slib", Value(Json(nullptr), textOf(result)));
    else if (isEnabled != 1)
        report.fact("slib", Value(Json::array(), "none"));
    else
        report.fact("slib", Value(Json{first, last}, "sectors " + std::to_string(first) + "-" + std::to_string(last) +
                                                         ", data from " + std::to_string(firstData)));
}

struct Range {
    unsigned int first;
    unsigned int last;
};

Range rangeOf(const std::string &text, const CDevice &device) {
    const auto flash = static_cast<unsigned int>(device.m_IFlashSize) * kilobyte;
    const Range all{ZVCHIP_FLASH_BASE_ADDRESS, ZVCHIP_FLASH_BASE_ADDRESS + flash - 1};
    if (text == "all")
        return all;
    std::smatch part;
    if (!std::regex_match(text, part, std::regex("(?:0x)?([0-9A-Fa-f]{1,8})-(?:0x)?([0-9A-Fa-f]{1,8})")))
        throw Refusal(badWords, "--crc takes \"all\", or a first and a last address: 08000000-08001FFF");
    const Range range{static_cast<unsigned int>(std::stoul(part[1], nullptr, 16)),
                      static_cast<unsigned int>(std::stoul(part[2], nullptr, 16))};
    const unsigned int sector = device.m_ISectorSize;
    const bool isWhole = range.first % sector == 0 && range.last % sector == sector - 1;
    if (range.first > range.last || range.first < all.first || range.last > all.last || !isWhole)
        throw Refusal(badWords, "--crc " + text + ": no whole sectors of the flash, of " + std::to_string(sector) +
                                    " bytes each from " + addressValue(all.first).text + " to " +
                                    addressValue(all.last).text);
    return range;
}

} // namespace

void tellChip(CBootLoader &control, Section &report) {
    tellIdentity(control, report);
    tellUniqueId(control, report);
    tellProtection(control, report);
    tellSlib(control, report);
    const bool hasSpim = control.m_pCmds->ENABLE_BANK3_CMD == 1;
    report.fact("spim", Value(hasSpim, hasSpim ? "can be enabled" : "none"));
    tellCommands(*control.m_pCmds, report);
}

void tellCrc(CBootLoader &control, const std::string &text, Section &report) {
    const Range range = rangeOf(text, *control.m_ObDevice);
    const unsigned int sectors = (range.last - range.first + 1) / control.m_ObDevice->m_ISectorSize;
    BYTE crc[4] = {};
    const int result =
        CResult::Convert(ZVBL_GetFirmwareCRC(control.m_handle, range.first, static_cast<unsigned short>(sectors), crc));
    if (result != CResult::SUCCESS)
        throw Refusal(notAcceptable, "--crc " + text + ": " + textOf(result));
    const unsigned int value = unsigned(crc[0]) << 24 | unsigned(crc[1]) << 16 | unsigned(crc[2]) << 8 | crc[3];
    report.table("crc-32", {"first", "last", "crc"},
                 {{addressValue(range.first), addressValue(range.last), addressValue(value)}});
}
