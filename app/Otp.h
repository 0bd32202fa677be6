#pragma once

#include <string>

#include <QList>

#include "app/FileNames.h"
#include "foundation/ShareParameter.h"

class CCom;

// "-otp": writes the chip's one-time programmable area from a configuration file.

// The records of the file read last.
extern QList<OTP_CONFIG_INFO> m_listWriteOTPData;

// 0, or the exit status. MEANT: 0 also for a refused file name, which is left to main to stumble over.
int DownLoadOTPData(int argc, char **argv, int &arg_index, CCom *obCCom);

// Sets the OTP area and lock addresses and lengths for the family of the connected chip; 0 where it has none.
void InitOTPAndLOCKInfo();

// Reads the records of the file; a file that cannot be read has none. Always 1.
int OTPProjectFileOpen(const std::string &FilePath);

// Writes all blocks and then all lock bytes that the records ask for. 1, or 0 at the first failure, which it
// reports.
int WriteOTPData(CCom *obCCom);
