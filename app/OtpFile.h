#pragma once

#include <string>
#include <vector>

#include <QList>

#include "foundation/ShareParameter.h"

// The configuration file of "-otp": flat records of 38 bytes.

// The records of the file read last.
extern QList<OTP_CONFIG_INFO> m_listWriteOTPData;

// Reads the records of the file. What is missing or no file has none. 1; or 0, with no records, for a file that is
// larger than any chip could use (1 MB) or that breaks off while it is read.
int OTPProjectFileOpen(const std::string &FilePath);

// One write that a file asks for.
struct OtpWrite {
    unsigned int address;
    BYTE *data;
    unsigned int length; // bytes
    bool isLock;
    int record; // its place in the file, from 0
};

// The writes that records ask for, in the order in which they are done: all blocks, then all lock bytes.
std::vector<OtpWrite> otpWrites(QList<OTP_CONFIG_INFO> &records, unsigned int dataAddress, unsigned int lockAddress);
