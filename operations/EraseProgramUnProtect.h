#pragma once

#include "operations/COperation.h"

// Removes erase and program protection from the whole flash. Done means that the chip, restarted,
// shows no sector protected.
class CEraseProgramUnProtect : public COperation {
public:
    explicit CEraseProgramUnProtect(CBootLoader *obBootLoader);

    int InitAction() override;
    int Action() override;
};
