#pragma once

#include <string>
#include <vector>

#include "look/Report.h"

// What keeps a port from working, in the order in which it is to be put right.
enum class Cause {
    noPort,
    moduleMissing,
    adapterWithoutModule,
    usbNodeMissing,
    usbNotAuthorised,
    spiUnbound,
    canMissing,
    notAPort,
    noGroup,
    notInGroup,
    oldLogin,
    usbNoRule,
    loginPrompt,
    grabberHolds,
    held,
    heldUnseen,
    kernelConsole,
    usbDriver,
    canDown,
    canBusOff,
    smbusOnly,
    addressTaken,
    gone,
    talksUnasked,
    echo,
    wrongRate,
    unsteady,
    busStuck,
    nothingAtAddress,
    canNotAcknowledged,
    noControlLines,
    silence,
    grabberRuns,
    latency,
};

// One row of the table of causes.
struct CauseRow {
    Cause cause;
    const char *check; // what was measured
    const char *cure;  // "%1" to "%3" stand for the words of the case
};

const std::vector<CauseRow> &causeRows();

// One line of a diagnosis.
struct Check {
    const CauseRow *row; // null where nothing is wrong
    Mark mark;
    std::string name;
    std::string measured;
    std::string cure;
};

// What was measured at one port.
class Diagnosis {
public:
    void good(const std::string &check, const std::string &measured);
    void note(const std::string &check, const std::string &measured);
    // The words take the places in the row's cure.
    void found(Cause cause, const std::string &measured, const std::vector<std::string> &words = {});

    bool has(Cause cause) const;
    bool isHealthy() const;
    // The cause that is to be put right before the others; null if there is none.
    const Check *first() const;
    const std::vector<Check> &checks() const { return m_checks; }

private:
    std::vector<Check> m_checks;
};
