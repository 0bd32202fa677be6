#pragma once

// What the tests of the jobs stand on: an open link to a simulated chip that has been identified by the real
// maps, and a listener that writes down the events of a job.

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "device/Device.h"
#include "foundation/Result.h"
#include "foundation/ShareParameter.h"
#include "link/BootLoader.h"
#include "link/CCom.h"
#include "operations/Operation.h"
#include "tests/integration/SimulatedChip.h"
#include "tests/integration/Witness.h"

constexpr uint flashBase = 0x08000000;
constexpr uint spimBase = 0x08400000;

class JobsTest : public testing::Test {
protected:
    JobsTest();
    ~JobsTest() override;

    // A new chip; "control" drives it.
    void connect(const std::string &chip);
    // Runs the current job of the control to its end; the code of its ABEND, or 0.
    int run();

    template <class Job>
    Job &job() {
        return *static_cast<Job *>(control->m_ObOperation);
    }

    // Past the jobs.
    void write(uint address, Bytes bytes);
    Bytes read(uint address, std::size_t length);
    Bytes compactUserData();
    bool isProtected();

    std::string path(const std::string &name) const { return chip->directory() / name; }

    std::unique_ptr<SimulatedChip> chip;
    std::unique_ptr<CCom> com;
    CBootLoader *control = nullptr;
    static std::vector<std::string> titles; // of each INIT of the last run
    static std::string end;                 // "DONE", "CANCEL", "ABEND", or empty without an end event

private:
    static void *listener(InfoType type, void *record);
    static int abendCode;
};
