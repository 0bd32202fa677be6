#pragma once

#include <string>

#include <QList>

#include "app/SubOptions.h"
#include "foundation/LibraryTypes.h"

class CDevice;

// What the words of an option ask for, before anything is done. Where a reading gives false, the walk rests on the word
// that is refused, or behind the end of the line.

// "-d", into the shared record: what an earlier "-d" has set stays.
bool readDownload(SubOptionWalk &walk);

struct UploadRequest {
    QList<int> sectors; // none: all
    std::string fileName;
};
// "-u".
bool readUpload(SubOptionWalk &walk, const CDevice *device, UploadRequest &request);

// "-r"; without a word the start of the flash, not the address of "-d".
bool readRun(SubOptionWalk &walk, unsigned int &address);

// "-enspim", into the shared record. Throws std::logic_error at the end of the line, its own or that of the scan.
bool readSpim(SubOptionWalk &walk, bool isUsart);

// What the chip is told for a flash type of the command line: 0x91 for 1, 0x90 for every other.
BYTE spimTypeByte(BYTE type);

// What stands after "--get" or "--set": it has to be "--fn", with the path after it.
enum class Named { nothing, refused, file };
Named readTransfer(SubOptionWalk &walk, bool keepsName, std::string &fileName);

// "--fn" of "-otp", into the shared record; true at every other word.
bool readOtpFile(SubOptionWalk &walk);

// The "--y" of "--efap2"; a family that asks for none takes no word.
bool readConfirmation(SubOptionWalk &walk, const CDevice *device);

// Why an image that starts at the address and ends before the other one lies neither in flash nor in SPIM; null if it
// does. There is no lower bound.
const char *misfitOf(unsigned long long start, unsigned long long end, const CDevice &device);

// Scans the whole command line for the user system data file of an "-usd" and stores it in c_strFilePath.
// 1 if it found one, else 0. Throws std::logic_error when it runs into the end of the line.
int GetUserSystemDataFile(int argc, char **argv);
