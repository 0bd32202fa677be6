#pragma once

namespace sim {

// The rate in baud that is set on a terminal; 0 when there is none.
unsigned lineRate(int fd);

} // namespace sim
