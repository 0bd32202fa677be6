#include "sim/fronts/VhciFronts.h"

#include "sim/Options.h"
#include "sim/fronts/VhciFront.h"
#include "sim/usb/AcmDevice.h"

namespace sim {

// A serial adapter: /dev/ttyACM0.
bool serveVhciAcm(Machine &machine, const std::string &, std::string &error) {
    Bootloader bootloader(machine.chip, machine.faults, machine.log);
    AcmDevice adapter(bootloader, machine.faults, machine.log, machine.options.pace);
    return VhciFront(adapter, "*/tty/*", machine).serve(error);
}

} // namespace sim
