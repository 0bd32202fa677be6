#include "sim/program/NodePorts.h"
#include "sim/program/Run.h"

int main(int argc, char **argv) {
    return sim::run(argc, argv, sim::nodePorts());
}
