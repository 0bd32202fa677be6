#pragma once

#include <QList>

class CProgramFile;

// Where an opened program image goes, and which sectors it touches there.

// The sector of an address: -1 below flash, 32768 and up from SPIM's base. The sector size in bytes.
int sectorOf(unsigned int address, unsigned int flashSectorSize);

// What is to be added to the addresses of an image: 0 for one that has addresses of its own, and for a binary the way
// to the start address. A CResult code.
int addressOffset(CProgramFile &file, unsigned int startAddress, unsigned int &offset);

// The sectors that a download of the image erases, in the order of its elements, with repeats.
QList<int> touchedSectors(CProgramFile &file, unsigned int startAddress, unsigned int offset,
                          unsigned int flashSectorSize);
