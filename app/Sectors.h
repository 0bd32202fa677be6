#pragma once

#include <string>

#include <QList>

class CDevice;

// Sectors as the command line counts them.

// A sector range as it stands there, both ends included.
struct SectorRange {
    int begin;
    int end;
};

// Splits "n-m" at its last hyphen; no error is reported.
SectorRange parseSectorRange(const std::string &word);

// Whether the chip has all sectors from beginN to endN.
bool IsSectorsValid(int beginN, int endN, const CDevice *device);

// Appends the numbers of the range "n-m" to the list, in order and with doubles. False, with the list as it was,
// for a range that the chip does not have or that makes the list longer than any chip's.
bool appendSectors(const std::string &word, const CDevice *device, QList<int> &sectors);

// All sectors of the internal flash. Without a chip there are none, and none is valid.
QList<int> GetAllSectors(const CDevice *device);
