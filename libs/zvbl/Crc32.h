#pragma once

#include "foundation/Crc32.h"

namespace zvbl {

using ::crc32;

} // namespace zvbl
