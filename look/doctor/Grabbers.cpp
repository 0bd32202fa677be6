#include "look/doctor/Grabbers.h"

const std::vector<Grabber> &grabbers() {
    static const std::vector<Grabber> rows = {
        {"ModemManager", "systemctl disable --now ModemManager", "ID_MM_PORT_IGNORE=1"},
        {"brltty", "systemctl mask --now brltty-udev brltty", ""},
        {"gpsd", "systemctl disable --now gpsd.socket gpsd", ""},
    };
    return rows;
}

const Grabber *grabberOf(const std::string &process) {
    for (const Grabber &row : grabbers())
        if (process == row.process)
            return &row;
    return nullptr;
}
