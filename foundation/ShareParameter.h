#pragma once

#include <cstddef>
#include <string>

#include <QList>
#include <QStringList>

#include "foundation/LibraryTypes.h"
#include "foundation/McuSerials.h"

class CCom;

constexpr unsigned int ISP_TOOL_VERSION = 0x20001;

// Target address space and its bounds, in bytes.
constexpr unsigned int ZVCHIP_FLASH_BASE_ADDRESS = 0x8000000;
constexpr unsigned int ZVCHIP_FLASH_MAX_SIZE = 0x100000;
constexpr unsigned int ZVCHIP_SPIM_BASE_ADDRESS = 0x8400000;
constexpr unsigned int ZVCHIP_SPIM_MAX_SIZE = 0x1000000;

// User system data in the element form: bytes of value and complement pairs.
constexpr int USERSYSTEMDATA_LENGTH_403 = 48;
constexpr int USERSYSTEMDATA_LENGTH_413 = 48;
constexpr int USERSYSTEMDATA_LENGTH_415 = 32;

// Project files.
constexpr int PROJECTFILE_MAX_FILE_NUM = 10;
constexpr int PROJECTFILE_ONECODE_MAX_SIZE = 32;
constexpr int PROJECTFILE_NAME_MAX_SIZE = 64;
constexpr int PROJECTFILE_SPIMNAME_MAX_SIZE = 64;
constexpr int PROJECTFILE_OPT_DATA_LENGTH = 48;
constexpr int PROJECTFILE_MCU_NAME_LENGTH = 64;
constexpr int PROJECTFILE_HEADER_EXTEND_LENGTH = 1024;
constexpr int PROJECTFILE_HEADER_VALID_LENGTH = 41378;
constexpr int PROJECTFILE_HEADER_LENGTH = 42402;
constexpr int PROJECTFILE_KEY_LENGTH = 24;
constexpr int PROJECTFILE_CHECKSUM_LENGTH = 4;

// Exit statuses of the process.
constexpr BYTE OP_SUCCESS = 0;
constexpr BYTE OP_BAD_PARAM = 1;
constexpr BYTE OP_CONNECT_FAILD = 2;
constexpr BYTE OP_DOWNLOAD_FAILD = 3;
constexpr BYTE OP_MCU_UPLOAD_FAILD = 4;
constexpr BYTE OP_SET_USD_FAILD = 6;
constexpr BYTE OP_GET_USD_FAILD = 7;
constexpr BYTE OP_ENSPIM_FAILD = 8;
constexpr BYTE OP_RUN_AT_ADDR_FAILD = 0xC;
constexpr BYTE OP_EFAP1_FAILD = 0x20;
constexpr BYTE OP_EFAP2_FAILD = 0x21;
constexpr BYTE OP_DFAP_FAILD = 0x22;
constexpr BYTE OP_DEPP_FAILD = 0x23;
constexpr BYTE OP_EEPP_FAILD = 0x24;
constexpr BYTE OP_MCU_ALLERASE_FLASH_FAILD = 0x30;
constexpr BYTE OP_MCU_ALLERASE_SPIM_FAILD = 0x31;
constexpr BYTE OP_MCU_SECERASE_FAILD = 0x33;
constexpr BYTE OTP_FAILED = 0x40;

// One contiguous part of a project file's code image.
struct HEXFILEPARTINFO {
    unsigned int PartStartAddress = 0; // first address
    unsigned int PartEndAddress = 0;   // last address
    unsigned int PartSize = 0;         // bytes in use
    unsigned int PartChecksum = 0;
    BYTE pData[65536] = {};
};

// One file of a project download. A copy duplicates the parts.
struct SFileInfo {
    std::string FilePath;
    std::string LoadFileType;
    int Filechecksum = 0;
    unsigned int StartAddress = 0;
    int FileSize = 0; // bytes
    int FileInMemoPos = 0;
    QList<HEXFILEPARTINFO> partInfo;
};

// One OTP record.
struct OTP_CONFIG_INFO {
    unsigned int PartAddress = 0; // offset in the OTP data area
    BYTE pData[32] = {};
    BYTE WriteFlag = 0;
    BYTE LockFlag = 0;
};

