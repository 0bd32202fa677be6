#include "look/doctor/DoctorVerb.h"

#include <memory>

#include "look/Status.h"
#include "look/doctor/Examine.h"
#include "look/doctor/UsbChecks.h"

namespace {

struct Words {
    std::vector<std::string> ports;
    LineSetting line;
    std::string parity = "even";
};

std::string titleOf(const Port &port) {
    if (port.kind == PortKind::usb)
        return "usb " + port.name;
    return port.path.empty() ? port.name : port.path;
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

int look(const Words &words, Call &call) {
    const Machine machine;
    const Person person = Person::self();
    const bool isNamed = !words.ports.empty();
    LineSetting line = words.line;
    line.parity = words.parity.front();
    std::vector<Port> ports;
    for (const std::string &word : words.ports)
        ports.push_back(portOf(word, machine));
    if (!isNamed)
        ports = allPorts(machine);
    Rounds rounds(call.report);
    for (const Port &port : ports)
        rounds.tell(titleOf(port), examine(port, {machine, person, line, isNamed}));
    Diagnosis adapters;
    if (!isNamed)
        checkAdapters(machine, adapters);
    if (!adapters.isHealthy())
        rounds.tell("adapters", adapters);
    if (!isNamed && ports.empty())
        call.report.fact("ports", Value(Json::array(), "none that a chip could be at"));
    rounds.tellFirst();
    return lookedWell;
}

} // namespace

Look declareDoctor(CLI::App &words) {
    const auto given = std::make_shared<Words>();
    words.add_option("PORT", given->ports,
                     "a path or a name: ttyUSB0, i2c-1, spidev0.0, can0, or 1-2.1 for a USB device. It is opened, and "
                     "asked for a bootloader. Without one all ports are told of, and none is opened");
    words.add_option("--br", given->line.baud, "the rate of a serial port")->capture_default_str();
    words.add_option("--pr", given->parity, "its parity")
        ->check(CLI::IsMember({"none", "odd", "even"}, CLI::ignore_case))
        ->capture_default_str();
    return [given](Call &call) { return look(*given, call); };
}
