#pragma once

#include "files/ImageFile.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor" // of CFiles

// A user system data image: one element, the element form of the option bytes.
class CUserSystemDataFile final : public CFiles {
public:
    // Reads a file and keeps its first element only. The device is not used and may be null.
    int Open(std::string strPath, CDevice *obDevice) override;

    // Makes an image of one element of the device's user system data length at address 0.
    int Create(CDevice *obDevice) override;
};

#pragma GCC diagnostic pop
