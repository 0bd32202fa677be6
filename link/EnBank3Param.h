#pragma once

#include <QtGlobal>

#include "foundation/LibraryTypes.h"

// How the SPIM is to be enabled, for the job and for the direct call of the bootloader control alike.
struct EnBank3Param {
    bool m_bRemapFlag = false; // remap value
    bool m_bNeedRemap = false; // send the remap request first
    BYTE m_bFlashType = 0;     // SPIM flash type
    quint32 m_uiFlashSize = 0; // KiB for the job, MiB for the direct call
    quint32 m_uiFlashDA = 0;   // FLASH_DA: start of the encrypted range
};
typedef EnBank3Param ENBANK3_PARAM;
