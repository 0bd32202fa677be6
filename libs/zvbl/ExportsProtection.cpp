// The C interface: protection, security library, tool exchange.

#include "libs/zvbl/Border.h"
#include "link/ZVBLLIB.h"

using namespace zvbl;

namespace {

constexpr BYTE lowLevel = 1;
constexpr BYTE highLevel = 2;

} // namespace

BYTE ZVBL_ACCESS_PROTECT(HANDLE link) {
    return withOpenLink(link, true, [](Session &session) { return session.protectAccess(); });
}

BYTE ZVBL_ACCESS_PROTECT_LEVEL(HANDLE link, BYTE level) {
    return withOpenLink(link, level == lowLevel || level == highLevel,
                        [&](Session &session) { return session.protectAccess(level); });
}

BYTE ZVBL_ACCESS_PERM_UNPROTECT(HANDLE link) {
    return withOpenLink(link, true, [](Session &session) { return session.unprotectAccess(); });
}

BYTE ZVBL_ERASEPROGRAM_PROTECT(HANDLE link, BYTE count, BYTE *bits) {
    return withOpenLink(link, count != 0 && bits,
                        [&](Session &session) { return session.protectSectors(bits, count); });
}

BYTE ZVBL_ERASEPROGRAM_PERM_UNPROTECT(HANDLE link) {
    return withOpenLink(link, true, [](Session &session) { return session.unprotectSectors(); });
}

BYTE ZVBL_EnableSlib(HANDLE link, unsigned int password, unsigned short startSector, unsigned short startDataSector,
                     unsigned short endSector) {
    return withOpenLink(link, true, [&](Session &session) {
        return session.enableSlib(password, {startSector, startDataSector, endSector});
    });
}

BYTE ZVBL_DisableSlib(HANDLE link, unsigned int password) {
    return withOpenLink(link, true, [&](Session &session) { return session.disableSlib(password); });
}

BYTE ZVBL_GetSlibStatus(HANDLE link, BYTE *enabled) {
    return withOpenLink(link, enabled, [&](Session &session) {
        SlibStatus found;
        const Status status = session.getSlibStatus(found);
        if (status == Status::ok)
            *enabled = found.enabled;
        return status;
    });
}

BYTE ZVBL_GetSlibStatus_Ex(HANDLE link, BYTE *enabled, unsigned short *startSector, unsigned short *startDataSector,
                           unsigned short *endSector) {
    return withOpenLink(link, enabled && startSector && startDataSector && endSector, [&](Session &session) {
        SlibStatus found;
        if (const Status status = session.getSlibStatus(found); status != Status::ok)
            return status;
        *enabled = found.enabled;
        *startSector = found.range.start;
        *startDataSector = found.range.dataStart;
        *endSector = found.range.end;
        return Status::ok;
    });
}

BYTE ZVBL_ZV32ISP_TOOL(HANDLE link) {
    return withOpenLink(link, true, [](Session &session) { return session.exchangeToolVersion(); });
}