// The header of a project file, every field at its natural alignment.
struct ProjectFileHeader {
    unsigned int file_version;
    BYTE mcu_serial; // a MCUSERIALS value
    unsigned int mcu_Pid;
    BYTE mcu_target_name[PROJECTFILE_MCU_NAME_LENGTH];
    BYTE project_descriptor_name[PROJECTFILE_NAME_MAX_SIZE];
    unsigned int code_number;
    unsigned int code_begin_addr[PROJECTFILE_MAX_FILE_NUM];
    int code_length[PROJECTFILE_MAX_FILE_NUM];
    int code_name_length[PROJECTFILE_MAX_FILE_NUM];
    int code_part_number[PROJECTFILE_MAX_FILE_NUM];
    unsigned int code_part_begin_addr[PROJECTFILE_MAX_FILE_NUM][512];
    int code_part_length[PROJECTFILE_MAX_FILE_NUM][512];
    BYTE opt_data_flag;
    int opt_name_length;
    int opt_data_length;
    BYTE erase_option;
    BYTE verify_option;
    BYTE FAP_Disable;
    BYTE FAP_Enable;
    BYTE reset_and_run_option;
    int BaudRate;
    int BootSwitch;
    int BootOption;
    BYTE spim_flag;
    BYTE spim_descriptor_name[PROJECTFILE_SPIMNAME_MAX_SIZE];
    BYTE spim_remap;
    unsigned int spim_da;
    unsigned int spim_size;
    BYTE slib_disable_flag;
    unsigned int slib_disable_password;
    BYTE slib_enable_flag;
    unsigned int slib_enable_password;
    unsigned short slib_startsector;
    unsigned short slib_startdatasector;
    unsigned short slib_endsector;
    BYTE extend_bytes[PROJECTFILE_HEADER_EXTEND_LENGTH];
};

static_assert(sizeof(ProjectFileHeader) == 42420, "project file header");
static_assert(offsetof(ProjectFileHeader, code_part_length) == 20784, "project file header");
static_assert(offsetof(ProjectFileHeader, spim_descriptor_name) == 41297, "project file header");
static_assert(offsetof(ProjectFileHeader, extend_bytes) == 41394, "project file header");

// The options of the running process. The front end fills the record while it walks the command line;
// the link and the jobs read it. Plain members: who shares the operation flags between threads guards them.
class ShareParameter {
public:
    int c_portNumber = 0;
    std::string str_portName; // such as a tty name
    int c_BaudRate = 0;
    int c_DataBits = 0;
    int c_parity = 0;  // 0 none, 1 odd, 2 even
    int c_timeout = 0; // seconds
    bool c_autoConnectFlag = false;
    int c_autoConnectOption = 0;
    unsigned int addr = 0;        // I2C address
    unsigned int rate = 0;        // I2C rate
    unsigned int dc = 0;          // I2C duty cycle selector
    unsigned int uiCANSpeed = 0;  // CAN speed
    unsigned long ulSPISpeed = 0; // SPI speed
    unsigned int c_address = 0;   // for download or run
    unsigned int c_size = 0;
    std::string c_filename;
    bool c_Verify = false;
    bool c_optimize = false;
    std::string c_otpfilename;
    bool c_haveSPIM = false;
    unsigned int c_SPIMSize = 0;
    bool c_bNeedRemap = false;
    bool c_bRemapFlag = false;
    BYTE c_SPIMType = 0;
    unsigned int c_SPIMDA = 0;
    unsigned int OTP_Data_Address = 0;
    int OTP_Data_Length = 0; // bytes
    unsigned int OTP_Lock_Address = 0;
    int OTP_Lock_Length = 0;             // bytes
    CCom *c_obCCom = nullptr;            // not owned
    bool c_OperationFlag = false;        // a job is running
    bool c_OperationSucceedFlag = false; // the job that just ended succeeded
    int c_operationPersent = 0;          // last percentage printed
    std::string c_strFilePath;
    char m_InterfaceType = 0; // 0 USART, 1 USB DFU, 2 I2C, 3 CAN and SPI

    // Everything zero or empty.
    ShareParameter();

    // The number at the start of the text in the given base (0 takes a prefix), cut to 32 bits. A text
    // without digits gives 0.
    int StringToInt32(std::string value, int fromBase);
    unsigned StringToUInt32(std::string value, int fromBase);

    // The decimal number at the start of the text, 0 without one.
    int IntParse(std::string value);

    // Shortens a path for display by turning directories into "..", the last one first. Throws
    // std::logic_error on an empty path and std::out_of_range when nothing is left to shorten.
    std::string FilePathLengthProcess(std::string filePath, int maxLen);

    // Cuts the trimmed text into pieces of the given number of characters; the last may be shorter.
    QStringList SplitLength(std::string sourceString, int length);

    // "NONE" 0, "ODD" 1, "EVEN" and everything else 2, by exact case.
    int ParityToInt(std::string parity);

    // Byte by byte.
    static std::string ToUpper(std::string str);
    static std::string ToLower(std::string str);

    // MEANT: these do nothing in this tool: false, 0, and a zeroed record.
    bool IsHexadecimal(std::string str);
    bool IsLettersAndNumbers(std::string str);
    bool IsNumbers(std::string str);
    bool StrIsLettersOrNumbers(std::string value);
    bool MultiFileDownloadAddrClashCheck(SFileInfo newFileInfo, QList<SFileInfo> listFileInfo, std::string fileName,
                                         int currentIndex);
    BYTE FileHeadStructToBytes(ProjectFileHeader structObj);
    ProjectFileHeader BytesToFileHeadStuct(char *configValue);
};

extern ShareParameter g_shareParameter;
