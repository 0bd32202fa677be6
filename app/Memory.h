#pragma once

#include <string>

#include <QList>

#include "app/FileNames.h"

class CBootLoader;
class CCom;

// The options that work on the chip's flash and, where it is enabled, on SPIM.

// "-e": 0, or the exit status of the failure. Each "--all" and "--sec" erases at once.
int Erase(int argc, char **argv, int &arg_index, CCom *&obCCom);

// "-d". erasedFlag: an "-e" has succeeded before, which turns the job's own erase off.
bool Download(int argc, char **argv, int &arg_index, bool erasedFlag, CCom *obCCom);

// "-u".
bool Upload(int argc, char **argv, int &arg_index, CCom *obCCom);

// "-r".
bool RunAtAddress(int argc, char **argv, int &arg_index, CCom *obCCom);

// Whether the image file exists, opens, and fits into flash or SPIM; says so if not. The address, 32 bits, counts
// for binary files only.
bool DownloadFileAndAddressCheck(const std::string &fileName, unsigned int downlaodAddress,
                                 CBootLoader *m_obBootLoader);

// A sector range as it stands on the command line, both ends included.
struct SectorRange {
    int begin;
    int end;
};

// Splits "n-m" at its last hyphen; no error is reported.
SectorRange parseSectorRange(const std::string &word);

// Whether the chip has all sectors from beginN to endN.
bool IsSectorsValid(int beginN, int endN, const CCom *obCCom);

// Appends the numbers of the range "n-m" to the list, in order and with doubles. False, with the list as it was,
// for a range that the chip does not have or that makes the list longer than any chip's.
bool appendSectors(const std::string &word, const CCom *obCCom, QList<int> &sectors);

// All sectors of the internal flash.
QList<int> GetAllSectors(const CCom *obCCom);

// The family of the connected chip, a MCUSERIALS value; 0 without one.
int familyOf(const CCom *obCCom);
