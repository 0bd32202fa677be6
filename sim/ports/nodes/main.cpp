#include "sim/ports/nodes/DeviceFronts.h"

int main(int argc, char **argv) {
    return sim::run(argc, argv, sim::deviceFronts());
}
