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

// The process-wide link type, which a link takes over from SetCOMSettings.
void setLinkType(std::uint8_t type);
std::uint8_t linkType();

} // namespace zvbl
