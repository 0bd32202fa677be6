// What makes the target leave its bootloader or start it anew.

#include "foundation/Result.h"
#include "link/BootLoader.h"

namespace {

constexpr uint lastWordBeforeFlash = 0x7FFFFFC; // the last word of a flash of size 0
constexpr uint bytesPerKilobyte = 1024;

} // namespace

int CBootLoader::ResetMcu() {
    const int status = ZVBL_ResetMCU(m_handle);
    return status != 0 ? CResult::Convert(status) : Reconnect();
}

int CBootLoader::ResetMcu403B() {
    if (m_ObDevice == nullptr)
        return CResult::UNKNOWN_ERROR;
    const uint flashSize = static_cast<uint>(m_ObDevice->m_IFlashSize);
    const int result = JumpToUserProgram(lastWordBeforeFlash + flashSize * bytesPerKilobyte);
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
