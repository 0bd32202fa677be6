#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace faults {

// What a campaign is asked for.
struct Wish {
    unsigned seed = 1;
    std::optional<unsigned> count; // so many cases of each cell, at random; none: all
    unsigned every = 1;            // of the cases of each cell only each so many-th
    std::string cell;              // part of its name; none: all
    std::string oneCase;           // this case of each cell, and no other
    std::string done;  // a file of the cells that are done; kept while the whole runs, of all cells and cases
    unsigned jobs = 1; // processes; as many as processors where nothing is said
    const char *trouble = nullptr; // which word it could not take
};

// What came of the cases of one cell.
struct Row {
    unsigned cases = 0;
    unsigned well = 0;     // ended with 0, and did what was asked
    unsigned reported = 0; // ended with the status of the action that failed
    unsigned again = 0;    // of these: the second run did what was asked
    unsigned toldWhy = 0;  // of these: the second run told what stands in the way
    unsigned unseen = 0;   // ended with 0 and wrong cells, where nobody looks at them
    unsigned findings = 0; // broke a promise
};

// One case: its name, and the run that tells what came of it. A complaint is a finding. Its line of the table is that
// of its cell, or one that it has in common with cases of others.
struct Case {
    std::string name;
    std::function<void(Row &row, std::vector<std::string> &complaints)> run;
    std::string line{};
};

// The cases of a cell. Each is made when its turn has come: what a process holds costs time whenever it forks.
struct Cases {
    std::size_t count;
    std::function<Case(std::size_t number)> at;
};

// One cell, which is done as a whole.
struct Cell {
    std::string name;
    std::function<Cases()> cases;
};

Wish readWords(int count, char **words);

// Runs all cells in several processes, each with a random sequence of its own, prints the table, and gives the exit
// status: 1 when there is a finding or nothing was run, 2 for bad words. A cell that stands in the file of those that
// are done, by the same program for the same seed, is not run again. Findings go to standard error, with the words to
// run them again.
int runCampaign(const Wish &wish, const char *program, const std::vector<Cell> &cells);

} // namespace faults
