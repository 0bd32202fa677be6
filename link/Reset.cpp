// What makes the target leave its bootloader or start it anew, and the direct way to the SPIM.

#include "foundation/Result.h"
#include "link/BootLoader.h"

namespace {

constexpr uint LastWordBeforeFlash = 0x7FFFFFC; // the last word of a flash of size 0
constexpr uint BytesPerKilobyte = 1024;
constexpr int BytesPerMegabyteShift = 20;

} // namespace

int CBootLoader::ResetMcu() {
    const int status = ZVBL_ResetMCU(m_handle);
    return status != 0 ? CResult::Convert(status) : Reconnect();
}

int CBootLoader::ResetMcu403B() {
    if (m_ObDevice == nullptr)
        return CResult::UNKNOWN_ERROR;
    const uint flashSize = static_cast<uint>(m_ObDevice->m_IFlashSize);
    const int result = JumpToUserProgram(LastWordBeforeFlash + flashSize * BytesPerKilobyte);
    return result != CResult::SUCCESS ? result : Reconnect();
}

int CBootLoader::JumpToUserProgram(uint addr) {
    bool isProtected = true;
    const int result = GetAccessProtectiosStatus(&isProtected);
    if (result != CResult::SUCCESS)
        return result;
    if (isProtected)
        return CResult::SYS_ACCESS_PROTECTION;
    const int status = ZVBL_GO(m_handle, addr);
    if (status == 0)
        m_bHasJumpToUserProgram = true;
    return CResult::Convert(status);
}

int CBootLoader::EnableSPIM(EnBank3Param param) {
    if (param.m_bRemapFlag) {
        const int status = ZVBL_SPIMREMAP(m_handle, 1);
        if (status != 0)
            return CResult::Convert(status);
    }
    // MEANT: this status goes back as it is.
    return ZVBL_EnableBank3(m_handle, param.m_bFlashType, param.m_uiFlashSize << BytesPerMegabyteShift,
                            param.m_uiFlashDA);
}
