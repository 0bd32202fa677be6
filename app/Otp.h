#pragma once

class CCom;

// "-otp": writes the chip's one-time programmable area from a configuration file.

// 0, or the exit status. MEANT: 0 also for a refused file name, which is left to main to stumble over.
int DownLoadOTPData(int argc, char **argv, int &arg_index, CCom *obCCom);

// Sets the OTP area and lock addresses and lengths for the family of the connected chip; 0 where it has none.
void InitOTPAndLOCKInfo();

// Writes all blocks and then all lock bytes that the records of the file read last ask for. 1, or 0 at the first
// failure, which it reports.
int WriteOTPData(CCom *obCCom);
