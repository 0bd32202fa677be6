#pragma once

#include <string>

class CDevice;
class CProgramFile;

// Image files as jobs open them. Results are 0 or a CResult code.
namespace images {

// Opens an image, up to ten times a second apart, and refuses one without elements.
int open(CProgramFile &file, const std::string &path, CDevice *device);

// Whether the map cuts an image by the sectors that an erase goes by. A device without a map is asked nothing.
bool areCutAsErased(const CDevice &device);

} // namespace images
