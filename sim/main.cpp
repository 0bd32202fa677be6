#include "sim/program/Fronts.h"

int main(int argc, char **argv) {
    return sim::run(argc, argv, sim::simFronts());
}
