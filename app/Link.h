#pragma once

#include "device/Device.h"
#include "device/Families.h"

class CCom;
class CDevice;

// The link of the process, and what the options ask of a link.

// Null until a connection command has built one; a later one replaces it. It lasts to the end of the process.
extern CCom *m_obCCom;

// Closes the link if there is one and it is open.
void closeLink(CCom *obCCom);

// Whether there is a link with its bootloader control.
bool hasBootLoader(const CCom *obCCom);

// The connected chip, null without one.
const CDevice *deviceOf(const CCom *obCCom);

// Its family; that of none without one.
const Family &familyOf(const CCom *obCCom);
