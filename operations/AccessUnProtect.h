#pragma once

#include "operations/COperation.h"

// Removes flash access protection, which erases the flash. Done means that the chip, restarted, says so.
class CAccessUnProtect : public COperation {
public:
    explicit CAccessUnProtect(CBootLoader *obBootLoader);

    // SYS_ACCESS_PROTECTION when the chip took the command and is protected all the same.
    int Action() override;
};
