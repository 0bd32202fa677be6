#include "foundation/Result.h"

#include <gtest/gtest.h>

namespace {

struct Code {
    int code;
    int value;
    std::string message;
};

// clang-format off
const Code codes[] = {
    {CResult::SUCCESS, 0x00000000, Info_Success},
    {CResult::UNKNOWN_ERROR, 0x0F000000, Info_UnknownError},
    {CResult::ERROR_OFFSET, 0x0F000000, Info_UnknownError},
    {CResult::COM_ERROR_OFFSET, 0x0F001000, Info_UnknownError},
    {CResult::COM_NOT_OPENED, 0x0F001001, Info_Com_NotOpen},
    {CResult::COM_ALREADY_OPENED, 0x0F001002, Info_Com_AlreadyOpen},
    {CResult::COM_CANT_OPEN_COM, 0x0F001003, Info_Com_CantOpen},
    {CResult::COM_SEND_FAIL, 0x0F001004, Info_Com_SendFail},
    {CResult::COM_READ_FAIL, 0x0F001005, Info_NoResponse},
    {CResult::DFU_ERROR_OFFSET, 0x0F001050, Info_UnknownError},
    {CResult::NO_DFU_AVAILABLE, 0x0F001051, Info_No_DFUDevice},
    {CResult::DFU_ALREADY_OPENED, 0x0F001052, Info_DFU_AlreadyOpen},
    {CResult::CANT_OPEN_DFU, 0x0F001053, Info_DFU_CantOpen},
    {CResult::DFU_SEND_FAIL, 0x0F001054, Info_DFU_SendFail},
    {CResult::DFU_READ_FAIL, 0x0F001055, Info_DFU_ReadFail},
    {CResult::DFU_ACCESS_PROTECT, 0x0F001056, Info_DFU_AccessProtect},
    {CResult::DFU_COMMUNICATION_FAIL, 0x0F001057, Info_DFU_CommunicationFail},
    {CResult::DFU_NOT_DFUMODE, 0x0F001058, Info_DFU_NotDFUMode},
    {CResult::DFU_TRANSFER_SIZE_ERROR, 0x0F001059, Info_DFU_TransferSizeError},
    {CResult::DFU_STATUS_STATE_DFU_ERROR, 0x0F00105A, Info_DFU_StateError},
    {CResult::DFU_STATUS_ERROR_OFFSET, 0x0F0010A0, Info_UnknownError},
    {CResult::DFU_STATUS_ERROR_TARGET, 0x0F0010A1, Info_DFU_StatusError_Target},
    {CResult::DFU_STATUS_ERROR_FILE, 0x0F0010A2, Info_DFU_StatusError_File},
    {CResult::DFU_STATUS_ERROR_WRITE, 0x0F0010A3, Info_DFU_StatusError_Write},
    {CResult::DFU_STATUS_ERROR_ERASE, 0x0F0010A4, Info_DFU_StatusError_Erase},
    {CResult::DFU_STATUS_ERROR_CHECK_ERASED, 0x0F0010A5, Info_DFU_StatusError_CheckErase},
    {CResult::DFU_STATUS_ERROR_PROG, 0x0F0010A6, Info_DFU_StatusError_Prog},
    {CResult::DFU_STATUS_ERROR_VERIFY, 0x0F0010A7, Info_DFU_StatusError_Verify},
    {CResult::DFU_STATUS_ERROR_ADDRESS, 0x0F0010A8, Info_DFU_StatusError_Address},
    {CResult::DFU_STATUS_ERROR_NOTDONE, 0x0F0010A9, Info_DFU_StatusError_Notdone},
    {CResult::DFU_STATUS_ERROR_FIRMWARE, 0x0F0010AA, Info_DFU_StatusError_Firmware},
    {CResult::DFU_STATUS_ERROR_VENDOR, 0x0F0010AB, Info_DFU_StatusError_Vendeor},
    {CResult::DFU_STATUS_ERROR_USBR, 0x0F0010AC, Info_DFU_StatusError_Usbr},
    {CResult::DFU_STATUS_ERROR_POR, 0x0F0010AD, Info_DFU_StatusError_Por},
    {CResult::DFU_STATUS_ERROR_UNKNOWN, 0x0F0010AE, Info_DFU_StatusError_Unknown},
    {CResult::DFU_STATUS_ERROR_STALLEDPKT, 0x0F0010AF, Info_DFU_StatusError_Stalledpkt},
    {CResult::SYS_MEM_ERROR_OFFSET, 0x0F002000, Info_UnknownError},
    {CResult::SYS_CANT_INIT_BL, 0x0F002001, Info_UnknownError},
    {CResult::SYS_UNREOGNIZED_DEVICE, 0x0F002002, Info_UnRecognizedDevice},
    {CResult::SYS_CMD_NOT_ALLOWED, 0x0F002003, Info_CMDNotAllowed},
    {CResult::SYS_CMD_FAIL, 0x0F002004, Info_UnknownError},
    {CResult::SYS_ACCESS_PROTECTION, 0x0F002005, Info_AccessProtection},
    {CResult::SYS_ERASEPROGRAM_PROTECTION, 0x0F002006, Info_EraseProgramProtection},
    {CResult::PROGRAM_ERROR_OFFSET, 0x0F004000, Info_UnknownError},
    {CResult::PROGRAM_INPUT_PARAMS_ERROR, 0x0F004001, Info_Program_InputParamsError},
    {CResult::PROGRAM_INPUT_PARAMS_MEMORY_ALLOCATION_ERROR, 0x0F004002, Info_UnknownError},
    {CResult::PROGRAM_LIB_LOADING_ERROR, 0x0F004003, Info_UnknownError},
    {CResult::PROGRAM_VERIFY_DATA_NOT_MATCHING, 0x0F004004, Info_Program_VerifyDataNotMatching},
    {CResult::FILES_ERROR_OFFSET, 0x0F008000, Info_UnknownError},
    {CResult::FILES_BADSUFFIX, 0x0F008002, Info_Files_BadSuffex},
    {CResult::FILES_UNABLETOOPENFILE, 0x0F008003, Info_Files_UNABLETOOPENFILE},
    {CResult::FILES_UNABLETOOPENTEMPFILE, 0x0F008004, Info_Files_UNABLETOOPENTEMPFILE},
    {CResult::FILES_BADFORMAT, 0x0F008005, Info_Files_BADFORMAT},
    {CResult::FILES_BADADDRESSRANGE, 0x0F008006, Info_Files_BADADDRESSRANGE},
    {CResult::FILES_BADPARAMETER, 0x0F008008, Info_Files_BADPARAMETER},
    {CResult::FILES_UNEXPECTEDERROR, 0x0F00800A, Info_UnknownError},
    {CResult::FILES_FILEGENERALERROR, 0x0F00800D, Info_UnknownError},
    {CResult::FILES_NOTOPEN, 0x0F00800E, Info_Files_NOTOPEN},
    {CResult::FILES_SETELEMENTFULL, 0x0F00800F, Info_Files_SETELEMENTFULL},
    {CResult::FILES_EMPTY, 0x0F008010, Info_Files_Empty},
    {CResult::FWCRC_ERROR_OFFSET, 0x0F010000, Info_UnknownError},
    {CResult::FWCRC_CHECK_FAILED, 0x0F008022, Info_FWCRC_CheckFailed},
    {CResult::SLIBENABLE_ERROR_OFFSET, 0x0F001030, Info_UnknownError},
    {CResult::SLIB_HASBEEN_ENABLE_ERROR, 0x0F001031, Info_SLIB_HASBEEN_ENABLE_ERROR},
    {CResult::SLIB_STARTSECTOR_ERROR, 0x0F001032, Info_SLIB_STARTSECTOR_ERROR},
    {CResult::SLIB_STARTDATASECTOR_ERROR, 0x0F001033, Info_SLIB_STARTDATASECTOR_ERROR},
    {CResult::SLIB_ENDSECTOR_ERROR, 0x0F001034, Info_SLIB_ENDSECTOR_ERROR},
    {CResult::SLIB_PASSWORD_ERROR, 0x0F001035, Info_SLIB_PASSWORD_ERROR},
    {CResult::SLIBDISABLE_ERROR_OFFSET, 0x0F001040, Info_UnknownError},
    {CResult::SLIB_DISABLE_PASSWORD_ERROR, 0x0F001041, Info_SLIB_PASSWORD_ERROR},
    {CResult::SLIB_DOWNLOADFILE_IN_SLIBSECTOR_ERROR, 0x0F001042, Info_Slib_DownloadFile_Sector_InSlib},
    {CResult::SLIB_ENABLE_NOTSETEOPB0_ERROR, 0x0F001043, ZV403A_EOPB0_Notset_Info},
};
// clang-format on

TEST(Result, EveryCodeHasItsValueAndItsMessage) {
    EXPECT_EQ(std::size(codes), 72u);
    for (const Code &row : codes) {
        EXPECT_EQ(row.code, row.value);
        EXPECT_EQ(CResult::GetInfoStringName(row.code), row.message) << std::hex << row.value;
    }
}

TEST(Result, AMessageOfACodeReads) {
    EXPECT_EQ(CResult::GetInfoStringName(0), "Info Success");
    EXPECT_EQ(CResult::GetInfoStringName(CResult::FILES_SETELEMENTFULL), "Cannot open file!");
    EXPECT_EQ(CResult::GetInfoStringName(CResult::FILES_UNABLETOOPENFILE), "Cannot open file!");
    EXPECT_EQ(CResult::GetInfoStringName(CResult::SLIB_PASSWORD_ERROR), "Info_SLIB_PASSWORD_ERROR");
    EXPECT_EQ(CResult::GetInfoStringName(CResult::SLIB_DISABLE_PASSWORD_ERROR), "Info_SLIB_PASSWORD_ERROR");
    EXPECT_EQ(CResult::GetInfoStringName(CResult::DFU_SEND_FAIL), "Info_DFU_SendFail");
    EXPECT_EQ(CResult::GetInfoStringName(CResult::COM_READ_FAIL),
              "No response from the device...\nPlease verify the boot mode configuration.\nCheck the UART cable.\n"
              "Reset the device then run again.");
}

TEST(Result, AValueThatIsNoCodeReadsAsUnknown) {
    for (const int value : {-1, 1, 19, 0x12340000, 0x0F008001, 0x0F008011, 0x1F001001})
        EXPECT_EQ(CResult::GetInfoStringName(value), "Unknown error!") << value;
}

TEST(Result, GetInfoStringGivesBackItsArgument) {
    EXPECT_EQ(CResult::GetInfoString("Erase"), "Erase");
    EXPECT_EQ(CResult::GetInfoString(Disconnect_Error_Info), "Device has disconnected\xA1\xA3");
    EXPECT_EQ(CResult::GetInfoString(""), "");
}

struct LinkStatus {
    int status;
    int code;
};

const LinkStatus linkStatuses[] = {
    {0x00, 0},          {0x01, 0x0F001001}, {0x03, 0x0F001003}, {0x04, 0x0F001004},
    {0x05, 0x0F001005}, {0x11, 0x0F002001}, {0x12, 0x0F002002}, {0x13, 0x0F002003},
    {0x14, 0x0F002004}, {0x21, 0x0F004001}, {0x22, 0x0F004002}, {0x23, 0x0F004003},
};

TEST(Result, ConvertOfALinkStatusHasATableAndNothingElse) {
    for (int status = 0; status < 256; ++status) {
        int expected = 0x0F000000;
        for (const LinkStatus &row : linkStatuses)
            expected = row.status == status ? row.code : expected;
        EXPECT_EQ(CResult::Convert(status), expected) << status;
    }
}

TEST(Result, ConvertOfALinkStatusLeavesOutTheOpenPortAndTheSlib) {
    for (const int status : {2, 0x31, 0x32, 0x33, 0x34, 0x35, 0x41})
        EXPECT_EQ(CResult::Convert(status), 0x0F000000) << status;
}

TEST(Result, ConvertOfALinkStatusLetsACodeThrough) {
    for (const int code : {-1, 0x1F000000, 0x0F001002, 0x0F001035, 0x0F000000, 0x7FFFFFFF})
        EXPECT_EQ(CResult::Convert(code), code);
}

TEST(Result, AByteOfTheLinkLibraryTakesTheSignedForm) {
    const unsigned char status = 5;
    EXPECT_EQ(CResult::Convert(status), CResult::COM_READ_FAIL);
}

struct FileStatus {
    unsigned int status;
    int code;
};

const FileStatus fileStatuses[] = {
    {0x12340000, 0}, {2, 0x0F008002},  {3, 0x0F008003},  {4, 0x0F008004},  {5, 0x0F008005},  {6, 0x0F008006},
    {8, 0x0F008008}, {10, 0x0F00800A}, {13, 0x0F00800D}, {14, 0x0F00800E}, {15, 0x0F00800F},
};

TEST(Result, ConvertOfAFileStatusHasATableAndNothingElse) {
    for (const FileStatus &row : fileStatuses)
        EXPECT_EQ(CResult::Convert(row.status), row.code) << row.status;
    for (const unsigned int status : {0u, 1u, 7u, 9u, 11u, 12u, 16u, 0x12340001u, 0x12345008u})
        EXPECT_EQ(CResult::Convert(status), 0x0F000000) << status;
}

TEST(Result, ConvertOfAFileStatusLetsNoCodeThrough) {
    EXPECT_EQ(CResult::Convert(0x0F008002u), 0x0F000000);
    EXPECT_EQ(CResult::Convert(0xFFFFFFFFu), 0x0F000000);
}

} // namespace
