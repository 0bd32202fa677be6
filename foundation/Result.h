#pragma once

#include <string>

#include "foundation/ResultMessages.h"

// The one code space of outcomes. 0 is success; every failure has bits 24 to 27 set. What the two
// libraries return is folded into it by Convert before anything tests it. No state, no failure.
class CResult {
public:
    static constexpr int SUCCESS = 0x00000000;

    static constexpr int ERROR_OFFSET = 0x0F000000;
    static constexpr int UNKNOWN_ERROR = 0x0F000000;

    // Serial-style links.
    static constexpr int COM_ERROR_OFFSET = 0x0F001000;
    static constexpr int COM_NOT_OPENED = 0x0F001001;
    static constexpr int COM_ALREADY_OPENED = 0x0F001002;
    static constexpr int COM_CANT_OPEN_COM = 0x0F001003;
    static constexpr int COM_SEND_FAIL = 0x0F001004;
    static constexpr int COM_READ_FAIL = 0x0F001005;

    // sLib enabling and disabling.
    static constexpr int SLIBENABLE_ERROR_OFFSET = 0x0F001030;
    static constexpr int SLIB_HASBEEN_ENABLE_ERROR = 0x0F001031;
    static constexpr int SLIB_STARTSECTOR_ERROR = 0x0F001032;
    static constexpr int SLIB_STARTDATASECTOR_ERROR = 0x0F001033;
    static constexpr int SLIB_ENDSECTOR_ERROR = 0x0F001034;
    static constexpr int SLIB_PASSWORD_ERROR = 0x0F001035;
    static constexpr int SLIBDISABLE_ERROR_OFFSET = 0x0F001040;
    static constexpr int SLIB_DISABLE_PASSWORD_ERROR = 0x0F001041;
    static constexpr int SLIB_DOWNLOADFILE_IN_SLIBSECTOR_ERROR = 0x0F001042;
    static constexpr int SLIB_ENABLE_NOTSETEOPB0_ERROR = 0x0F001043;

    // USB DFU link.
    static constexpr int DFU_ERROR_OFFSET = 0x0F001050;
    static constexpr int NO_DFU_AVAILABLE = 0x0F001051;
    static constexpr int DFU_ALREADY_OPENED = 0x0F001052;
    static constexpr int CANT_OPEN_DFU = 0x0F001053;
    static constexpr int DFU_SEND_FAIL = 0x0F001054;
    static constexpr int DFU_READ_FAIL = 0x0F001055;
    static constexpr int DFU_ACCESS_PROTECT = 0x0F001056;
    static constexpr int DFU_COMMUNICATION_FAIL = 0x0F001057;
    static constexpr int DFU_NOT_DFUMODE = 0x0F001058;
    static constexpr int DFU_TRANSFER_SIZE_ERROR = 0x0F001059;
    static constexpr int DFU_STATUS_STATE_DFU_ERROR = 0x0F00105A;

    // Status values that a DFU target reports.
    static constexpr int DFU_STATUS_ERROR_OFFSET = 0x0F0010A0;
    static constexpr int DFU_STATUS_ERROR_TARGET = 0x0F0010A1;
    static constexpr int DFU_STATUS_ERROR_FILE = 0x0F0010A2;
    static constexpr int DFU_STATUS_ERROR_WRITE = 0x0F0010A3;
    static constexpr int DFU_STATUS_ERROR_ERASE = 0x0F0010A4;
    static constexpr int DFU_STATUS_ERROR_CHECK_ERASED = 0x0F0010A5;
    static constexpr int DFU_STATUS_ERROR_PROG = 0x0F0010A6;
    static constexpr int DFU_STATUS_ERROR_VERIFY = 0x0F0010A7;
    static constexpr int DFU_STATUS_ERROR_ADDRESS = 0x0F0010A8;
    static constexpr int DFU_STATUS_ERROR_NOTDONE = 0x0F0010A9;
    static constexpr int DFU_STATUS_ERROR_FIRMWARE = 0x0F0010AA;
    static constexpr int DFU_STATUS_ERROR_VENDOR = 0x0F0010AB;
    static constexpr int DFU_STATUS_ERROR_USBR = 0x0F0010AC;
    static constexpr int DFU_STATUS_ERROR_POR = 0x0F0010AD;
    static constexpr int DFU_STATUS_ERROR_UNKNOWN = 0x0F0010AE;
    static constexpr int DFU_STATUS_ERROR_STALLEDPKT = 0x0F0010AF;

    // Target and bootloader.
    static constexpr int SYS_MEM_ERROR_OFFSET = 0x0F002000;
    static constexpr int SYS_CANT_INIT_BL = 0x0F002001;
    static constexpr int SYS_UNREOGNIZED_DEVICE = 0x0F002002;
    static constexpr int SYS_CMD_NOT_ALLOWED = 0x0F002003;
    static constexpr int SYS_CMD_FAIL = 0x0F002004;
    static constexpr int SYS_ACCESS_PROTECTION = 0x0F002005;
    static constexpr int SYS_ERASEPROGRAM_PROTECTION = 0x0F002006;

    // The tool itself.
    static constexpr int PROGRAM_ERROR_OFFSET = 0x0F004000;
    static constexpr int PROGRAM_INPUT_PARAMS_ERROR = 0x0F004001;
    static constexpr int PROGRAM_INPUT_PARAMS_MEMORY_ALLOCATION_ERROR = 0x0F004002;
    static constexpr int PROGRAM_LIB_LOADING_ERROR = 0x0F004003;
    static constexpr int PROGRAM_VERIFY_DATA_NOT_MATCHING = 0x0F004004;

    // Image files.
    static constexpr int FILES_ERROR_OFFSET = 0x0F008000;
    static constexpr int FILES_BADSUFFIX = 0x0F008002;
    static constexpr int FILES_UNABLETOOPENFILE = 0x0F008003;
    static constexpr int FILES_UNABLETOOPENTEMPFILE = 0x0F008004;
    static constexpr int FILES_BADFORMAT = 0x0F008005;
    static constexpr int FILES_BADADDRESSRANGE = 0x0F008006;
    static constexpr int FILES_BADPARAMETER = 0x0F008008;
    static constexpr int FILES_UNEXPECTEDERROR = 0x0F00800A;
    static constexpr int FILES_FILEGENERALERROR = 0x0F00800D;
    static constexpr int FILES_NOTOPEN = 0x0F00800E;
    static constexpr int FILES_SETELEMENTFULL = 0x0F00800F;
    static constexpr int FILES_EMPTY = 0x0F008010; // the tool's own: no library status stands for it

    // Firmware CRC. MEANT: the one code lies in the range of the image files, not under its own offset.
    static constexpr int FWCRC_ERROR_OFFSET = 0x0F010000;
    static constexpr int FWCRC_CHECK_FAILED = 0x0F008022;

    // Folds a status of the bootloader library, its byte widened to int. A value that already is a code
    // (bits 24 to 27 set) comes back unchanged; an unknown one gives UNKNOWN_ERROR.
    static int Convert(int code);

    // Folds a status of the file library, 0x12340000 for success. Every other value outside its table
    // gives UNKNOWN_ERROR: 0 does, and so does a code that has been converted before.
    static int Convert(unsigned int code);

    // The message of a code; "Unknown error!" for a value that is none.
    static std::string GetInfoStringName(int code);

    // The one place that every printed message passes: gives back its argument.
    static std::string GetInfoString(std::string text);
};
