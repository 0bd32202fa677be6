#include "link/BootOption.h"

#include <QThread>

#include "link/CCom.h"
#include "link/ZVBLLIB.h"

namespace {

struct AutoConnectRow {
    BootOptionLine reset;
    BootOptionLine bootSelection;
    BootOptionState resetState;
    BootOptionState bootSelectionState;
};

// How a board is wired: which line resets the chip, which one selects the bootloader, and the state in which
// each does so. Row 0 moves no line and only waits.
// clang-format off
constexpr AutoConnectRow autoConnectTable[] = {
    {BOOTOPTION_NONE, BOOTOPTION_NONE, LOW, HIGH},
    {BOOTOPTION_DTR, BOOTOPTION_NONE, LOW, HIGH},
    {BOOTOPTION_DTR, BOOTOPTION_RTS, LOW, LOW},
    {BOOTOPTION_DTR, BOOTOPTION_RTS, LOW, HIGH},
    {BOOTOPTION_DTR, BOOTOPTION_NONE, HIGH, HIGH},
    {BOOTOPTION_DTR, BOOTOPTION_RTS, HIGH, LOW},
    {BOOTOPTION_DTR, BOOTOPTION_RTS, HIGH, HIGH},
    {BOOTOPTION_RTS, BOOTOPTION_NONE, LOW, HIGH},
    {BOOTOPTION_RTS, BOOTOPTION_DTR, LOW, LOW},
    {BOOTOPTION_RTS, BOOTOPTION_DTR, LOW, HIGH},
    {BOOTOPTION_RTS, BOOTOPTION_NONE, HIGH, HIGH},
    {BOOTOPTION_RTS, BOOTOPTION_DTR, HIGH, LOW},
    {BOOTOPTION_RTS, BOOTOPTION_DTR, HIGH, HIGH},
};
// clang-format on
constexpr unsigned int autoConnectRows = sizeof autoConnectTable / sizeof *autoConnectTable;

BootOptionState opposite(BootOptionState state) {
    return state == HIGH ? LOW : HIGH;
}

} // namespace

void CCom::SetBootSwitch(BootSwitch emBootSwitch) {
    if (m_InterfaceType == INTERFACE_USART)
        m_emBootSwitch = emBootSwitch;
}

BootSwitch CCom::GetBootSwitch() const {
    return m_emBootSwitch;
}

void CCom::SetBootOptionIndex(int index) {
    m_AutoSwitchIndex = index;
}

bool CCom::SetBootOption() {
    if (m_InterfaceType != INTERFACE_USART)
        return true;
    const auto index = static_cast<unsigned int>(m_AutoSwitchIndex);
    if (m_emBootSwitch != AUTOMATIC || index >= autoConnectRows)
        return false;
    const AutoConnectRow &row = autoConnectTable[index];
    return SetBootOption(row.reset, row.bootSelection, row.resetState, row.bootSelectionState);
}

bool CCom::SetBootOption(BootOptionLine Reset, BootOptionLine BL, BootOptionState ResetState, BootOptionState BLState) {
    if (m_InterfaceType != INTERFACE_USART)
        return true;
    if (Reset == BOOTOPTION_NONE && BL != BOOTOPTION_NONE)
        return false;
    driveLine(Reset, ResetState);
    QThread::msleep(100);
    driveLine(BL, BLState);
    QThread::msleep(100);
    driveLine(Reset, opposite(ResetState));
    QThread::msleep(200);
    driveLine(BL, opposite(BLState));
    QThread::msleep(200);
    return true;
}

void CCom::driveLine(BootOptionLine line, BootOptionState state) {
    const BYTE level = state == HIGH ? 1 : 0;
    if (line == BOOTOPTION_DTR)
        ZVBL_SetDtr(m_handle, level);
    else if (line == BOOTOPTION_RTS)
        ZVBL_SetRts(m_handle, level);
}
