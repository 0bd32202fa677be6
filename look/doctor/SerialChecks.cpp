#include "look/doctor/SerialChecks.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>

#include "look/doctor/Grabbers.h"

namespace {

constexpr unsigned opening = 0x7F;
constexpr unsigned taken = 0x79;
constexpr unsigned refused = 0x1F;
constexpr int slowMs = 2; // from here on a timer costs more than the bytes
constexpr std::size_t shownBytes = 16;

std::string shown(const std::vector<unsigned> &bytes) {
    std::string text;
    for (std::size_t i = 0; i < std::min(bytes.size(), shownBytes); ++i) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%s%02X", i == 0 ? "" : " ", bytes[i]);
        text += digits;
    }
    return bytes.size() > shownBytes ? text + " ..." : text;
}

void checkLatency(const Node &node, const Machine &machine, Diagnosis &diagnosis) {
    const std::string file = "/sys/bus/usb-serial/devices/" + node.name + "/latency_timer";
    const auto text = machine.line(file);
    if (!text)
        return;
    if (std::atoi(text->c_str()) < slowMs)
        diagnosis.good("latency", *text + " ms");
    else
        diagnosis.found(Cause::latency, *text + " ms", {file});
}

void checkConsole(const Node &node, const Machine &machine, Diagnosis &diagnosis) {
    std::istringstream words(machine.line("/sys/class/tty/console/active").value_or(""));
    for (std::string word; words >> word;)
        if (word == node.name)
            diagnosis.found(Cause::kernelConsole, "the kernel writes its messages to it", {node.name});
}

bool tells(const Machine &machine, const std::string &device, const std::string &what) {
    const auto lines = machine.lines("/run/udev/data/c" + device);
    return std::find(lines.begin(), lines.end(), "E:" + what) != lines.end();
}

// Up from the port's device to the USB device; empty for a port of another kind.
std::string usbDeviceOf(const Machine &machine, const std::string &name) {
    std::string place = machine.target("/sys/class/tty/" + name + "/device");
    while (place.rfind("/sys/", 0) == 0) {
        if (machine.has(place + "/idVendor"))
            return place;
        place.erase(place.find_last_of('/'));
    }
    return {};
}

void checkGrabbers(const Node &node, const Machine &machine, Diagnosis &diagnosis) {
    const std::string usb = usbDeviceOf(machine, node.name);
    if (usb.empty())
        return;
    const std::string vendor = machine.line(usb + "/idVendor").value_or("");
    const std::string product = machine.line(usb + "/idProduct").value_or("");
    const std::string number = machine.line("/sys/class/tty/" + node.name + "/dev").value_or("");
    const auto running = machine.processes();
    for (const Grabber &grabber : grabbers()) {
        const bool runs = std::any_of(running.begin(), running.end(),
                                      [&](const Machine::Process &one) { return one.name == grabber.process; });
        if (!runs || *grabber.ignored == '\0')
            continue;
        if (tells(machine, number, grabber.ignored))
            diagnosis.good(grabber.process, "runs, and is told to ignore the port");
        else
            diagnosis.found(Cause::grabberRuns, "runs and is not told to ignore " + vendor + ":" + product,
                            {grabber.process, "a udev rule: SUBSYSTEM==\"tty\", ATTRS{idVendor}==\"" + vendor +
                                                  "\", ATTRS{idProduct}==\"" + product +
                                                  "\", ENV{ID_MM_PORT_IGNORE}=\"1\""});
    }
}

// What came after the opening byte. True for an answer of a bootloader.
bool judgeAnswer(const std::vector<unsigned> &answer, Diagnosis &diagnosis) {
    const auto is = [&](unsigned byte) { return answer.size() == 1 && answer.front() == byte; };
    if (is(taken) || is(refused)) {
        diagnosis.good("bootloader", "answers " + shown(answer) + " to 7F");
        return true;
    }
    if (answer.empty())
        diagnosis.found(Cause::silence, "no byte came back to 7F");
    else if (answer.front() == opening)
        diagnosis.found(Cause::echo, "7F itself came back: " + shown(answer));
    else if (std::count(answer.begin(), answer.end(), taken) + std::count(answer.begin(), answer.end(), refused) > 0)
        diagnosis.found(Cause::unsteady, "more than an answer came: " + shown(answer));
    else
        diagnosis.found(Cause::wrongRate, "bytes came, none is 79 or 1F: " + shown(answer));
    return false;
}

} // namespace

void checkSerialSystem(const Node &node, const Machine &machine, Diagnosis &diagnosis) {
    checkConsole(node, machine, diagnosis);
    checkLatency(node, machine, diagnosis);
    checkGrabbers(node, machine, diagnosis);
}

bool judgeHeard(const Heard &heard, Diagnosis &diagnosis) {
    if (!heard.isTerminal) {
        diagnosis.found(Cause::notAPort, "it is no serial port");
        return false;
    }
    if (heard.openError != 0 || heard.isGone) {
        diagnosis.found(Cause::gone, heard.isGone ? "the device is gone" : std::strerror(heard.openError));
        return false;
    }
    if (heard.hasLines)
        diagnosis.good("control lines", heard.lines);
    if (!heard.unasked.empty()) {
        diagnosis.found(Cause::talksUnasked, "bytes came before any was sent: " + shown(heard.unasked));
        return false;
    }
    const bool answered = judgeAnswer(heard.answer, diagnosis);
    if (heard.hasLines)
        return answered;
    if (answered)
        diagnosis.note("control lines", "none: --auto moves nothing");
    else if (heard.answer.empty())
        diagnosis.found(Cause::noControlLines, "no DTR, no RTS");
    return answered;
}
