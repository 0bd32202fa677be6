// The borders of what a fault may be told.

#include "sim/program/FaultOption.h"
#include "tests/sim/Vectors.h"

namespace sim {
namespace {

bool isTaken(const char *spec) {
    Faults faults;
    std::string error;
    return addFault(faults, spec, error);
}

TEST(FaultBorders, areTaken) {
    for (const char *spec : {"nack@1:11:9", "nack@1:FF", "nack@1:any:0", "tx-damage@1:1", "tx-damage@1:FF"})
        EXPECT_TRUE(isTaken(spec)) << spec;
}

TEST(FaultBorders, andNothingBeyondThem) {
    for (const char *spec : {"nack@1:11:10", "nack@1:100", "tx-damage@1:0", "tx-damage@1:100"})
        EXPECT_FALSE(isTaken(spec)) << spec;
}

} // namespace
} // namespace sim
