#include "tests/fuzz/LinkJob.h"

#include <algorithm>
#include <array>

namespace fuzz {

namespace {

constexpr unsigned timeoutMs = 50;
constexpr std::int64_t longestCall = std::int64_t(600) * 1000000000;
constexpr std::size_t mostCalls = 6;
constexpr std::size_t length = 300; // bytes of a transfer: a packet and a part
constexpr BYTE untouched = 0xA5;

// Room for an answer with a fence behind it.
struct Room {
    std::array<BYTE, length + 64> bytes;

    Room() { bytes.fill(untouched); }
    void check() const {
        require(std::all_of(bytes.begin() + length, bytes.end(), [](BYTE byte) { return byte == untouched; }),
                "nothing is written past the room");
    }
};

std::array<BYTE, length> pattern() {
    std::array<BYTE, length> bytes{};
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<BYTE>(i * 7 + 1);
    return bytes;
}

constexpr unsigned flash = 0x08000000;

BYTE start(HANDLE link, Room &) {
    return ZVBL_Init_BL(link, 0, 0, 0);
}

BYTE commands(HANDLE link, Room &room) {
    Commands known{};
    return ZVBL_GET(link, room.bytes.data(), &known);
}

BYTE version(HANDLE link, Room &) {
    BYTE numbers[3] = {};
    return ZVBL_GET_VER_ROPS(link, &numbers[0], &numbers[1], &numbers[2]);
}

BYTE identity(HANDLE link, Room &room) {
    BYTE count = 0;
    const BYTE status = ZVBL_GET_ID(link, &count, nullptr);
    return status == 0 ? ZVBL_GET_ID(link, &count, room.bytes.data()) : status;
}

BYTE upload(HANDLE link, Room &room) {
    return ZVBL_UPLOAD(link, flash, room.bytes.data(), length);
}

BYTE download(HANDLE link, Room &) {
    auto bytes = pattern();
    return ZVBL_DNLOAD(link, flash, bytes.data(), length, 0);
}

BYTE verify(HANDLE link, Room &) {
    auto bytes = pattern();
    return ZVBL_VERIFY(link, flash, bytes.data(), length, 0);
}

BYTE erase(HANDLE link, Room &) {
    BYTE sectors[] = {0, 0};
    return ZVBL_ERASE(link, 1, sectors, 1024);
}

BYTE checksum(HANDLE link, Room &room) {
    return ZVBL_GetFirmwareCRC(link, flash, 2, room.bytes.data());
}

BYTE userData(HANDLE link, Room &room) {
    return TARGET_GetUserSystemData(link, 0x1FFFF800, room.bytes.data(), 16);
}

BYTE flashSize(HANDLE link, Room &) {
    int kilobytes = 0;
    return TARGET_GetFlashSize(link, 0x1FFFF7E0, &kilobytes);
}

BYTE protect(HANDLE link, Room &) {
    return ZVBL_ACCESS_PROTECT(link);
}

BYTE unprotect(HANDLE link, Room &) {
    return ZVBL_ACCESS_PERM_UNPROTECT(link);
}

BYTE slib(HANDLE link, Room &) {
    BYTE enabled = 0;
    unsigned short sectors[3] = {};
    return ZVBL_GetSlibStatus_Ex(link, &enabled, &sectors[0], &sectors[1], &sectors[2]);
}

BYTE restart(HANDLE link, Room &) {
    return ZVBL_ResetMCU(link);
}

BYTE(*const calls[])
(HANDLE, Room &) = {start,    commands, version,   identity, upload,    download, verify, erase,
                    checksum, userData, flashSize, protect,  unprotect, slib,     restart};

} // namespace

void useLink(BYTE kind, Peer &peer, Input input) {
    const std::vector<std::uint8_t> chosen = input.bytes(mostCalls);
    plugIn(peer, input);
    static HANDLE link = nullptr; // the interface has no call that ends one
    TARGET_SetComIntType(kind);
    require(SetCOMSettings(&link, 0, ttyName, 115200, 8, 2, 1.0F) == 0, "a link can be made");
    if (Interface_Open(link) == 0) {
        SetTimeOut(link, timeoutMs);
        Room room;
        start(link, room);
        for (const std::uint8_t call : chosen) {
            const std::int64_t before = ttyTime();
            const BYTE status = calls[call % std::size(calls)](link, room);
            require(ttyTime() - before < longestCall, "a call comes to its end");
            require(!ttyCameTwice() || status != 0, "nothing is done whose last answer came twice");
            room.check();
        }
    }
    Interface_Close(link);
}

} // namespace fuzz
