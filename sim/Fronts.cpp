#include "sim/Fronts.h"

#include "sim/fronts/UsartFront.h"

namespace sim {

const FrontTable &simFronts() {
    static const FrontTable rows = {
        {"usart", "PATH", nullptr, serveUsart},
    };
    return rows;
}

} // namespace sim
