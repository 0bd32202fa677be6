// The C interface: identity, memory, running.

#include <algorithm>

#include "libs/zvbl/Border.h"
#include "link/ZVBLLIB.h"

using namespace zvbl;

namespace {

struct CapabilityRow {
    std::uint8_t opcode;
    BOOL Commands::*member;
};

constexpr CapabilityRow capabilityRows[] = {
    {wire::opGet, &Commands::GET_CMD},
    {wire::opGetVerRops, &Commands::GET_VER_ROPS_CMD},
    {wire::opGetId, &Commands::GET_ID_CMD},
    {wire::opSetSpeed, &Commands::SET_SPEED_CMD},
    {wire::opRead, &Commands::READ_CMD},
    {wire::opGo, &Commands::GO_CMD},
    {wire::opWrite, &Commands::WRITE_CMD},
    {wire::opErase, &Commands::ERASE_CMD},
    {wire::opEraseExt, &Commands::ERASE_EXT_CMD},
    {wire::opEppProtect, &Commands::ERASEPROGRAM_PROTECT_CMD},
    {wire::opEppTempUnprotect, &Commands::ERASEPROGRAM_TEMP_UNPROTECT_CMD},
    {wire::opEppUnprotect, &Commands::ERASEPROGRAM_PERM_UNPROTECT_CMD},
    {wire::opAccessProtect, &Commands::ACCESS_PROTECT_CMD},
    {wire::opAccessTempUnprotect, &Commands::ACCESS_TEMP_UNPROTECT_CMD},
    {wire::opAccessUnprotect, &Commands::ACCESS_PERM_UNPROTECT_CMD},
    {wire::opFirmwareCrc, &Commands::FIRMWARE_CRC_CMD},
    {wire::opEnableBank3, &Commands::ENABLE_BANK3_CMD},
    {wire::opToolExchange, &Commands::ZV32_ISP_CMD},
    {wire::opEnableSlib, &Commands::ENABLE_SLIB_CMD},
    {wire::opDisableSlib, &Commands::DISABLE_SLIB_CMD},
    {wire::opSlibStatus, &Commands::GET_SLIB_STATUS_CMD},
    {wire::opRemap, &Commands::REMAP_ENABLE_CMD},
    {wire::opReset, &Commands::RESET_MCU_CMD},
    {wire::opAccessProtectLevel, &Commands::ACCESS_LEVEL_PROTECT_CMD},
};

Commands recordOf(const Bytes &opcodes) {
    Commands record{};
    for (const CapabilityRow &row : capabilityRows)
        record.*row.member = std::count(opcodes.begin(), opcodes.end(), row.opcode) > 0;
    return record;
}

constexpr unsigned short eraseOneSector = 1;

bool isBank(unsigned short selector) {
    return selector == wire::eraseBank1 || selector == wire::eraseBank2 || selector == wire::eraseBank3;
}

} // namespace

BYTE ZVBL_Init_BL(HANDLE link, unsigned short address, unsigned long rate, BYTE dutyCycle) {
    return withOpenLink(link, true, [&](Session &session) { return session.start({address, rate, dutyCycle}); });
}

BYTE ZVBL_SetSpeed(HANDLE link, unsigned long speed) {
    return withOpenLink(link, true, [&](Session &session) { return session.setSpeed(speed); });
}

BYTE ZVBL_GET(HANDLE link, BYTE *scratch, Commands *commands) {
    return withOpenLink(link, scratch && commands, [&](Session &session) {
        Capabilities capabilities;
        if (const Status status = session.getCapabilities(capabilities); status != Status::ok)
            return status;
        *scratch = capabilities.version;
        *commands = recordOf(capabilities.opcodes);
        return Status::ok;
    });
}

BYTE ZVBL_GET_VER_ROPS(HANDLE link, BYTE *version, BYTE *bidReserve, BYTE *bid) {
    return withOpenLink(link, version && bidReserve && bid, [&](Session &session) {
        Version found;
        if (const Status status = session.getVersion(found); status != Status::ok)
            return status;
        *version = found.version;
        *bidReserve = found.bidReserve;
        *bid = found.bid;
        return Status::ok;
    });
}

