#include "look/doctor/UsbChecks.h"

#include <cstdio>
#include <cstdlib>
#include <fnmatch.h>
#include <optional>
#include <sstream>

#include <unistd.h>

#include "look/doctor/NodeChecks.h"

namespace {

const char *const devices = "/sys/bus/usb/devices/";
// Where the modules of adapters lie that a chip can hang on.
const char *const adapterFolders[] = {"/drivers/usb/serial/", "/drivers/usb/class/cdc-acm", "/drivers/i2c/",
                                      "/drivers/net/can/", "/drivers/mfd/dln2"};

std::string attribute(const Machine &machine, const std::string &name, const char *which) {
    return machine.line(devices + name + "/" + which).value_or("");
}

std::string nodeOf(const std::string &name, const Machine &machine) {
    char text[64];
    std::snprintf(text, sizeof text, "/dev/bus/usb/%03d/%03d", std::atoi(attribute(machine, name, "busnum").c_str()),
                  std::atoi(attribute(machine, name, "devnum").c_str()));
    return text;
}

// The interface by which firmware is exchanged; empty if there is none.
std::string dfuInterfaceOf(const std::string &name, const Machine &machine) {
    for (const std::string &entry : machine.names(devices))
        if (entry.rfind(name + ":", 0) == 0 && attribute(machine, entry, "bInterfaceClass") == "fe" &&
            attribute(machine, entry, "bInterfaceSubClass") == "01")
            return entry;
    return {};
}

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
                        {attribute(machine, name, "idVendor"), attribute(machine, name, "idProduct")});
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

bool isDfuDevice(const std::string &name, const Machine &machine) {
    return !dfuInterfaceOf(name, machine).empty();
}

bool checkUsb(const std::string &name, const Machine &machine, const Person &person, Diagnosis &diagnosis) {
    if (attribute(machine, name, "authorized") == "0") {
        diagnosis.found(Cause::usbNotAuthorised, "the system was told not to use it", {devices + name + "/authorized"});
        return false;
    }
    const Node node{name, machine.path(nodeOf(name, machine)), "usb"};
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
        const std::string alias = attribute(machine, name, "modalias");
        if (name.find(':') == std::string::npos || alias.empty() || !machine.target(devices + name + "/driver").empty())
            continue;
        const std::string module = moduleFor(machine, kernel, alias);
        if (!module.empty() && isForAdapters(machine, kernel, module))
            diagnosis.found(Cause::adapterWithoutModule,
                            "no driver has " + name + ", which the module " + module + " knows", {module});
    }
}
