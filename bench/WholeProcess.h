#pragma once

#include <string>

namespace bench {

// A whole job over USART, from the start of the process to its end: 64 KB written and verified by reading. The same
// by the console and by a client that does nothing else, in turns on the same chip. Times in seconds, best of all
// rounds.
struct WholeProcess {
    double wire;    // what the packets of writing and reading take on it, both ways, at 11 bits a character
    double console; // ZV32_ISP_Console -d --v
    double against; // the same with other libraries, 0 without any
    double bare;    // bare-client
};

// `programs` is the build directory, `against` a directory of other libraries or empty. Throws std::runtime_error.
WholeProcess measureWholeProcess(int baud, int rounds, const std::string &programs, const std::string &against);

// 16 such jobs of the console at once, each with a chip of its own, in seconds.
struct Gang {
    double alone; // one pair, before and after
    double mean;
    double slowest;
};
Gang measureGang(int pairs, int baud, const std::string &programs);

} // namespace bench
