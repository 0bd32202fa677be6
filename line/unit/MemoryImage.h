#pragma once

#include <memory>

#include "files/CFiles.h"
#include "line/channel/Channel.h"

class CDevice;

// An image for the jobs that was never a file, out of [{"at":ADDRESS,"bytes":HEX}...]; cut at the borders of sectors,
// so that whole ones are compared by their checksums. Throws std::exception for what is no such list.
std::unique_ptr<CProgramFile> imageInMemory(const Json &runs, const CDevice &device);
