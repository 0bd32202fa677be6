#pragma once

#include "operations/COperation.h"

// Disables the sLib area, which erases its sectors. Done means that the chip, restarted, shows none.
class CDisableSlib : public COperation {
public:
    explicit CDisableSlib(CBootLoader *obBootLoader);

    // SLIB_DISABLE_PASSWORD_ERROR, and nothing changed, for a password that cannot be or is not the one.
    // SLIB_HASBEEN_ENABLE_ERROR when the chip took the command and shows the area all the same.
    int Action() override;
    void SetParameters(void *p) override; // a uint, the password

    uint m_uiPassword = 0;

private:
    int readEnabled(bool &enabled);
    int disable();
};
