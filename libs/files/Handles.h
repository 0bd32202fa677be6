#pragma once

#include <memory>

#include "libs/files/Image.h"

namespace files {

// The images that callers hold by a HANDLE. A handle is a block of one byte from operator new, and
// the images stand in a table by its address: a caller may drop his handle with operator delete, as
// the console does, without telling the library. His image then waits in the table until the address
// becomes another handle or the process ends. Every function may be called from any thread.
namespace handles {

// A new handle for the image.
HANDLE give(std::shared_ptr<Image> image);

// The image of a handle, null for one that was never given out.
std::shared_ptr<Image> find(HANDLE handle);

// Frees image and handle; false for a handle that was never given out.
bool take(HANDLE handle);

} // namespace handles

} // namespace files
