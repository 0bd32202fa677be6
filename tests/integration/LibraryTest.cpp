#include "tests/integration/LibraryTest.h"

namespace {

constexpr BYTE usbDfu = 1;

// A link word on USB DFU is a row of the device list. A device that restarts is not in it for a while.
BYTE openDevice(HANDLE link) {
    constexpr int looks = 200;
    signed char count = 0;
    for (int i = 0; i < looks && count < 1; ++i) {
        count = 99;
        unsigned short vendors[255] = {}, products[255] = {};
        const auto info = std::make_unique<TDeviceInfo>();
        EXPECT_EQ(ZVBL_GetZVDeviceList(&count, vendors, products, info.get()), done);
        if (count < 1)
            waitForStart();
    }
    EXPECT_EQ(count, 1);
    return Interface_Open(link);
}

} // namespace

HANDLE openLink(const SimulatedChip &chip) {
    constexpr int evenParity = 2;
    HANDLE link = nullptr;
    TARGET_SetComIntType(chip.place().type);
    if (chip.place().type != usbDfu) {
        EXPECT_EQ(SetCOMSettings(&link, 0, chip.port().c_str(), 115200, 8, evenParity, 1.0F), done);
        EXPECT_EQ(Interface_Open(link), done);
    }
    EXPECT_EQ(startLink(link, chip), done);
    return link;
}

BYTE startLink(HANDLE link, const SimulatedChip &chip) {
    if (chip.place().type == usbDfu) {
        Interface_Close(link);
        return openDevice(link);
    }
    return ZVBL_Init_BL(link, 0, 0, 0);
}

LibraryTest::~LibraryTest() {
    if (chip != nullptr)
        Interface_Close(link);
}

void LibraryTest::connect(const std::string &name, const std::vector<std::string> &options) {
    chip = std::make_unique<SimulatedChip>(name, options);
    link = openLink(*chip);
}

BYTE LibraryTest::initAgain() {
    waitForStart();
    return startLink(link, *chip);
}

BYTE LibraryTest::write(unsigned address, Bytes bytes) {
    return ZVBL_DNLOAD(link, address, bytes.data(), static_cast<unsigned>(bytes.size()), 0);
}

Bytes LibraryTest::read(unsigned address, std::size_t length) {
    Bytes bytes(length);
    EXPECT_EQ(ZVBL_UPLOAD(link, address, bytes.data(), static_cast<unsigned>(length)), done);
    return bytes;
}

BYTE LibraryTest::erase(unsigned sector) {
    BYTE number[2] = {static_cast<BYTE>(sector), static_cast<BYTE>(sector >> 8)};
    return ZVBL_ERASE(link, 1, number, 0);
}
