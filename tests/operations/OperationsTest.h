#pragma once

// What the tests of the jobs stand on: both libraries doubled, an identified chip, and a listener that
// writes down every event of a job.

#include <functional>
#include <string>
#include <vector>

#include "operations/Operation.h"
#include "tests/link/LinkTest.h"

using Lines = std::vector<std::string>;

// A chip as its map and its identifier describe it.
struct Chip {
    std::string name;       // of its map file: "ZV32F413_256K"
    std::string pid;        // as in the map
    std::string series;     // as in the map
    std::string identifier; // as on the wire
    int sectorSize;
    int sectors;
    int sectorsPerBit;
};

extern const Chip f403a;  // 1024 KB in sectors of 2048: bit 31 covers most of it
extern const Chip f403_1; // of the families that restart before a verify
extern const Chip f407;   // 512 KB: one bank
extern const Chip f413;   // 256 KB
extern const Chip f435;   // 4032 KB in sectors of 4096 and blocks of 64 KB

// Library calls that a restart of the chip costs, from the closing of the port on.
extern const std::string reconnected;

class OperationsTest : public LinkTest {
protected:
    OperationsTest();
    ~OperationsTest() override;

    // An open USART link to the chip, connected, the log empty.
    CBootLoader &connect(const Chip &chip, const std::string &capabilities = "all");

    // What the next image file holds, and more lines for the file library's double.
    void image(const std::string &scriptLines);

    // Runs the current job of the control to its end with the listener installed, and gives the code
    // of its ABEND, or 0.
    int run();
    int run(COperation &job);
    // The same with nothing of an earlier run left.
    int runAnew();
    int runAnew(COperation &job);

    // The same, with the job cancelled between its preparation's beginning and its first call of the link library;
    // gives the calls as the log tells them.
    std::string runCancelledAtFirstCall();

    // Installs the listener.
    static void listen(COperation &job);

    // The lines of the link library's log that begin with one of the words, "event" among them.
    Lines calls(const std::vector<std::string> &words) const;

    // Path of a file below the directory of the test; nothing is there.
    std::string path(const std::string &name) const;

    static Lines events;                          // "INIT Erase", "ACTION 33", "DONE", ...
    static CInitInfo lastInit;                    // record of the last INIT
    static std::function<void(InfoType)> onEvent; // called after the writing down
    static bool eventsInLog;                      // events go into the link library's log as well
    static int abendCode;

private:
    static void *listener(InfoType type, void *record);
    std::string mapLine;
    int scripts = 0;
};
