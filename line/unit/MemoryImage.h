#pragma once

#include <memory>

#include "files/CFiles.h"
#include "line/channel/Channel.h"

class CDevice;

// An image for the jobs, out of [{"at":ADDRESS,"length":NUMBER}...] and an open file that holds all these bytes from
// imagePlace on; cut at the borders of sectors, so that whole ones are compared by their checksums. Throws
// std::exception for what is no such list, and for a file that does not hold so many bytes.
std::unique_ptr<CProgramFile> imageInMemory(const Json &runs, int bytes, const CDevice &device);
