#pragma once

#include <gtest/gtest.h>

#include "link/ZVBLLIB.h"
#include "tests/zvbl/UsbScene.h"

// Control transfers as they are typed in scripts.
namespace dfu {

constexpr const char *getStatus = "A1 03 00 00 00 00 06 00";
constexpr const char *clearStatus = "21 04 00 00 00 00 00 00";
constexpr const char *getState = "A1 05 00 00 00 00 01 00";
constexpr const char *abortRequest = "21 06 00 00 00 00 00 00";

// Answers to GETSTATUS: status, poll time lowest byte first, state, no string.
constexpr const char *isBusy = "00 01 00 00 04 00";
constexpr const char *isDownloadIdle = "00 00 00 00 05 00";
constexpr const char *isManifest = "00 00 00 00 07 00";

// A DNLOAD that is carried out and done.
inline UsbScript done(const std::string &download) {
    return {{download, ""}, {getStatus, isBusy}, {getStatus, isDownloadIdle, 1}};
}

// GETSTATUS in dfuERROR: a word like this, and then CLRSTATUS.
inline UsbScript failed(const std::string &status) {
    return {{getStatus, status + " 00 00 00 0A 00"}, {clearStatus, ""}};
}

// The first thing on a device that was just opened.
inline const UsbScript inStep = {{getState, "02"}};

} // namespace dfu

// A device at a place of its own.
inline UsbDeviceFacts at(const std::string &place, int number, const std::string &serial = "") {
    UsbDeviceFacts facts;
    facts.place = place;
    facts.number = number;
    facts.serial = serial;
    return facts;
}

inline HANDLE numbered(std::uintptr_t number) {
    return reinterpret_cast<HANDLE>(number);
}

// One open DFU device, through the C interface: the first of the device list.
class DfuFixture : public ::testing::Test {
protected:
    void SetUp() override {
        TARGET_SetComIntType(1);
        device = &scene.add(facts());
        ASSERT_EQ(list(), 1);
        ASSERT_EQ(SetTimeOut(link, 5000), 0);
        ASSERT_EQ(Interface_Open(link), 0);
    }
    void TearDown() override {
        for (std::uintptr_t number = 0; number < 99; ++number)
            Interface_Close(reinterpret_cast<HANDLE>(number));
        TARGET_SetComIntType(0);
    }
    virtual UsbDeviceFacts facts() const { return {}; }

    // The number of devices, -1 for a status that is not 0.
    int list() {
        signed char count = 99;
        const BYTE status = ZVBL_GetZVDeviceList(&count, vendors, products, &info);
        return status == 0 ? count : -1;
    }

    // Runs a call while the device plays its part, and gives the call's status.
    template <class Call>
    int play(UsbScript script, Call call) {
        device->play(std::move(script));
        const int status = call();
        EXPECT_EQ(device->finish(), "");
        return status;
    }

    // The same on a device that was just opened, with a short time limit.
    template <class Call>
    int playAfresh(const UsbScript &script, Call call) {
        EXPECT_EQ(Interface_Open(link), 0);
        EXPECT_EQ(SetTimeOut(link, 150), 0);
        return play(dfu::inStep + script, call);
    }

    // The time that a call takes.
    template <class Call>
    static std::chrono::milliseconds timeOf(Call call) {
        const auto from = std::chrono::steady_clock::now();
        call();
        return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - from);
    }

    UsbScene scene;
    UsbDevice *device = nullptr;
    HANDLE link = nullptr; // number 0
    unsigned short vendors[255] = {};
    unsigned short products[255] = {};
    TDeviceInfo info{};
};
