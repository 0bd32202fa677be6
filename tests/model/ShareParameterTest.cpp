#include "foundation/ShareParameter.h"

#include <stdexcept>

#include <gtest/gtest.h>

namespace {

std::vector<std::string> texts(const QStringList &list) {
    std::vector<std::string> result;
    for (const QString &text : list)
        result.push_back(text.toStdString());
    return result;
}

TEST(ShareParameter, TheProcessWideRecordStartsAsZeroAndEmpty) {
    EXPECT_EQ(g_shareParameter.c_portNumber, 0);
    EXPECT_EQ(g_shareParameter.str_portName, "");
    EXPECT_EQ(g_shareParameter.c_address, 0u);
    EXPECT_EQ(g_shareParameter.c_size, 0u);
    EXPECT_FALSE(g_shareParameter.c_Verify);
    EXPECT_FALSE(g_shareParameter.c_optimize);
    EXPECT_EQ(g_shareParameter.c_obCCom, nullptr);
    EXPECT_EQ(g_shareParameter.c_SPIMType, 0);
    EXPECT_EQ(g_shareParameter.OTP_Lock_Length, 0);
    EXPECT_EQ(g_shareParameter.m_InterfaceType, 0);
}

TEST(ShareParameter, StringToInt32ReadsWhatStandsAtTheStart) {
    ShareParameter share;
    EXPECT_EQ(share.StringToInt32("zz", 16), 0);
    EXPECT_EQ(share.StringToInt32("", 10), 0);
    EXPECT_EQ(share.StringToInt32("12x", 10), 12);
    EXPECT_EQ(share.StringToInt32("-1", 10), -1);
    EXPECT_EQ(share.StringToInt32("0x1F", 0), 31);
    EXPECT_EQ(share.StringToInt32("1F", 0), 1);
    EXPECT_EQ(share.StringToInt32("FFFFFFFF", 16), -1);
    EXPECT_EQ(share.StringToInt32("100000002", 16), 2);
}

TEST(ShareParameter, StringToUInt32IsTheSameCutUnsigned) {
    ShareParameter share;
    EXPECT_EQ(share.StringToUInt32("FFFFFFFF", 16), 0xFFFFFFFFu);
    EXPECT_EQ(share.StringToUInt32("1FFFFFFFE", 16), 0xFFFFFFFEu);
    EXPECT_EQ(share.StringToUInt32("0x8000000", 0), 0x8000000u);
    EXPECT_EQ(share.StringToUInt32("-1", 10), 0xFFFFFFFFu);
    // One parse for both, a signed one: a number beyond it gives its greatest value.
    EXPECT_EQ(share.StringToUInt32("8000000000000000", 16), 0xFFFFFFFFu);
}

TEST(ShareParameter, IntParseIsDecimal) {
    ShareParameter share;
    EXPECT_EQ(share.IntParse("115200"), 115200);
    EXPECT_EQ(share.IntParse(" 7x"), 7);
    EXPECT_EQ(share.IntParse("0x10"), 0);
    EXPECT_EQ(share.IntParse(""), 0);
}

struct ParityRow {
    const char *text;
    int number;
};

TEST(ShareParameter, ParityToIntGoesByExactCase) {
    ShareParameter share;
    const ParityRow rows[] = {{"NONE", 0}, {"ODD", 1}, {"EVEN", 2}, {"even", 2}, {"odd", 2}, {"none", 2}, {"", 2}};
    for (const ParityRow &row : rows)
        EXPECT_EQ(share.ParityToInt(row.text), row.number) << row.text;
}

TEST(ShareParameter, ToUpperAndToLowerGoByteByByte) {
    EXPECT_EQ(ShareParameter::ToUpper("aZ-9\xC3\xA4"), "AZ-9\xC3\xA4");
    EXPECT_EQ(ShareParameter::ToLower("aZ-9\xC3\x84"), "az-9\xC3\x84");
}

struct PathRow {
    const char *path;
    int maxLen;
    const char *shortened;
};

const PathRow pathRows[] = {
    {"/a/b.hex", 9, "/a/b.hex"},                       // shorter
    {"/a/b.hex", 8, "/a/b.hex"},                       // exactly as long
    {"/abcd/b.hex", 10, "/../b.hex"},                  // one directory
    {"/one/two/three/f.bin", 19, "/one/two/../f.bin"}, // from the right
    {"/one/two/three/f.bin", 16, "/one/../../f.bin"},
    {"/one/two/three/f.bin", 15, "/../../../f.bin"},
    {"abcd/longname.bin", 15, "abcd/...bin"}, // the name itself keeps the excess and two
};

TEST(ShareParameter, FilePathLengthProcessTurnsDirectoriesIntoDots) {
    ShareParameter share;
    for (const PathRow &row : pathRows)
        EXPECT_EQ(share.FilePathLengthProcess(row.path, row.maxLen), row.shortened) << row.path << " " << row.maxLen;
}

TEST(ShareParameter, FilePathLengthProcessRefusesAnEmptyPath) {
    EXPECT_THROW(ShareParameter().FilePathLengthProcess("", 10), std::logic_error);
}

TEST(ShareParameter, FilePathLengthProcessRunsOutOfDirectories) {
    EXPECT_THROW(ShareParameter().FilePathLengthProcess("/a/b", 1), std::out_of_range);
    EXPECT_THROW(ShareParameter().FilePathLengthProcess("name.bin", 3), std::out_of_range);
    EXPECT_THROW(ShareParameter().FilePathLengthProcess("/a/b", -2147483647 - 1), std::out_of_range);
}

TEST(ShareParameter, SplitLengthCutsIntoPieces) {
    ShareParameter share;
    using Pieces = std::vector<std::string>;
    EXPECT_EQ(texts(share.SplitLength("abcde", 2)), (Pieces{"ab", "cd", "e"}));
    EXPECT_EQ(texts(share.SplitLength("abcd", 2)), (Pieces{"ab", "cd"}));
    EXPECT_EQ(texts(share.SplitLength(" \tab c\n", 3)), (Pieces{"ab ", "c"}));
    EXPECT_EQ(texts(share.SplitLength("ab", 2147483647)), Pieces{"ab"});
    EXPECT_EQ(texts(share.SplitLength("", 2)), Pieces{});
    EXPECT_EQ(texts(share.SplitLength("  \n", 2)), Pieces{});
    EXPECT_EQ(texts(share.SplitLength("ab", 0)), Pieces{});
    EXPECT_EQ(texts(share.SplitLength("ab", -1)), Pieces{});
}

TEST(ShareParameter, WhatDoesNothingDoesNothing) {
    ShareParameter share;
    char bytes[] = "\x01\x02\x03\x04";
    EXPECT_FALSE(share.IsHexadecimal("1F"));
    EXPECT_FALSE(share.IsLettersAndNumbers("a1"));
    EXPECT_FALSE(share.IsNumbers("12"));
    EXPECT_FALSE(share.StrIsLettersOrNumbers("a1"));
    EXPECT_FALSE(share.MultiFileDownloadAddrClashCheck({}, {SFileInfo(), SFileInfo()}, "x", 0));
    EXPECT_EQ(share.FileHeadStructToBytes({}), 0);
    EXPECT_EQ(share.BytesToFileHeadStuct(bytes).file_version, 0u);
}

struct Family {
    MCUSERIALS family;
    int number;
};

const Family familyNumbers[] = {
    {ZV32ErrorMCU2, 0}, {ZV32F403_1, 1}, {ZV32F403_2, 2}, {ZV32F413, 4},        {ZV32F415, 5},  {ZV32F403A, 7},
    {ZV32F407, 8},      {ZV32F421, 9},   {ZV32F435, 13},  {ZV32F437, 14},       {ZV32F425, 15}, {ZV32L021, 16},
    {ZV32WB415, 17},    {ZV32F423, 18},  {ZV32F405, 19},  {ZV32F402, 20},       {ZV32F455, 21}, {ZV32F456, 22},
    {ZV32F457, 23},     {ZV32A403A, 24}, {ZV32M412, 25},  {ZV32M416, 26},       {ZV32G412, 28}, {ZV32A423, 29},
    {ZV32F490, 30},     {ZV32F422, 31},  {ZV32F426, 32},  {ZV32ErrorMCU1, 255},
};

TEST(ShareParameter, FamiliesHaveTheirNumbers) {
    for (const Family &row : familyNumbers)
        EXPECT_EQ(row.family, row.number);
    EXPECT_EQ(sizeof(MCUSERIALS), 4u);
}

TEST(ShareParameter, ExitStatusesAreOneByteEach) {
    const std::vector<int> statuses = {OP_SUCCESS,
                                       OP_BAD_PARAM,
                                       OP_CONNECT_FAILD,
                                       OP_DOWNLOAD_FAILD,
                                       OP_MCU_UPLOAD_FAILD,
                                       OP_SET_USD_FAILD,
                                       OP_GET_USD_FAILD,
                                       OP_ENSPIM_FAILD,
                                       OP_RUN_AT_ADDR_FAILD,
                                       OP_EFAP1_FAILD,
                                       OP_EFAP2_FAILD,
                                       OP_DFAP_FAILD,
                                       OP_DEPP_FAILD,
                                       OP_EEPP_FAILD,
                                       OP_MCU_ALLERASE_FLASH_FAILD,
                                       OP_MCU_ALLERASE_SPIM_FAILD,
                                       OP_MCU_SECERASE_FAILD,
                                       OTP_FAILED};
    EXPECT_EQ(statuses, (std::vector<int>{0, 1, 2, 3, 4, 6, 7, 8, 12, 32, 33, 34, 35, 36, 48, 49, 51, 64}));
    EXPECT_EQ(sizeof(OP_SUCCESS), 1u);
}

TEST(ShareParameter, ProjectFileHeaderLiesAtItsOffsets) {
    EXPECT_EQ(offsetof(ProjectFileHeader, mcu_Pid), 8u);
    EXPECT_EQ(offsetof(ProjectFileHeader, project_descriptor_name), 76u);
    EXPECT_EQ(offsetof(ProjectFileHeader, code_begin_addr), 144u);
    EXPECT_EQ(offsetof(ProjectFileHeader, code_length), 184u);
    EXPECT_EQ(offsetof(ProjectFileHeader, code_name_length), 224u);
    EXPECT_EQ(offsetof(ProjectFileHeader, code_part_number), 264u);
    EXPECT_EQ(offsetof(ProjectFileHeader, code_part_begin_addr), 304u);
    EXPECT_EQ(offsetof(ProjectFileHeader, code_part_length), 20784u);
    EXPECT_EQ(offsetof(ProjectFileHeader, opt_data_flag), 41264u);
    EXPECT_EQ(offsetof(ProjectFileHeader, opt_data_length), 41272u);
    EXPECT_EQ(offsetof(ProjectFileHeader, reset_and_run_option), 41280u);
    EXPECT_EQ(offsetof(ProjectFileHeader, BaudRate), 41284u);
    EXPECT_EQ(offsetof(ProjectFileHeader, BootOption), 41292u);
    EXPECT_EQ(offsetof(ProjectFileHeader, spim_remap), 41361u);
    EXPECT_EQ(offsetof(ProjectFileHeader, spim_size), 41368u);
    EXPECT_EQ(offsetof(ProjectFileHeader, slib_disable_password), 41376u);
    EXPECT_EQ(offsetof(ProjectFileHeader, slib_enable_password), 41384u);
    EXPECT_EQ(offsetof(ProjectFileHeader, slib_endsector), 41392u);
    EXPECT_EQ(offsetof(ProjectFileHeader, extend_bytes), 41394u);
    EXPECT_EQ(sizeof(ProjectFileHeader), 42420u);
}

TEST(ShareParameter, AddressesAndLengthsAreThoseOfTheFamily) {
    EXPECT_EQ(ISP_TOOL_VERSION, 0x20001u);
    EXPECT_EQ(ZVCHIP_FLASH_BASE_ADDRESS, 0x08000000u);
    EXPECT_EQ(ZVCHIP_FLASH_MAX_SIZE, 0x100000u);
    EXPECT_EQ(ZVCHIP_SPIM_BASE_ADDRESS, 0x08400000u);
    EXPECT_EQ(ZVCHIP_SPIM_MAX_SIZE, 0x1000000u);
    EXPECT_EQ(USERSYSTEMDATA_LENGTH_403, 48);
    EXPECT_EQ(USERSYSTEMDATA_LENGTH_413, 48);
    EXPECT_EQ(USERSYSTEMDATA_LENGTH_415, 32);
    EXPECT_EQ(PROJECTFILE_HEADER_VALID_LENGTH + PROJECTFILE_HEADER_EXTEND_LENGTH, PROJECTFILE_HEADER_LENGTH);
    EXPECT_EQ(PROJECTFILE_HEADER_LENGTH, 42402);
    EXPECT_EQ(PROJECTFILE_HEADER_EXTEND_LENGTH, 1024);
    EXPECT_EQ(PROJECTFILE_MAX_FILE_NUM, 10);
    EXPECT_EQ(PROJECTFILE_ONECODE_MAX_SIZE, 32);
    EXPECT_EQ(PROJECTFILE_NAME_MAX_SIZE, 64);
    EXPECT_EQ(PROJECTFILE_SPIMNAME_MAX_SIZE, 64);
    EXPECT_EQ(PROJECTFILE_OPT_DATA_LENGTH, 48);
    EXPECT_EQ(PROJECTFILE_MCU_NAME_LENGTH, 64);
    EXPECT_EQ(PROJECTFILE_KEY_LENGTH, 24);
    EXPECT_EQ(PROJECTFILE_CHECKSUM_LENGTH, 4);
    EXPECT_EQ(sizeof(HEXFILEPARTINFO::pData), 65536u);
    EXPECT_EQ(sizeof(OTP_CONFIG_INFO::pData), 32u);
}

} // namespace
