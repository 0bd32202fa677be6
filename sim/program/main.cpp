#include "sim/program/Run.h"
#include "sim/program/SimPorts.h"

int main(int argc, char **argv) {
    return sim::run(argc, argv, sim::simPorts());
}
