#pragma once

// The C interface of libZVBLLIB.so.1: the link to a chip's resident bootloader.

#include "foundation/LibraryTypes.h"

// The capability record: a member is present exactly when it is 1.
typedef struct {
    BOOL GET_CMD;
    BOOL GET_VER_ROPS_CMD;
    BOOL GET_ID_CMD;
    BOOL SET_SPEED_CMD;
    BOOL READ_CMD;
    BOOL GO_CMD;
    BOOL WRITE_CMD;
    BOOL ERASE_CMD;
    BOOL ERASE_EXT_CMD;
    BOOL ERASEPROGRAM_PROTECT_CMD;
    BOOL ERASEPROGRAM_TEMP_UNPROTECT_CMD;
    BOOL ERASEPROGRAM_PERM_UNPROTECT_CMD;
    BOOL ACCESS_PROTECT_CMD;
    BOOL ACCESS_TEMP_UNPROTECT_CMD;
    BOOL ACCESS_PERM_UNPROTECT_CMD;
    BOOL FIRMWARE_CRC_CMD;
    BOOL ENABLE_BANK3_CMD;
    BOOL ZV32_ISP_CMD;
    BOOL ENABLE_SLIB_CMD;
    BOOL DISABLE_SLIB_CMD;
    BOOL GET_SLIB_STATUS_CMD;
    BOOL REMAP_ENABLE_CMD;
    BOOL RESET_MCU_CMD;
    BOOL ACCESS_LEVEL_PROTECT_CMD;
} Commands;

// One row of text per USB DFU device found.
typedef struct tagDFUDeviceInfo {
    char deviceInfo[99][99];
} TDeviceInfo;

static_assert(sizeof(Commands) == 96, "binary contract");

// Every status below is one byte, 0 for success. No function throws, prints or exits.
#pragma GCC visibility push(default)
#ifdef __cplusplus
extern "C" {
#endif

// Port and link. A link is used by one thread at a time.

// Creates the link on the first call for *link, reconfigures it afterwards. Parity 0 none, 1 odd,
// 2 even; stop bits 1.0, 1.5, 2.0. The port name is a path, or a name under /dev.
BYTE SetCOMSettings(HANDLE *link, int portNumber, const char *portName, int baud, int dataBits, int parity,
                    float stopBits);
BYTE Interface_Open(HANDLE link);
BYTE Interface_Close(HANDLE link);
int Interface_is_Open(HANDLE link);                      // 1: open
BYTE SetTimeOut(HANDLE link, unsigned int milliseconds); // reply time limit of every later exchange
BYTE SetPaketSize(HANDLE link, BYTE bytes);              // 0 stands for 256
BYTE ZVBL_SetDtr(HANDLE link, BYTE level);
BYTE ZVBL_SetRts(HANDLE link, BYTE level);
void TARGET_SetComIntType(BYTE interfaceType); // process-wide: 0 USART, 1 USB DFU, 2 I2C, 3 CAN, 4 SPI
BYTE ZVBL_GetZVDeviceList(signed char *count, unsigned short *vendorIds, unsigned short *productIds, TDeviceInfo *info);

// Bootloader.
BYTE ZVBL_Init_BL(HANDLE link, unsigned short address, unsigned long rate, BYTE dutyCycle);
BYTE ZVBL_SetSpeed(HANDLE link, unsigned long speed);
BYTE ZVBL_GET(HANDLE link, BYTE *scratch, Commands *commands);
BYTE ZVBL_GET_VER_ROPS(HANDLE link, BYTE *version, BYTE *bidReserve, BYTE *bid);
BYTE ZVBL_GET_ID(HANDLE link, BYTE *length, BYTE *id); // id null: length only
BYTE ZVBL_GO(HANDLE link, unsigned int address);
BYTE ZVBL_ResetMCU(HANDLE link);
BYTE ZVBL_UPLOAD(HANDLE link, unsigned int address, BYTE *data, unsigned int length);
BYTE ZVBL_DNLOAD(HANDLE link, unsigned int address, BYTE *data, unsigned int length, BYTE optimise);
BYTE ZVBL_VERIFY(HANDLE link, unsigned int address, BYTE *data, unsigned int length,
                 BYTE optimise); // 19: the data differ
// Selector 1: one sector, its index in two bytes, low byte first; 0xFFFE, 0xFFFD, 0xFFFC: bank 1,
// bank 2, Bank 3, list null, size 0.
BYTE ZVBL_ERASE(HANDLE link, unsigned short selector, BYTE *sectors, unsigned int sectorSize);
BYTE ZVBL_BLOCK_ERASE(HANDLE link, unsigned short selector, unsigned int address); // selector 0xFFFB
BYTE ZVBL_GetFirmwareCRC(HANDLE link, unsigned int address, unsigned short sectors,
                         BYTE *crc); // four bytes, highest first
BYTE ZVBL_SPIMREMAP(HANDLE link, BYTE remap);
BYTE ZVBL_EnableBank3(HANDLE link, BYTE flashType, unsigned int size, unsigned int flashAddress); // size in bytes
BYTE TARGET_GetFlashSize(HANDLE link, unsigned int address, int *kilobytes);
BYTE TARGET_GetUserSystemData(HANDLE link, unsigned int address, BYTE *data, unsigned int length); // compact form
BYTE TARGET_SetUserSystemData(HANDLE link, unsigned int address, BYTE *data, unsigned int length); // compact form

// Protection, security library, tool exchange.
BYTE ZVBL_ACCESS_PROTECT(HANDLE link);
BYTE ZVBL_ACCESS_PROTECT_LEVEL(HANDLE link, BYTE level);
BYTE ZVBL_ACCESS_PERM_UNPROTECT(HANDLE link);
BYTE ZVBL_ERASEPROGRAM_PROTECT(HANDLE link, BYTE count, BYTE *bits); // protection bit numbers, one byte each
BYTE ZVBL_ERASEPROGRAM_PERM_UNPROTECT(HANDLE link);
BYTE ZVBL_EnableSlib(HANDLE link, unsigned int password, unsigned short startSector, unsigned short startDataSector,
                     unsigned short endSector);
BYTE ZVBL_DisableSlib(HANDLE link, unsigned int password);
BYTE ZVBL_GetSlibStatus(HANDLE link, BYTE *enabled); // 1: an area is enabled
BYTE ZVBL_GetSlibStatus_Ex(HANDLE link, BYTE *enabled, unsigned short *startSector, unsigned short *startDataSector,
                           unsigned short *endSector);
BYTE ZVBL_ZV32ISP_TOOL(HANDLE link);
#ifdef __cplusplus
}
#endif
#pragma GCC visibility pop
