#pragma once

#include "link/EnBank3Param.h"
#include "operations/COperation.h"

// Enables Bank 3, the external SPI flash.
class CEnBank3 : public COperation {
public:
    explicit CEnBank3(CBootLoader *obBootLoader);

    int InitAction() override;
    int Action() override;
    void SetParameters(void *p) override; // an EnBank3Param, its size in KB

    EnBank3Param m_Parameters;

private:
    uint flashAddress();
};
