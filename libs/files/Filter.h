#pragma once

#include "libs/files/Image.h"
#include "libs/files/Status.h"

namespace files {

// Cuts the elements at sector borders, so that none crosses one; not a byte is dropped. After the
// last sector of the map, and in a hole of it, sectors go on at the size of the one before, up to
// the external flash; below the first sector they go on downwards at its size; external flash has
// 4096-byte sectors wherever the map does not say otherwise. A map without sectors stands for
// 2048-byte ones, the size that most of the family has.
//
// With `optimise`, elements that are 0xFF throughout are then taken out: all of them, or only those
// at the end of a flat image.
Status filterImage(Image &image, const MAPPING &mapping, bool optimise);

} // namespace files
