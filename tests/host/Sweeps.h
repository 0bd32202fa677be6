#pragma once

#include <random>
#include <string>
#include <vector>

#include "tests/host/Jobs.h"
#include "tests/host/Watched.h"

// What is done to the command lines.
namespace host {

enum class Output { file, full, gone };

// One thing that goes wrong in one run.
struct Case {
    Fault fault;
    std::map<int, unsigned long> limits;
    unsigned user = 0;
    std::vector<int> closed;
    Output output = Output::file;
};

// A kind of things that go wrong: a row of the table.
struct Sweep {
    std::string name;
    bool (*concerns)(const Job &job);
    std::vector<Case> (*cases)(const Sweep &sweep, const Run &good);
    long call = -1;
    std::vector<int> errors; // or signals
    std::vector<int> onward; // errors of this and all that follow
    bool done = false;       // each error also after all was done
    bool shortens = false;   // bytes can be fewer
};

const std::vector<Sweep> &sweeps();

} // namespace host
