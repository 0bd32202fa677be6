#pragma once

#include <string>

// What the words of a line ask for.
struct Asked {
    std::string job;     // path of the job file
    std::string station; // path of the station file, empty for that of the system
    std::string hash;
    std::string order;
    std::string keep;  // file for the memory of a simulated chip
    bool plan = false; // the plan's text alone
    bool json = false;
};

// The verbs. Each returns an exit status and throws Refusal; what it tells goes to standard output.
int check(const Asked &asked);
int approve(const Asked &asked);
int rehearse(const Asked &asked);
