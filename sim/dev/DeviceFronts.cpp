#include "sim/dev/DeviceFronts.h"


namespace sim {

const FrontTable &deviceFronts() {
    static const FrontTable rows = {
    };
    return rows;
}

} // namespace sim
