#pragma once

#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <umockdev.h>

#include "tests/zvbl/Pty.h"

// One control transfer of a script: setup packet and data as the host sends them, and what the device does:
// the bytes that it answers, or one of the words of UsbWords.
struct UsbTurn {
    std::string host;
    std::string device;
    int gapMs = 0;    // what the host has to let pass after the turn before this one
    int unplugMs = 0; // the device goes away so long after its answer, if not 0

    UsbTurn(std::string hostBytes, std::string answer, int gap = 0, int unplug = 0)
        : host(std::move(hostBytes)), device(std::move(answer)), gapMs(gap), unplugMs(unplug) {}
};
using UsbScript = std::vector<UsbTurn>;

inline UsbScript operator+(UsbScript first, const UsbScript &second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

namespace usbWords {
constexpr const char *stall = "stall";
constexpr const char *silence = "silence"; // no answer until the host gives up
constexpr const char *damaged = "damaged"; // as a device answers whose cable is being pulled
constexpr const char *gone = "gone";       // unplugged in this moment
constexpr const char *pulled = "pulled";   // damaged first, and unplugged a moment later
} // namespace usbWords

// A DFU device at the end of a cable, as its descriptors describe it.
struct UsbDeviceFacts {
    std::string place = "1-1"; // the hubs on the way are there too
    int number = 2;
    unsigned vendor = 0x1209;
    unsigned product = 0x0001;
    std::string serial = "0123";
    std::string name = "ZV32 Bootloader";
    unsigned transferSize = 4096;
    unsigned dfuVersion = 0x011A;
    unsigned protocol = 2;
    unsigned interface = 0;
    unsigned alternates = 1;
    bool functionalDescriptor = true;
    bool heldByAnother = false; // another program has claimed the interface
    bool mute = false;          // answers nothing, its string descriptors neither
};

class UsbScene;

class UsbDevice {
public:
    UsbDevice(UsbScene &scene, UsbDeviceFacts facts);
    ~UsbDevice();

    void plugIn();
    void unplug();
    void awaitUnplugged(); // after a script by which it goes away
    void plugInAgain();    // under the next number, as after a reset
    void play(UsbScript script);
    void playForEver(UsbScript script); // the last turn again and again
    std::string finish();               // what went wrong with the script; empty if all of it was played, and no more
    std::string node() const;
    UsbDeviceFacts facts;

private:
    struct Urb {
        UMockdevIoctlData *urb = nullptr;
        UMockdevIoctlData *buffer = nullptr;
        bool done = false;
        int status = 0;
        zvbl::Bytes data{}; // for the host, or as many as were taken from it
    };

    static gboolean onIoctl(UMockdevIoctlBase *base, UMockdevIoctlClient *client, gpointer self);
    int serve(UMockdevIoctlClient *client, int &error);
    int submit(UMockdevIoctlData *arg);
    int reap(UMockdevIoctlData *arg);
    int discard();
    void perform();
    std::string standardAnswer(const zvbl::Bytes &setup) const;
    std::string scriptedAnswer(const zvbl::Bytes &host);
    void finishUrb(int status, zvbl::Bytes data);
    void handBack();
    void release();
    void leave();
    void leaveLater(int milliseconds);
    std::string sysPath() const;
    zvbl::Bytes deviceDescriptor() const;
    zvbl::Bytes configuration() const;

    UsbScene &m_scene;
    UMockdevIoctlBase *m_handler = nullptr;
    std::vector<std::string> m_served; // every node that it has had
    std::mutex m_mutex;
    Urb m_urb;
    bool m_pluggedIn = false;
    bool m_vanishing = false;
    UsbScript m_script;
    std::size_t m_turn = 0;
    bool m_endless = false;
    std::string m_complaint;
    std::chrono::steady_clock::time_point m_answered;
    std::thread m_leaving;
};

// The USB of a machine: what is plugged in.
class UsbScene {
public:
    UsbScene();
    ~UsbScene();

    UsbDevice &add(const UsbDeviceFacts &facts);
    void addHub(const std::string &place);
    UMockdevTestbed *testbed() const { return m_testbed; }

private:
    UMockdevTestbed *m_testbed;
    std::vector<std::string> m_hubs;
    std::vector<std::unique_ptr<UsbDevice>> m_devices;
};

// Makes a device one that nobody but root may open, and this process somebody else.
class Forbidden {
public:
    Forbidden(const UsbScene &scene, const UsbDevice &device);
    ~Forbidden();
    Forbidden(const Forbidden &) = delete;
    Forbidden &operator=(const Forbidden &) = delete;

private:
    std::string m_node;
    bool m_wasRoot;
};
