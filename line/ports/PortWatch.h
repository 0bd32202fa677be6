#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "line/ports/DirectoryWatch.h"
#include "line/ports/Presence.h"
#include "line/station/Station.h"

// Sees what is plugged in at the ports of nests, and what has gone. A nest is its port, whatever else is plugged in
// and in which order.
class PortWatch {
public:
    using Clock = std::chrono::steady_clock;

    enum class Event {
        plugged, // and may be opened
        denied,  // is there for a while, and may not be opened; it is looked at again, and may be plugged later
        unplugged
    };
    struct Change {
        std::size_t nest; // by its place in the list
        Event event;
    };

    // A test gives the machine.
    PortWatch(const std::vector<Nest> &nests, LinkKind kind, Machine machine = Machine());

    // Readable when something may have changed; -1 where the system can't tell.
    int descriptor() const { return m_directories.descriptor(); }
    // When to look at the latest, whatever the descriptor says.
    Clock::time_point next() const;

    // What has changed since the last look; at the first one every port that is there is plugged. What has gone and
    // come back is told as both. Costs next to nothing where nothing was heard of and next() is not reached.
    std::vector<Change> look(Clock::time_point now = Clock::now());

    // While an attempt runs at a nest: nothing is told of it. After the release it is told what has changed since; but
    // a chip on USB that was only restarted, which shows by its serial number, is the one that it was.
    void hold(std::size_t nest) { m_ports[nest].held = true; }
    void release(std::size_t nest);

    // Whether the port is there and may be opened, as at the last look.
    bool isPlugged(std::size_t nest) const { return m_ports[nest].told == Event::plugged; }

private:
    struct Port {
        std::string name;
        Presence presence = {};
        Event told = Event::unplugged;
        bool held = false;
        Clock::time_point since = {}; // when it came
    };

    void look(std::size_t nest, Clock::time_point now, std::vector<Change> &changes);

    const LinkKind m_kind;
    const Machine m_machine;
    std::vector<Port> m_ports;
    DirectoryWatch m_directories;
    Clock::time_point m_next;
    Clock::time_point m_hurryUntil;
};
