#pragma once

#include "operations/COperation.h"

// Removes flash access protection, which erases the flash. Done means that the chip, restarted, says so.
class CAccessUnProtect : public COperation {
public:
    explicit CAccessUnProtect(CBootLoader *obBootLoader);

    int InitAction() override;
    int Action() override;
};
