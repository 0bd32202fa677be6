#pragma once

#include "foundation/Result.h"

// Whether the chip answered and said no. A chip under access protection does so to every reading; a chip
// that does not answer may be anything.
inline bool isRefusal(int result) {
    return result == CResult::SYS_CMD_NOT_ALLOWED || result == CResult::SYS_CMD_FAIL;
}
