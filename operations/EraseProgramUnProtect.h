#pragma once

#include "operations/COperation.h"

// Removes erase and program protection from the whole flash. Done means that the chip, restarted,
// shows no sector protected.
class CEraseProgramUnProtect : public COperation {
public:
    explicit CEraseProgramUnProtect(CBootLoader *obBootLoader);

    // SYS_ERASEPROGRAM_PROTECTION when the chip took the command and a sector is protected all the same.
    int Action() override;
};
