#pragma once

#include "foundation/LibraryTypes.h"
#include "foundation/Result.h"

// The first option byte: access protection is off at this value, and on at every other.
constexpr BYTE accessProtectionOff = 0xA5;

// Whether the chip answered and said no. A chip under access protection does so to every reading; a chip
// that does not answer may be anything.
inline bool isRefusal(int result) {
    return result == CResult::SYS_CMD_NOT_ALLOWED || result == CResult::SYS_CMD_FAIL;
}
