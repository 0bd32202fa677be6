#include "line/ports/PortWatch.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

using namespace std::chrono_literals;

namespace {

constexpr auto pause = 250ms;     // between two looks, where nothing is heard of
constexpr auto shortPause = 25ms; // a link, a group and what is behind a device come a little after its node
constexpr auto hurry = 500ms;     // that long after something was heard of
constexpr auto patience = 2s;     // with a node that may not be opened

// Where something is heard of it.
void addEntries(DirectoryWatch::Entries &entries, const std::string &port, LinkKind kind) {
    if (kind == LinkKind::dfu) {
        char text[32];
        std::snprintf(text, sizeof text, "/dev/bus/usb/%03d/", std::atoi(port.c_str()));
        entries[text];
    } else if (port.front() == '/') {
        const std::size_t name = port.rfind('/') + 1;
        entries[port.substr(0, name)].insert(port.substr(name));
    }
}

// In /dev all of it matters: nodes come before the links to them, and before the directory of those.
DirectoryWatch::Entries entriesOf(const std::vector<Nest> &nests, LinkKind kind) {
    constexpr char nodes[] = "/dev/";
    DirectoryWatch::Entries entries;
    bool areNodes = false;
    for (const Nest &nest : nests) {
        addEntries(entries, nest.port, kind);
        areNodes |= nest.port.rfind(nodes, 0) == 0;
    }
    if (areNodes)
        entries[nodes].clear();
    return entries;
}

} // namespace

PortWatch::PortWatch(const std::vector<Nest> &nests, LinkKind kind, Machine machine)
    : m_kind(kind), m_machine(std::move(machine)), m_directories(entriesOf(nests, kind)) {
    for (const Nest &nest : nests)
        m_ports.push_back({nest.port});
}

// Of ports that are held there is nothing to tell.
PortWatch::Clock::time_point PortWatch::next() const {
    const bool allHeld = std::all_of(m_ports.begin(), m_ports.end(), [](const Port &port) { return port.held; });
    return allHeld ? Clock::time_point::max() : m_next;
}

std::vector<PortWatch::Change> PortWatch::look(Clock::time_point now) {
    std::vector<Change> changes;
    const bool happened = m_directories.happened();
    if (happened)
        m_hurryUntil = now + hurry;
    else if (now < m_next)
        return changes;
    for (std::size_t nest = 0; nest < m_ports.size(); ++nest)
        look(nest, now, changes);
    m_next = now + (now < m_hurryUntil ? shortPause : pause);
    return changes;
}

void PortWatch::look(std::size_t nest, Clock::time_point now, std::vector<Change> &changes) {
    Port &port = m_ports[nest];
    if (port.held)
        return;
    const Presence presence = presenceAt(port.name, m_kind, m_machine);
    const auto tell = [&](Event event) {
        port.told = event;
        changes.push_back({nest, event});
    };
    if (presence.identity != port.presence.identity) {
        if (port.told != Event::unplugged)
            tell(Event::unplugged);
        port.since = now;
    }
    port.presence = presence;
    if (presence.identity.empty() || port.told == Event::plugged)
        return;
    if (presence.mayOpen)
        tell(Event::plugged);
    else if (port.told == Event::unplugged && now - port.since >= patience)
        tell(Event::denied);
}

void PortWatch::release(std::size_t nest) {
    Port &port = m_ports[nest];
    port.held = false;
    m_next = {};
    const Presence presence = presenceAt(port.name, m_kind, m_machine);
    if (m_kind == LinkKind::dfu && !presence.identity.empty() && presence.serial == port.presence.serial)
        port.presence = presence;
}
