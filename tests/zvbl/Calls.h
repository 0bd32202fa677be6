#pragma once

#include "link/ZVBLLIB.h"

// The library calls that the vector tables of the links have in common: what travels for each stands in the
// table of the link. Each gives 0 when the call did what it should.
namespace calls {

inline int exchangeToolVersion(HANDLE h) {
    return ZVBL_ZV32ISP_TOOL(h);
}

inline int reset(HANDLE h) {
    return ZVBL_ResetMCU(h);
}

inline int eraseSector258(HANDLE h) {
    BYTE sector[] = {0x02, 0x01};
    return ZVBL_ERASE(h, 1, sector, 2048);
}

inline int eraseSpimSector5(HANDLE h) {
    BYTE sector[] = {0x05, 0x80};
    return ZVBL_ERASE(h, 1, sector, 4096);
}

inline int eraseBank1(HANDLE h) {
    return ZVBL_ERASE(h, 0xFFFE, nullptr, 0);
}

inline int eraseBank2(HANDLE h) {
    return ZVBL_ERASE(h, 0xFFFD, nullptr, 0);
}

inline int eraseBank3(HANDLE h) {
    return ZVBL_ERASE(h, 0xFFFC, nullptr, 0);
}

inline int eraseBlock(HANDLE h) {
    return ZVBL_BLOCK_ERASE(h, 0xFFFB, 0x08030000);
}

inline int protectAccess(HANDLE h) {
    return ZVBL_ACCESS_PROTECT(h);
}

inline int protectAccessAtLevel1(HANDLE h) {
    return ZVBL_ACCESS_PROTECT_LEVEL(h, 1);
}

inline int protectAccessAtLevel2(HANDLE h) {
    return ZVBL_ACCESS_PROTECT_LEVEL(h, 2);
}

inline int unprotectAccess(HANDLE h) {
    return ZVBL_ACCESS_PERM_UNPROTECT(h);
}

inline int protectSectors0And3And31(HANDLE h) {
    BYTE bits[] = {0, 3, 31};
    return ZVBL_ERASEPROGRAM_PROTECT(h, 3, bits);
}

inline int unprotectSectors(HANDLE h) {
    return ZVBL_ERASEPROGRAM_PERM_UNPROTECT(h);
}

inline int enableSlib(HANDLE h) {
    return ZVBL_EnableSlib(h, 0x12345678, 4, 0xFFFF, 7);
}

inline int disableSlib(HANDLE h) {
    return ZVBL_DisableSlib(h, 0x12345678);
}

inline int remapTo0(HANDLE h) {
    return ZVBL_SPIMREMAP(h, 0);
}

inline int remapTo1(HANDLE h) {
    return ZVBL_SPIMREMAP(h, 1);
}

inline int enableBank3(HANDLE h) {
    return ZVBL_EnableBank3(h, 0x91, 0x400000, 0x10000);
}

inline int writeUserData(HANDLE h) {
    BYTE data[] = {0xA5, 0xFF, 0x01};
    return TARGET_SetUserSystemData(h, 0x1FFFF800, data, 3);
}

inline int runFlash(HANDLE h) {
    return ZVBL_GO(h, 0x08000000);
}

inline int writeRam(HANDLE h) {
    BYTE data[] = {0xAA, 0xBB, 0xCC};
    return ZVBL_DNLOAD(h, 0x20001000, data, 3, 0);
}

inline int lockOtp(HANDLE h) {
    BYTE data[] = {0x00};
    return ZVBL_DNLOAD(h, 0x1FFFF503, data, 1, 0);
}

inline int verifyThree(HANDLE h) {
    BYTE data[] = {1, 2, 3};
    return ZVBL_VERIFY(h, 0x08000004, data, 3, 0);
}

inline int start(HANDLE h) {
    return ZVBL_Init_BL(h, 0, 0, 0);
}

inline int setSpeedThatNoneHas(HANDLE h) {
    return ZVBL_SetSpeed(h, 100000) - 0x13;
}

} // namespace calls
