#pragma once

#include <optional>
#include <string>

#include "sim/ports/nodes/Testbed.h"
#include "sim/program/Fronts.h"
#include "sim/program/Signals.h"

namespace sim {

class DeviceLoop;

// A chip at an emulated device: what a front of this program implements. All of it is called with the
// testbed's lock held, by the loop's thread; the handlers that a front attaches are called with it held
// too, by the testbed's.
class Device {
public:
    virtual ~Device() = default;

    // What the ready line calls it: "i2c-1".
    virtual std::string node() const = 0;

    // Adds the device to loop.testbed() and attaches its handlers. Called at the start, and again behind a
    // hang-up that is not for ever; the chip is powered up then. False and a message when it cannot.
    virtual bool plugIn(DeviceLoop &loop, std::string &error) = 0;

    // Takes it away with Testbed::remove(). The calls of those who have it open fail by then.
    virtual void unplug(DeviceLoop &loop) = 0;

    virtual void reset(Nanoseconds now) = 0;     // the reset button
    virtual void losePower(Nanoseconds now) = 0; // and it is back

    // For devices that do something by themselves: work() is called at every turn of the loop, no later than
    // due() and whenever fd() is readable; DeviceLoop::wake() brings a turn at once. A device that leaves
    // the bus and comes back for reasons of its own may call Testbed::remove() and add() there itself.
    virtual void work(Nanoseconds) {}
    virtual std::optional<Nanoseconds> due() const { return std::nullopt; }
    virtual int fd() const { return -1; }
};

// Serves one device: signals, the pause in which the state is saved, unplugging and plugging in again.
class DeviceLoop {
public:
    DeviceLoop(Machine &machine, Device &device);
    ~DeviceLoop();
    DeviceLoop(const DeviceLoop &) = delete;
    DeviceLoop &operator=(const DeviceLoop &) = delete;

    Testbed &testbed() { return testbed_; }

    // Until a signal ends it or it is unplugged for good. False and a message when the device cannot be made.
    bool serve(std::string &error);

    // For handlers and the device's functions:

    void traffic(); // something went by: not the time to save
    void wake();    // the loop has to turn
    void ready();   // prints the ready line; the loop does it itself where it plugs in
    void end();     // the device is gone for good: the loop ends

    // A fault unplugs the device: the call that is being handled, and all others of those who have the device
    // open, fail with ENODEV. Plugged in again after that time, with a power cycle and another ready line;
    // without one it is gone for good.
    void hangUp(std::optional<unsigned> replugMs);

private:
    enum class Turn { goOn, absent, end };

    bool plugIn(std::string &error);
    void leave();
    void wait();
    Turn turn();
    Wish stayAway();
    void restIfIdle();

    Machine &machine_;
    Device &device_;
    Testbed testbed_;
    int wake_;
    Nanoseconds lastTraffic_ = 0;
    bool rested_ = true;
    bool plugged_ = false;
    bool ended_ = false;
    std::optional<unsigned> replugMs_; // unplugged, and to be plugged in again
};

// The serve function of a front: makes the loop and runs it.
bool serveDevice(Machine &machine, Device &device, std::string &error);

} // namespace sim
