// Who the chip is: identifier, series, flash size, version and block identifier.

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "foundation/Result.h"
#include "link/BootLoader.h"

namespace {

constexpr BYTE defaultSeries = 2; // of the chips with the short identifier
constexpr BYTE shortIdentifier = 2;
constexpr BYTE longIdentifier = 5;
constexpr int statusReadFail = 5;
constexpr int statusBadArgument = 33;

constexpr unsigned int blockIdentifierAddress = 0x1FFFB100;
constexpr unsigned int blockIdentifierLength = 8;
constexpr unsigned int uniqueIdAddress = 0x1FFFF7E8;
constexpr unsigned int uniqueIdLength = 12;

constexpr int flashSizeMask = 0x7C0;
constexpr int flashSizeShift = 6;
constexpr int flashSizes[] = {16,  24,   32,   48,   64,   72,   96,  128, 192,  256,  384, 512,
                              768, 1024, 1536, 2048, 4096, 5120, 192, 960, 1984, 4032, 448};
constexpr int flashSizeCount = sizeof flashSizes / sizeof *flashSizes;

std::string hexByte(BYTE value) {
    char text[3];
    std::snprintf(text, sizeof text, "%02X", static_cast<unsigned int>(value));
    return text;
}

std::string hexPair(BYTE high, BYTE low) {
    return hexByte(high) + hexByte(low);
}

} // namespace

int CBootLoader::GetPID(std::string &strPID, BYTE &chipSeries) {
    strPID.clear();
    chipSeries = defaultSeries;
    BYTE size = 0;
    int status = ZVBL_GET_ID(m_handle, &size, nullptr);
    if (status != 0)
        return CResult::Convert(status);
    // MEANT: a bare status value, which the next caller converts.
    if (size != shortIdentifier && size != longIdentifier)
        return statusReadFail;
    BYTE id[256] = {}; // whatever length the second answer has
    BYTE sizeAgain = size;
    status = ZVBL_GET_ID(m_handle, &sizeAgain, id);
    if (status != 0)
        return CResult::Convert(status);
    if (size == shortIdentifier) {
        strPID = hexPair(id[0], id[1]);
    } else {
        strPID = hexPair(id[2], id[3]) + hexPair(id[0], id[1]);
        chipSeries = id[4];
    }
    return CResult::Convert(status);
}

int CBootLoader::ZV32GetFlashSize(int value) const {
    const int index = (value & flashSizeMask) >> flashSizeShift;
    return index < flashSizeCount ? flashSizes[index] : 0;
}

int CBootLoader::identify(std::string &pid, std::string &series, int &flashSize) {
    BYTE chipSeries = 0;
    const int result = GetPID(pid, chipSeries);
    if (result != CResult::SUCCESS)
        return CResult::Convert(result);
    flashSize = ZV32GetFlashSize(static_cast<int>(std::strtoul(pid.c_str(), nullptr, 16)));
    series = hexByte(chipSeries);
    return CResult::SUCCESS;
}

int CBootLoader::InitDevice() {
    m_ObDevice = nullptr;
    std::string pid;
    std::string series;
    int flashSize = 0;
    const int result = identify(pid, series, flashSize);
    if (result != CResult::SUCCESS)
        return result;
    m_ObDevice = m_pDeviceManager.GetDevice(pid, series, flashSize);
    if (m_ObDevice == nullptr)
        return CResult::SYS_UNREOGNIZED_DEVICE;
    SetComPaketSize(m_ObDevice->m_CMapping->GetPacketSize());
    std::string version;
    std::string bid;
    return GetVersion(version, bid);
}

bool CBootLoader::HasInitDevice() const {
    return m_ObDevice != nullptr;
}

int CBootLoader::GetVersion(std::string &strVersion, std::string &strBid) {
    strVersion.clear();
    strBid.clear();
    BYTE version = 0;
    BYTE bidReserve = 0;
    BYTE bid = 0;
    const int status = ZVBL_GET_VER_ROPS(m_handle, &version, &bidReserve, &bid);
    if (status != 0)
        return CResult::Convert(status);
    strVersion = std::to_string(version >> 4) + "." + std::to_string(version & 0xF);
    if (bid == 0) {
        strBid = "NA";
    } else if (bidReserve != 0xFF) {
        strBid = hexPair(bid, bidReserve);
        m_BID = (bid << 8) + bidReserve;
    } else {
        strBid = hexPair(static_cast<BYTE>(bid >> 4), static_cast<BYTE>(bid & 0xF));
        m_BID = bid << 8;
    }
    return CResult::Convert(status);
}

int CBootLoader::GetBID(std::string) {
    BYTE block[blockIdentifierLength] = {};
    const int status = ZVBL_UPLOAD(m_handle, blockIdentifierAddress, block, sizeof block);
    return CResult::Convert(status);
}

int CBootLoader::GetUID(BYTE *bUID) {
    // MEANT: a bare status value.
    if (bUID == nullptr)
        return statusBadArgument;
    BYTE uid[uniqueIdLength] = {};
    const int status = ZVBL_UPLOAD(m_handle, uniqueIdAddress, uid, sizeof uid);
    if (status == 0)
        std::memcpy(bUID, uid, sizeof uid);
    return CResult::Convert(status);
}

int CBootLoader::GetFlashSize(uint uiAddr, int &val) {
    return CResult::Convert(static_cast<int>(TARGET_GetFlashSize(m_handle, uiAddr, &val)));
}

int CBootLoader::SetComPaketSize(int size) {
    return CResult::Convert(static_cast<int>(SetPaketSize(m_handle, static_cast<BYTE>(size))));
}
