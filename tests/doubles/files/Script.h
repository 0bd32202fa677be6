#pragma once

// The recording double of libFiles.so.1 keeps images in memory and touches no file but its own two:
//
// FILES_DOUBLE_LOG names a file to which every call appends one line, such as
//   FILES_ImageFromFile path=/x/a.hex program=1 -> image=1 12340000
//   FILES_SetImageElement image=1 index=0 insert=1 address=08000000 length=2048 data=A5A5A5A5 -> 12340000
// Addresses, data and the answered status are hexadecimal, everything else is decimal. Images are numbered from 1
// in the order of their making, over again with a new script; 0 is the null handle, and "unknown" one that was
// never given out. Handles are blocks that may be dropped with operator delete, which makes no line. Data shows the
// first four bytes.
//
// FILES_DOUBLE_SCRIPT names a file of what to answer, read at the first call and again whenever the
// variable names another file. A line is empty, a comment (#), or one of
//   FILES_ImageFromFile status=5          every call of that function answers this status (decimal, or 0x..)
//   FILES_GetImageElement status=13 nth=3 only its third call does, counted from 1
//   element address=08000000 length=2048 fill=AA
//                                         what an image from a file holds, one line per element
//   no-elements                           an image from a file holds nothing
//   map sectors=4 size=2048 packet=0      what FILES_GetMemoryMapping answers for every path; also
//                                         start=08000000, spb=2, name=TEXT
// A function that a status line fails does nothing else. A script that is not there or has an unknown line
// ends the process with a line on standard error: a script with a slip proves nothing.
//
// Without a script an image from a file holds one element of 2048 bytes 0xA5 at 0x08000000, the map has
// four sectors of 2048 bytes from 0x08000000 and packet size 0, and every call succeeds.

#include <map>
#include <string>
#include <vector>

#include "device/FilesInc.h"

namespace filesdouble {

struct Element {
    DWORD address;
    std::vector<BYTE> data;
};

struct MapAnswer {
    short sectors = 4;
    DWORD size = 2048;
    DWORD start = 0x08000000;
    short packet = 0;
    BYTE sectorsPerSector = 2;
    std::string name = "double";
};

// The script as it stands now.
const std::vector<Element> &fileElements();
const MapAnswer &mapAnswer();

// Counts a call and gives its status: the scripted one, else the given success.
unsigned int answer(const std::string &function, unsigned int success);

// The number of the next image that is made.
unsigned long nextImage();

// Appends one line to the log.
void log(const std::string &line);

std::string hex(unsigned long value, int digits);

} // namespace filesdouble
