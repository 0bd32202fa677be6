#pragma once

#include <QtGlobal>

#include "foundation/ShareParameter.h"

class CBootLoader;
class CDevice;
struct Family;

// The chip that a job works on, and the sectors of its address space.
namespace target {

constexpr uint flashBase = ZVCHIP_FLASH_BASE_ADDRESS;
constexpr uint spimBase = ZVCHIP_SPIM_BASE_ADDRESS;

// The device in use; null without one.
CDevice *deviceOf(const CBootLoader *control);

// The family of the device in use; that of none without one.
const Family &familyOf(const CBootLoader *control);

// The sector of an address: -1 below flash, 32768 and up from SPIM's base.
int sectorOf(uint address, uint flashSectorSize);

} // namespace target
