#include "foundation/Result.h"
#include "link/BootLoader.h"

namespace {
constexpr int bytesPerMegabyteShift = 20;
} // namespace

int CBootLoader::EnableSPIM(EnBank3Param param) {
    if (param.m_bRemapFlag) {
        const int status = ZVBL_SPIMREMAP(m_handle, 1);
        if (status != 0)
            return CResult::Convert(status);
    }
    // MEANT: this status goes back as it is.
    return ZVBL_EnableBank3(m_handle, param.m_bFlashType, param.m_uiFlashSize << bytesPerMegabyteShift,
                            param.m_uiFlashDA);
}
