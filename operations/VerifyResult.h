#pragma once

#include "foundation/LibraryTypes.h"
#include "foundation/Result.h"

// The code of a ZVBL_VERIFY status.
inline int verifyResult(BYTE status) {
    constexpr int dataDiffer = 19;
    const int code = status;
    return CResult::Convert(code == dataDiffer ? CResult::PROGRAM_VERIFY_DATA_NOT_MATCHING : code);
}
