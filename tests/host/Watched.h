#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

// Runs a program whose every system call is watched, and harms one of them.
namespace host {

enum class Harm {
    none,
    fails,     // with an error, and nothing is done
    failsDone, // with an error, and all is done
    shortened, // half of the bytes go by
    held,      // the call comes a good second later
    cut,       // half of the bytes go by, and the call after it comes a good second later
    signalled, // in place of the call comes a signal; a stop and its end leave the call
};

struct Fault {
    Harm harm = Harm::none;
    long call = -1;      // the number of the system call; -1: any
    unsigned at = 0;     // which of them, from 1
    int value = 0;       // the error or the signal
    bool onward = false; // all that follow fail too
};

struct Command {
    std::string directory; // where it runs
    std::vector<std::string> words;
    std::vector<std::string> environment; // NAME=VALUE, and nothing else
    std::set<std::string> aside;          // files whose calls are no part of it
    std::map<int, unsigned long> limits;  // by the number of the resource
    unsigned user = 0;                    // that it runs as, where we are root; 0: the same
    std::vector<int> closed;              // standard descriptors that it does not have
    int output = -1;                      // its standard output in place of a file of ours
};

struct Run {
    int status = -1;               // its exit status, 128 and the number for a signal
    bool hit = false;              // the fault took place
    bool hitOutput = false;        // at the standard output or the standard error
    bool hung = false;             // it had to be ended
    bool asksForTheTime = false;   // a wait of it depends on the machine's clock
    unsigned calls = 0;            // all together
    std::map<long, unsigned> each; // by number
    std::string text;              // standard output
    std::string errors;            // standard error
};

Run watch(const Command &command, const Fault &fault);

// Whether one process may watch another one here.
bool mayWatch();

} // namespace host
