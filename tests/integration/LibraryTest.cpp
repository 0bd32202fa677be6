#include "tests/integration/LibraryTest.h"

HANDLE openLink(const std::string &port) {
    constexpr int evenParity = 2;
    HANDLE link = nullptr;
    EXPECT_EQ(SetCOMSettings(&link, 0, port.c_str(), 115200, 8, evenParity, 1.0F), done);
    EXPECT_EQ(Interface_Open(link), done);
    EXPECT_EQ(ZVBL_Init_BL(link, 0, 0, 0), done);
    return link;
}

LibraryTest::~LibraryTest() {
    if (link != nullptr) {
        Interface_Close(link);
    }
}

void LibraryTest::connect(const std::string &name, const std::vector<std::string> &options) {
    TARGET_SetComIntType(0);
    chip = std::make_unique<SimulatedChip>(name, options);
    link = openLink(chip->port());
}

BYTE LibraryTest::initAgain() {
    waitForStart();
    return ZVBL_Init_BL(link, 0, 0, 0);
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
