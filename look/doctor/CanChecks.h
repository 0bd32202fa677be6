#pragma once

#include <string>
#include <vector>

#include <linux/can.h>

#include "look/doctor/Cause.h"

// What a CAN interface tells.
struct CanInterface {
    int socketError = 0; // errno of a CAN socket; 0: the kernel has them
    int lookError = 0;   // errno of the look for the interface
    bool isUp = false;
    bool isRunning = false; // a controller that has left its bus is not
};

CanInterface canInterface(const std::string &name);
// False where nothing can be sent.
bool judgeInterface(const std::string &name, const CanInterface &interface, Diagnosis &diagnosis);

// Hears what the controller tells of errors while something is done on its bus.
class CanErrors {
public:
    explicit CanErrors(const std::string &name);
    ~CanErrors();
    CanErrors(const CanErrors &) = delete;
    CanErrors &operator=(const CanErrors &) = delete;

    std::vector<can_frame> heard() const;

private:
    int m_socket = -1;
};

// Why nobody answered on the bus.
void judgeSilence(const std::string &name, const std::vector<can_frame> &errors, Diagnosis &diagnosis);
