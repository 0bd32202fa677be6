#pragma once

#include "foundation/LibraryTypes.h"
#include "operations/COperation.h"

// Turns flash access protection on. Done means that the chip, restarted, says so.
class CAccessProtect : public COperation {
public:
    explicit CAccessProtect(CBootLoader *obBootLoader);

    // SYS_CMD_NOT_ALLOWED, and nothing sent, for a level that the chip does not have.
    // PROGRAM_VERIFY_DATA_NOT_MATCHING when the chip took the command and is open all the same.
    int Action() override;
    void SetParameters(void *p) override; // a BYTE, the level

    BYTE m_protectLevel = 0; // 0 and 1: the basic level; 2: the high one, which nothing removes

private:
    int send();
};
