#pragma once

#include <string>

#include <QtGlobal>

#include "foundation/LibraryTypes.h"
#include "foundation/ShareParameter.h"

class CBootLoader;
class CDevice;
class CProgramFile;
struct Family;

// Steps that several jobs share. Results are 0 or a CResult code, unless told otherwise.
namespace jobsteps {

constexpr uint flashBase = ZVCHIP_FLASH_BASE_ADDRESS;
constexpr uint spimBase = ZVCHIP_SPIM_BASE_ADDRESS;
constexpr uint spimSectorSize = 4096;
constexpr int firstSpimSector = 32768;

// Reply limit of a command that erases, in milliseconds.
constexpr uint longTimeout = 100000;

// The title of a job that works on a file: "Download------(a.hex)".
std::string titleWithFile(const std::string &title, const std::string &fileName);

// The part of a path behind its last "/"; false if there is none.
bool fileNameOf(const std::string &path, std::string &fileName);

// done of total in percent, truncated; multiplied first. A total of 0 is all done.
int percentOf(uint done, uint total);

// The family of the device in use; that of none without one.
const Family &familyOf(const CBootLoader *control);

// The device in use; null without one.
CDevice *deviceOf(const CBootLoader *control);

// The sector of an address: -1 below flash, 32768 and up from SPIM's base.
int sectorOf(uint address, uint flashSectorSize);

// Whether the sector table of the map agrees with the sizes that an erase goes by: else an image would be
// cut by one size and erased by another. A description without a map is asked nothing.
bool isTrustedMap(const CDevice &device);

// Opens an image, up to ten times a second apart, and refuses one without elements.
int openImage(CProgramFile &file, const std::string &path, CDevice *device);

// What to add to the addresses of an image so that it lands where it should: a binary one at the
// address asked for, the others where they say themselves.
int addressOffsetOf(CProgramFile &file, uint startAddress, uint &offset);

// The code of a ZVBL_VERIFY status.
int verifyResult(BYTE status);

// Whether a number can be the password of an sLib area.
bool isSlibPassword(uint password);

// Sets the link's reply limit back to what the command line asked for; the result is a status byte.
BYTE restoreTimeout(HANDLE link);

} // namespace jobsteps
