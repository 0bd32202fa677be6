#pragma once

#include "link/ZVBLLIB.h"
#include "tests/fuzz/Tty.h"

namespace fuzz {

// Opens a link of that kind on the tty with the peer behind it and makes some calls. The first bytes of the input say
// which, the others what becomes of the answers. Whatever comes back, each call ends within its time and writes no more
// than it was given room for.
void useLink(BYTE kind, Peer &peer, Input input);

} // namespace fuzz
