// Compiled as C against the two headers: they are C too, and the binary interface is the frozen one. It prints the
// names of one library's functions, which are also linked here.
//
// usage: interface zvbl|files
#include <stdio.h>
#include <string.h>

#include "device/FilesInc.h"
#include "link/ZVBLLIB.h"

#define FROZEN(name, result, parameters) \
    _Static_assert(__builtin_types_compatible_p(__typeof__(name), result parameters), #name " has changed");
#include "tests/abi/FilesFunctions.inc"
#include "tests/abi/ZvblFunctions.inc"
#undef FROZEN

#define SIZE(record, bytes) _Static_assert(sizeof(record) == (bytes), "the size of " #record " has changed")
#define MEMBER(record, member, type, offset)                                                \
    _Static_assert(offsetof(record, member) == (offset), #record "." #member " has moved"); \
    _Static_assert(__builtin_types_compatible_p(__typeof__(((record *)0)->member), type),   \
                   #record "." #member " has another type")

SIZE(BYTE, 1);
SIZE(BOOL, 4);
SIZE(DWORD, 8);
SIZE(HANDLE, 8);

SIZE(MAPPINGSECTOR, 296);
MEMBER(MAPPINGSECTOR, Name, char[256], 0);
MEMBER(MAPPINGSECTOR, dwStartAddress, unsigned long, 256);
MEMBER(MAPPINGSECTOR, dwAliasedAddress, unsigned long, 264);
MEMBER(MAPPINGSECTOR, dwSectorIndex, unsigned long, 272);
MEMBER(MAPPINGSECTOR, dwSectorSize, unsigned long, 280);
MEMBER(MAPPINGSECTOR, bSectorType, unsigned char, 288);
MEMBER(MAPPINGSECTOR, UseForOperation, _Bool, 289);
MEMBER(MAPPINGSECTOR, UseForErase, _Bool, 290);
MEMBER(MAPPINGSECTOR, UseForUpload, _Bool, 291);
MEMBER(MAPPINGSECTOR, UseForEraseProgramProtect, _Bool, 292);

SIZE(MAPPING, 280);
MEMBER(MAPPING, nAlternate, unsigned char, 0);
MEMBER(MAPPING, Name, char[256], 1);
MEMBER(MAPPING, NbSectors, unsigned long, 264);
MEMBER(MAPPING, pSectors, PMAPPINGSECTOR, 272);

SIZE(IMAGEELEMENT, 24);
MEMBER(IMAGEELEMENT, dwAddress, unsigned long, 0);
MEMBER(IMAGEELEMENT, dwDataLength, unsigned long, 8);
MEMBER(IMAGEELEMENT, Data, unsigned char *, 16);

SIZE(TDeviceInfo, 99 * 99);
SIZE(Commands, 24 * 4);
MEMBER(Commands, GET_CMD, int, 0 * 4);
MEMBER(Commands, GET_VER_ROPS_CMD, int, 1 * 4);
MEMBER(Commands, GET_ID_CMD, int, 2 * 4);
MEMBER(Commands, SET_SPEED_CMD, int, 3 * 4);
MEMBER(Commands, READ_CMD, int, 4 * 4);
MEMBER(Commands, GO_CMD, int, 5 * 4);
MEMBER(Commands, WRITE_CMD, int, 6 * 4);
MEMBER(Commands, ERASE_CMD, int, 7 * 4);
MEMBER(Commands, ERASE_EXT_CMD, int, 8 * 4);
MEMBER(Commands, ERASEPROGRAM_PROTECT_CMD, int, 9 * 4);
MEMBER(Commands, ERASEPROGRAM_TEMP_UNPROTECT_CMD, int, 10 * 4);
MEMBER(Commands, ERASEPROGRAM_PERM_UNPROTECT_CMD, int, 11 * 4);
MEMBER(Commands, ACCESS_PROTECT_CMD, int, 12 * 4);
MEMBER(Commands, ACCESS_TEMP_UNPROTECT_CMD, int, 13 * 4);
MEMBER(Commands, ACCESS_PERM_UNPROTECT_CMD, int, 14 * 4);
MEMBER(Commands, FIRMWARE_CRC_CMD, int, 15 * 4);
MEMBER(Commands, ENABLE_BANK3_CMD, int, 16 * 4);
MEMBER(Commands, ZV32_ISP_CMD, int, 17 * 4);
MEMBER(Commands, ENABLE_SLIB_CMD, int, 18 * 4);
MEMBER(Commands, DISABLE_SLIB_CMD, int, 19 * 4);
MEMBER(Commands, GET_SLIB_STATUS_CMD, int, 20 * 4);
MEMBER(Commands, REMAP_ENABLE_CMD, int, 21 * 4);
MEMBER(Commands, RESET_MCU_CMD, int, 22 * 4);
MEMBER(Commands, ACCESS_LEVEL_PROTECT_CMD, int, 23 * 4);

struct function {
    const char *name;
    void (*address)(void);
};
#define FROZEN(name, result, parameters) {#name, (void (*)(void))name},
static const struct function zvbl[] = {
#include "tests/abi/ZvblFunctions.inc"
};
static const struct function files[] = {
#include "tests/abi/FilesFunctions.inc"
};
#undef FROZEN

static void print(const struct function *table, size_t count) {
    for (size_t i = 0; i < count; ++i)
        if (table[i].address)
            puts(table[i].name);
}

int main(int argc, char **argv) {
    if (argc == 2 && strcmp(argv[1], "zvbl") == 0)
        print(zvbl, sizeof zvbl / sizeof *zvbl);
    else if (argc == 2 && strcmp(argv[1], "files") == 0)
        print(files, sizeof files / sizeof *files);
    else
        return 2;
    return 0;
}
