#pragma once

#include <QtGlobal>

#include "foundation/ShareParameter.h"

class CBootLoader;
class CDevice;
struct Family;

// The chip that a job works on.
namespace target {

constexpr uint flashBase = ZVCHIP_FLASH_BASE_ADDRESS;
constexpr uint spimBase = ZVCHIP_SPIM_BASE_ADDRESS;

// The device in use; null without one.
CDevice *deviceOf(const CBootLoader *control);

// The family of the device in use; that of none without one.
const Family &familyOf(const CBootLoader *control);

} // namespace target
