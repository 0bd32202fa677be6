#include "operations/SlibArea.h"

#include "foundation/Result.h"
#include "link/BootLoader.h"
#include "link/ZVBLLIB.h"

int readSlibArea(const CBootLoader &control, SlibArea &area) {
    BYTE enabled = 0;
    const int status = ZVBL_GetSlibStatus_Ex(control.m_handle, &enabled, &area.start, &area.startData, &area.end);
    area.isEnabled = enabled == 1;
    return CResult::Convert(status);
}

bool isSlibPassword(uint password) {
    return password != 0 && password != 0xFFFFFFFF;
}
