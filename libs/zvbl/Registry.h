#pragma once

#include <cstdint>
#include <memory>

#include "foundation/LibraryTypes.h"
#include "libs/zvbl/Session.h"

namespace zvbl {

// The links of this process by their handles. The interface has no call that ends a link, so they live
// as long as the process, and a word that is none of them is told from one that is.
HANDLE addLink(std::shared_ptr<Session> link);
std::shared_ptr<Session> findLink(HANDLE handle); // null: there is no such link

// On USB DFU the handle of a link is a device's number in the last device list, 0 being the null pointer.
// This makes the links of the first `count` numbers, if they are not there yet.
void addDeviceLinks(std::size_t count);
bool isDeviceNumber(HANDLE handle); // while the process-wide link type is USB DFU

// The process-wide link type, which a link takes over from SetCOMSettings.
void setLinkType(std::uint8_t type);
std::uint8_t linkType();

} // namespace zvbl