BYTE ZVBL_GET_ID(HANDLE link, BYTE *length, BYTE *id) {
    return withOpenLink(link, length, [&](Session &session) {
        Bytes found;
        if (const Status status = session.getId(found); status != Status::ok)
            return status;
        *length = static_cast<BYTE>(found.size());
        if (id)
            std::copy(found.begin(), found.end(), id);
        return Status::ok;
    });
}

BYTE ZVBL_GO(HANDLE link, unsigned int address) {
    return withOpenLink(link, true, [&](Session &session) { return session.go(address); });
}

BYTE ZVBL_ResetMCU(HANDLE link) {
    return withOpenLink(link, true, [](Session &session) { return session.reset(); });
}

BYTE ZVBL_UPLOAD(HANDLE link, unsigned int address, BYTE *data, unsigned int length) {
    return withOpenLink(link, isStretch(address, data, length),
                        [&](Session &session) { return session.upload(address, data, length); });
}

BYTE ZVBL_DNLOAD(HANDLE link, unsigned int address, BYTE *data, unsigned int length, BYTE optimise) {
    return withOpenLink(link, isStretch(address, data, length),
                        [&](Session &session) { return session.download(address, data, length, optimise); });
}

BYTE ZVBL_VERIFY(HANDLE link, unsigned int address, BYTE *data, unsigned int length, BYTE optimise) {
    return withOpenLink(link, isStretch(address, data, length),
                        [&](Session &session) { return session.verify(address, data, length, optimise); });
}

BYTE ZVBL_ERASE(HANDLE link, unsigned short selector, BYTE *sectors, unsigned int) {
    const bool oneSector = selector == eraseOneSector && sectors;
    return withOpenLink(link, oneSector || isBank(selector), [&](Session &session) {
        if (!oneSector)
            return session.eraseBank(selector);
        return session.eraseSector(static_cast<std::uint16_t>(sectors[0] | sectors[1] << 8));
    });
}

BYTE ZVBL_BLOCK_ERASE(HANDLE link, unsigned short selector, unsigned int address) {
    return withOpenLink(link, selector == wire::eraseBlock,
                        [&](Session &session) { return session.eraseBlock(address); });
}

BYTE ZVBL_GetFirmwareCRC(HANDLE link, unsigned int address, unsigned short sectors, BYTE *crc) {
    return withOpenLink(link, sectors != 0 && crc, [&](Session &session) {
        std::array<std::uint8_t, 4> found{};
        const Status status = session.firmwareCrc(address, sectors, found);
        if (status == Status::ok)
            std::copy(found.begin(), found.end(), crc);
        return status;
    });
}

BYTE ZVBL_SPIMREMAP(HANDLE link, BYTE remap) {
    return withOpenLink(link, true, [&](Session &session) { return session.remapSpim(remap); });
}

BYTE ZVBL_EnableBank3(HANDLE link, BYTE flashType, unsigned int size, unsigned int flashAddress) {
    return withOpenLink(link, true,
                        [&](Session &session) { return session.enableBank3(flashType, size, flashAddress); });
}

BYTE TARGET_GetFlashSize(HANDLE link, unsigned int address, int *kilobytes) {
    return withOpenLink(link, kilobytes, [&](Session &session) {
        std::uint8_t size[2];
        const Status status = session.upload(address, size, sizeof size);
        if (status == Status::ok)
            *kilobytes = size[0] | size[1] << 8;
        return status;
    });
}

BYTE TARGET_GetUserSystemData(HANDLE link, unsigned int address, BYTE *data, unsigned int length) {
    return withOpenLink(link, data && length >= 1 && length <= wire::maxUserData, [&](Session &session) {
        Bytes found;
        const Status status = session.readUserData(address, length, found);
        if (status == Status::ok)
            std::copy(found.begin(), found.end(), data);
        return status;
    });
}

BYTE TARGET_SetUserSystemData(HANDLE link, unsigned int address, BYTE *data, unsigned int length) {
    return withOpenLink(link, data && length >= 1 && length <= wire::maxUserData,
                        [&](Session &session) { return session.writeUserData(address, data, length); });
}
