#include "line/program/PortsVerb.h"

#include <iostream>

#include "line/ports/Plugged.h"
#include "programs/Json.h"
#include "programs/Status.h"

namespace {

void printJson(const std::vector<PluggedPort> &ports, int status) {
    Json rows = Json::array();
    for (const PluggedPort &port : ports)
        rows.push_back({{"kind", nameOf(port.kind)},
                        {"device", port.device},
                        {"port", port.port},
                        {"stays", port.stays},
                        {"nest", port.nest.empty() ? Json() : Json(port.nest)}});
    const Json whole = {{"verb", "ports"}, {"status", status}, {"ports", std::move(rows)}};
    std::cout << printed(whole, 2) << '\n';
}

int ports(const Asked &asked) {
    const Station station = readStation(asked.station);
    const std::vector<PluggedPort> all = pluggedPorts(station, Machine());
    const int status = all.empty() ? noUnit : allDone;
    if (asked.json)
        printJson(all, status);
    else
        std::cout << (all.empty() ? "# there is no port that a chip could be at\n" : nestTables(all, station));
    return status;
}

} // namespace

Work declarePorts(CLI::App &) {
    return ports;
}
