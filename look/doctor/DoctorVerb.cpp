#include "look/doctor/DoctorVerb.h"

#include <algorithm>
#include <memory>

#include "line/station/Station.h"
#include "look/Status.h"
#include "look/doctor/Examine.h"
#include "look/doctor/UsbChecks.h"

namespace {

struct Words {
    std::vector<std::string> ports; // or nests
    std::string station;
    LineSetting line;
    std::string parity = "even";
    bool isRateGiven = false;
    bool isParityGiven = false;
};

// What is looked at.
struct Target {
    Port port;
    std::string nest; // empty for a port that was named itself
    LineSetting line;
};

std::string titleOf(const Target &target) {
    const Port &port = target.port;
    std::string title = port.path.empty() ? port.name : port.path;
    if (port.kind == PortKind::usb)
        title = "usb " + port.name;
    if (target.nest.empty())
        return title;
    title += ", nest " + target.nest;
    return port.kind == PortKind::serial ? title + " at " + std::to_string(target.line.baud) : title;
}

// What was found at all ports so far, and of that what comes first.
class Rounds {
public:
    explicit Rounds(Section &report) : m_report(report) {}

    void tell(const std::string &title, const Diagnosis &diagnosis) {
        Section &section = m_report.section("ports", title);
        for (const Check &check : diagnosis.checks())
            section.check(check.mark, check.name, check.measured, check.cure);
        const Check *first = diagnosis.first();
        if (first == nullptr || (m_first != nullptr && m_first->cause <= first->row->cause))
            return;
        m_first = first->row;
        m_advice = title + ", " + first->name + ": " + first->cure;
    }

    void tellFirst() { m_report.fact("first", m_advice); }

private:
    Section &m_report;
    const CauseRow *m_first = nullptr;
    std::string m_advice = "nothing is to be done: no cause was found";
};

LineSetting lineOf(const Words &words) {
    LineSetting line = words.line;
    line.parity = words.parity.front();
    return line;
}

bool isThere(const Port &port, const Machine &machine) {
    return port.kind != PortKind::serial || machine.has("/dev/" + port.name);
}

// A nest is spoken to as its station says, unless the words say otherwise.
Target targetOfNest(const Nest &nest, const Link &link, const Words &words, const Machine &machine) {
    LineSetting line = lineOf(words);
    if (link.rate && !words.isRateGiven)
        line.baud = *link.rate;
    if (link.parity && !words.isParityGiven)
        line.parity = link.parity->front();
    return {portOf(nest.port, machine), nest.name, line};
}

// A port that is there is meant before a nest of the same name.
bool mayBeNest(const std::string &word, const Machine &machine) {
    return word.find('/') == std::string::npos && !isThere(portOf(word, machine), machine);
}

Target targetOf(const std::string &word, const Words &words, const Station &station, const Machine &machine) {
    if (mayBeNest(word, machine))
        for (const Nest &nest : station.nests)
            if (nest.name == word)
                return targetOfNest(nest, station.link, words, machine);
    return {portOf(word, machine), "", lineOf(words)};
}

std::vector<Target> targetsOf(const Words &words, const Machine &machine) {
    Station station;
    if (std::any_of(words.ports.begin(), words.ports.end(), [&](const auto &word) { return mayBeNest(word, machine); }))
        station = readStation(words.station);
    std::vector<Target> targets;
    for (const std::string &word : words.ports)
        targets.push_back(targetOf(word, words, station, machine));
    if (words.ports.empty())
        for (const Port &port : allPorts(machine))
            targets.push_back({port, "", lineOf(words)});
    return targets;
}

int look(const Words &words, Call &call) {
    const Machine machine;
    const Person person = Person::self();
    const bool isNamed = !words.ports.empty();
    const std::vector<Target> targets = targetsOf(words, machine);
    Rounds rounds(call.report);
    for (const Target &target : targets)
        rounds.tell(titleOf(target), examine(target.port, {machine, person, target.line, isNamed}));
    Diagnosis adapters;
    if (!isNamed)
        checkAdapters(machine, adapters);
    if (!adapters.isHealthy())
        rounds.tell("adapters", adapters);
    if (!isNamed && targets.empty())
        call.report.fact("ports", Value(Json::array(), "none that a chip could be at"));
    rounds.tellFirst();
    return lookedWell;
}

} // namespace

Look declareDoctor(CLI::App &words) {
    const auto given = std::make_shared<Words>();
    words.add_option("PORT", given->ports,
                     "a path or a name: ttyUSB0, i2c-1, spidev0.0, can0, or 1-2.1 for a USB device; or the name of a "
                     "nest of the station. It is opened, and asked for a bootloader. Without one all ports are told "
                     "of, and none is opened");
    words.add_option("--station", given->station, "the station file that has the nests, for that of the system");
    const auto *rate = words.add_option("--br", given->line.baud, "the rate of a serial port")->capture_default_str();
    const auto *parity = words.add_option("--pr", given->parity, "its parity")
                             ->check(CLI::IsMember({"none", "odd", "even"}, CLI::ignore_case))
                             ->capture_default_str();
    return [given, rate, parity](Call &call) {
        given->isRateGiven = rate->count() != 0;
        given->isParityGiven = parity->count() != 0;
        return look(*given, call);
    };
}
