#include "look/doctor/UsbChecks.h"

#include <fnmatch.h>
#include <optional>
#include <sstream>

#include <unistd.h>

#include "look/doctor/NodeChecks.h"
#include "programs/machine/UsbDevice.h"

namespace {

const char *const devices = "/sys/bus/usb/devices/";
// Where the modules of adapters lie that a chip can hang on.
const char *const adapterFolders[] = {"/drivers/usb/serial/", "/drivers/usb/class/cdc-acm", "/drivers/i2c/",
                                      "/drivers/net/can/", "/drivers/mfd/dln2"};

bool mayOpen(const std::string &name, const std::string &path, const Person &person, const Machine &machine,
             Diagnosis &diagnosis) {
    struct stat info {};
    if (stat(path.c_str(), &info) != 0) {
        diagnosis.found(Cause::usbNodeMissing, path + " is missing");
        return false;
    }
    const std::string who = person.user == 0 ? "root" : groupName(info.st_gid);
    if (access(path.c_str(), R_OK | W_OK) == 0) {
        diagnosis.good("permission", "ok (" + who + ")");
        return true;
    }
    const Cause why = whyDenied(info, person);
    const std::string measured = person.name + " may not open " + path;
    if (why == Cause::noGroup)
        diagnosis.found(Cause::usbNoRule, measured,
                        {usbAttribute(machine, name, "idVendor"), usbAttribute(machine, name, "idProduct")});
    else
        diagnosis.found(why, measured, {who, person.name});
    return false;
}

std::string moduleFor(const Machine &machine, const std::string &kernel, const std::string &alias) {
    for (const std::string &line : machine.lines("/lib/modules/" + kernel + "/modules.alias")) {
        std::istringstream words(line);
        std::string keyword;
        std::string pattern;
        std::string module;
        if (words >> keyword >> pattern >> module && keyword == "alias" &&
            fnmatch(pattern.c_str(), alias.c_str(), 0) == 0)
            return module;
    }
    return {};
}

// In file names of modules "-" and "_" are one.
std::string underscored(std::string name) {
    for (char &c : name)
        c = c == '-' ? '_' : c;
    return name;
}

bool isForAdapters(const Machine &machine, const std::string &kernel, const std::string &module) {
    for (const std::string &line : machine.lines("/lib/modules/" + kernel + "/modules.dep")) {
        const std::string path = line.substr(0, line.find(':'));
        const std::string file = lastPart(path);
        if (underscored(file.substr(0, file.find('.'))) != underscored(module))
            continue;
        for (const char *folder : adapterFolders)
            if (("/" + path).find(folder) != std::string::npos)
                return true;
    }
    return false;
}

} // namespace

bool checkUsb(const std::string &name, const Machine &machine, const Person &person, Diagnosis &diagnosis) {
    if (usbAttribute(machine, name, "authorized") == "0") {
        diagnosis.found(Cause::usbNotAuthorised, "the system was told not to use it", {devices + name + "/authorized"});
        return false;
    }
    const Node node{name, machine.path(usbNodeOf(name, machine)), "usb"};
    if (!mayOpen(name, node.path, person, machine, diagnosis) || !checkHolders(node, machine, false, diagnosis))
        return false;
    const std::string interface = dfuInterfaceOf(name, machine);
    const std::string driver = machine.target(devices + interface + "/driver");
    if (!driver.empty() && lastPart(driver) != "usbfs") {
        diagnosis.found(Cause::usbDriver, "the driver " + lastPart(driver) + " has it", {interface, driver});
        return false;
    }
    return true;
}

void checkAdapters(const Machine &machine, Diagnosis &diagnosis) {
    // The kernel's release, which names the directory of its modules.
    const std::string kernel = machine.line("/proc/sys/kernel/osrelease").value_or("");
    for (const std::string &name : machine.names(devices)) {
        const std::string alias = usbAttribute(machine, name, "modalias");
        if (name.find(':') == std::string::npos || alias.empty() || !machine.target(devices + name + "/driver").empty())
            continue;
        const std::string module = moduleFor(machine, kernel, alias);
        if (!module.empty() && isForAdapters(machine, kernel, module))
            diagnosis.found(Cause::adapterWithoutModule,
                            "no driver has " + name + ", which the module " + module + " knows", {module});
    }
}
