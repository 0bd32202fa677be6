#include "foundation/Result.h"

namespace {

struct CodeMessage {
    int code;
    const char *message;
};

// Codes that are not here have no message of their own.
constexpr CodeMessage codeMessages[] = {
    {CResult::SUCCESS, Info_Success},
    {CResult::COM_NOT_OPENED, Info_Com_NotOpen},
    {CResult::COM_ALREADY_OPENED, Info_Com_AlreadyOpen},
    {CResult::COM_CANT_OPEN_COM, Info_Com_CantOpen},
    {CResult::COM_SEND_FAIL, Info_Com_SendFail},
    {CResult::COM_READ_FAIL, Info_NoResponse}, // MEANT: the advice, not the name of the failure
    {CResult::NO_DFU_AVAILABLE, Info_No_DFUDevice},
    {CResult::DFU_ALREADY_OPENED, Info_DFU_AlreadyOpen},
    {CResult::CANT_OPEN_DFU, Info_DFU_CantOpen},
    {CResult::DFU_SEND_FAIL, Info_DFU_SendFail},
    {CResult::DFU_READ_FAIL, Info_DFU_ReadFail},
    {CResult::DFU_ACCESS_PROTECT, Info_DFU_AccessProtect},
    {CResult::DFU_COMMUNICATION_FAIL, Info_DFU_CommunicationFail},
    {CResult::DFU_NOT_DFUMODE, Info_DFU_NotDFUMode},
    {CResult::DFU_TRANSFER_SIZE_ERROR, Info_DFU_TransferSizeError},
    {CResult::DFU_STATUS_STATE_DFU_ERROR, Info_DFU_StateError},
    {CResult::DFU_STATUS_ERROR_TARGET, Info_DFU_StatusError_Target},
    {CResult::DFU_STATUS_ERROR_FILE, Info_DFU_StatusError_File},
    {CResult::DFU_STATUS_ERROR_WRITE, Info_DFU_StatusError_Write},
    {CResult::DFU_STATUS_ERROR_ERASE, Info_DFU_StatusError_Erase},
    {CResult::DFU_STATUS_ERROR_CHECK_ERASED, Info_DFU_StatusError_CheckErase},
    {CResult::DFU_STATUS_ERROR_PROG, Info_DFU_StatusError_Prog},
    {CResult::DFU_STATUS_ERROR_VERIFY, Info_DFU_StatusError_Verify},
    {CResult::DFU_STATUS_ERROR_ADDRESS, Info_DFU_StatusError_Address},
    {CResult::DFU_STATUS_ERROR_NOTDONE, Info_DFU_StatusError_Notdone},
    {CResult::DFU_STATUS_ERROR_FIRMWARE, Info_DFU_StatusError_Firmware},
    {CResult::DFU_STATUS_ERROR_VENDOR, Info_DFU_StatusError_Vendeor},
    {CResult::DFU_STATUS_ERROR_USBR, Info_DFU_StatusError_Usbr},
    {CResult::DFU_STATUS_ERROR_POR, Info_DFU_StatusError_Por},
    {CResult::DFU_STATUS_ERROR_UNKNOWN, Info_DFU_StatusError_Unknown},
    {CResult::DFU_STATUS_ERROR_STALLEDPKT, Info_DFU_StatusError_Stalledpkt},
    {CResult::SYS_UNREOGNIZED_DEVICE, Info_UnRecognizedDevice},
    {CResult::SYS_CMD_NOT_ALLOWED, Info_CMDNotAllowed},
    {CResult::SYS_ACCESS_PROTECTION, Info_AccessProtection},
    {CResult::SYS_ERASEPROGRAM_PROTECTION, Info_EraseProgramProtection},
    {CResult::PROGRAM_INPUT_PARAMS_ERROR, Info_Program_InputParamsError},
    {CResult::PROGRAM_VERIFY_DATA_NOT_MATCHING, Info_Program_VerifyDataNotMatching},
    {CResult::FILES_BADSUFFIX, Info_Files_BadSuffex},
    {CResult::FILES_UNABLETOOPENFILE, Info_Files_UNABLETOOPENFILE},
    {CResult::FILES_UNABLETOOPENTEMPFILE, Info_Files_UNABLETOOPENTEMPFILE},
    {CResult::FILES_BADFORMAT, Info_Files_BADFORMAT},
    {CResult::FILES_BADADDRESSRANGE, Info_Files_BADADDRESSRANGE},
    {CResult::FILES_BADPARAMETER, Info_Files_BADPARAMETER},
    {CResult::FILES_NOTOPEN, Info_Files_NOTOPEN},
    {CResult::FILES_SETELEMENTFULL, Info_Files_SETELEMENTFULL},
    {CResult::FILES_EMPTY, Info_Files_Empty},
    {CResult::FWCRC_CHECK_FAILED, Info_FWCRC_CheckFailed},
    {CResult::SLIB_HASBEEN_ENABLE_ERROR, Info_SLIB_HASBEEN_ENABLE_ERROR},
    {CResult::SLIB_STARTSECTOR_ERROR, Info_SLIB_STARTSECTOR_ERROR},
    {CResult::SLIB_STARTDATASECTOR_ERROR, Info_SLIB_STARTDATASECTOR_ERROR},
    {CResult::SLIB_ENDSECTOR_ERROR, Info_SLIB_ENDSECTOR_ERROR},
    {CResult::SLIB_PASSWORD_ERROR, Info_SLIB_PASSWORD_ERROR},
    {CResult::SLIB_DISABLE_PASSWORD_ERROR, Info_SLIB_PASSWORD_ERROR}, // MEANT: one message for both
    {CResult::SLIB_DOWNLOADFILE_IN_SLIBSECTOR_ERROR, Info_Slib_DownloadFile_Sector_InSlib},
    {CResult::SLIB_ENABLE_NOTSETEOPB0_ERROR, ZV403A_EOPB0_Notset_Info},
};

template <typename Status>
struct Fold {
    Status status;
    int code;
};

// MEANT: 2 (port already open) and the sLib statuses 0x31 to 0x35 and 0x41 are not folded, although the
// code space has codes for them.
constexpr Fold<int> linkStatuses[] = {
    {0x00, CResult::SUCCESS},
    {0x01, CResult::COM_NOT_OPENED},
    {0x03, CResult::COM_CANT_OPEN_COM},
    {0x04, CResult::COM_SEND_FAIL},
    {0x05, CResult::COM_READ_FAIL},
    {0x11, CResult::SYS_CANT_INIT_BL},
    {0x12, CResult::SYS_UNREOGNIZED_DEVICE},
    {0x13, CResult::SYS_CMD_NOT_ALLOWED},
    {0x14, CResult::SYS_CMD_FAIL},
    {0x21, CResult::PROGRAM_INPUT_PARAMS_ERROR},
    {0x22, CResult::PROGRAM_INPUT_PARAMS_MEMORY_ALLOCATION_ERROR},
    {0x23, CResult::PROGRAM_LIB_LOADING_ERROR},
};

// clang-format off
constexpr Fold<unsigned int> fileStatuses[] = {
    {0x12340000, CResult::SUCCESS},
    {2, CResult::FILES_BADSUFFIX},
    {3, CResult::FILES_UNABLETOOPENFILE},
    {4, CResult::FILES_UNABLETOOPENTEMPFILE},
    {5, CResult::FILES_BADFORMAT},
    {6, CResult::FILES_BADADDRESSRANGE},
    {8, CResult::FILES_BADPARAMETER},
    {10, CResult::FILES_UNEXPECTEDERROR},
    {13, CResult::FILES_FILEGENERALERROR},
    {14, CResult::FILES_NOTOPEN},
    {15, CResult::FILES_SETELEMENTFULL},
};
// clang-format on

template <typename Status, std::size_t N>
int lookUp(const Fold<Status> (&folds)[N], Status status) {
    for (const auto &fold : folds)
        if (fold.status == status)
            return fold.code;
    return CResult::UNKNOWN_ERROR;
}

} // namespace

int CResult::Convert(int code) {
    const bool isCode = (code & ERROR_OFFSET) == ERROR_OFFSET;
    return isCode ? code : lookUp(linkStatuses, code);
}

int CResult::Convert(unsigned int code) {
    return lookUp(fileStatuses, code);
}

std::string CResult::GetInfoStringName(int code) {
    for (const auto &row : codeMessages)
        if (row.code == code)
            return row.message;
    return Info_UnknownError;
}

std::string CResult::GetInfoString(std::string text) {
    return text;
}
