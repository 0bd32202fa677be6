#include "app/OtpFile.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "app/Otp.h"

namespace {

class OtpFile : public testing::Test {
protected:
    OtpFile() {
        char pattern[] = "/tmp/otp-test-XXXXXX";
        directory = mkdtemp(pattern);
    }
    ~OtpFile() override { std::filesystem::remove_all(directory); }

    // Reads a file of the given content. How many records it makes.
    int recordsOf(const std::string &content) {
        const std::string path = directory + "/a.zvtp";
        std::ofstream(path, std::ios::binary) << content;
        EXPECT_EQ(OTPProjectFileOpen(path), 1);
        return m_listWriteOTPData.size();
    }

    std::string directory;
};

TEST_F(OtpFile, CountsByFortyAndStepsByThirtyEight) {
    const struct {
        std::size_t bytes;
        int records;
    } table[] = {{0, 0}, {38, 0}, {39, 0}, {40, 1}, {76, 1}, {79, 1}, {80, 2}, {114, 2}, {760, 19}, {800, 20}};
    for (const auto &row : table)
        EXPECT_EQ(recordsOf(std::string(row.bytes, '\0')), row.records) << row.bytes;
}

TEST_F(OtpFile, FieldsOfARecord) {
    std::string block;
    for (char byte = 0; byte < 32; ++byte)
        block += static_cast<char>(0x40 + byte);
    const std::string first = std::string("\x12\x34\x56\x78", 4) + block + "\x01\x02";
    const std::string second = std::string("\x00\x00\x00\xFE", 4) + block + std::string("\x00\xFF", 2);
    ASSERT_EQ(recordsOf(first + second + std::string(4, '\0')), 2);
    EXPECT_EQ(m_listWriteOTPData[0].PartAddress, 0x12345678U);
    EXPECT_EQ(m_listWriteOTPData[0].LockFlag, 1);
    EXPECT_EQ(m_listWriteOTPData[0].WriteFlag, 2);
    EXPECT_EQ(std::string(reinterpret_cast<const char *>(m_listWriteOTPData[0].pData), 32), block);
    EXPECT_EQ(m_listWriteOTPData[1].PartAddress, 0xFEU);
    EXPECT_EQ(m_listWriteOTPData[1].LockFlag, 0);
    EXPECT_EQ(m_listWriteOTPData[1].WriteFlag, 0xFF);
}

TEST_F(OtpFile, IsClosedAgain) {
    const auto open = [] {
        const std::filesystem::directory_iterator all("/proc/self/fd");
        return std::distance(begin(all), end(all));
    };
    const auto before = open();
    recordsOf(std::string(40, '\0'));
    EXPECT_EQ(open(), before);
}

TEST_F(OtpFile, ReadsEachFileAnew) {
    EXPECT_EQ(recordsOf(std::string(120, '\0')), 3);
    EXPECT_EQ(recordsOf(std::string(40, '\0')), 1);
}

TEST_F(OtpFile, WhatIsNoFileHasNoRecords) {
    ASSERT_EQ(recordsOf(std::string(120, '\0')), 3);
    for (const std::string &path : {std::string(), directory + "/none.zvtp", directory, std::string("/dev/zero")}) {
        EXPECT_EQ(OTPProjectFileOpen(path), 1);
        EXPECT_TRUE(m_listWriteOTPData.isEmpty()) << path;
    }
}

TEST_F(OtpFile, FifoIsNotWaitedFor) {
    const std::string path = directory + "/fifo.zvtp";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(OTPProjectFileOpen(path), 1);
    EXPECT_TRUE(m_listWriteOTPData.isEmpty());
}

TEST_F(OtpFile, LargerThanAnyChipIsRefused) {
    ASSERT_EQ(recordsOf(std::string(40, '\0')), 1);
    const std::string path = directory + "/large.zvtp";
    for (const std::uintmax_t size : {(1U << 20) + 1U, 1U << 30}) {
        std::ofstream(path, std::ios::app);
        std::filesystem::resize_file(path, size); // without its blocks
        EXPECT_EQ(OTPProjectFileOpen(path), 0) << size;
        EXPECT_TRUE(m_listWriteOTPData.isEmpty()) << size;
    }
    EXPECT_EQ(recordsOf(std::string(1 << 20, '\0')), 26214);
}

TEST_F(OtpFile, WithoutALinkNothingIsWritten) {
    EXPECT_EQ(WriteOTPData(nullptr), 0);
}

TEST_F(OtpFile, AFileThatCannotBeReadIsRefused) {
    EXPECT_EQ(OTPProjectFileOpen("/proc/self/mem"), 0); // a regular file, and nothing is at its beginning
    EXPECT_TRUE(m_listWriteOTPData.isEmpty());
}

} // namespace
