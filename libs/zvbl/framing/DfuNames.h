#pragma once

#include <cstdint>
#include <string>

namespace zvbl {

// The states and status values of USB DFU 1.1, 6.1.2.
enum DfuState : std::uint8_t {
    dfuAppIdle,
    dfuAppDetach,
    dfuIdle,
    dfuDownloadSync,
    dfuDownloadBusy,
    dfuDownloadIdle,
    dfuManifestSync,
    dfuManifest,
    dfuManifestWaitReset,
    dfuUploadIdle,
    dfuError
};

constexpr std::uint8_t dfuOk = 0x00;
constexpr std::uint8_t dfuErrVendor = 0x0B;
constexpr std::uint8_t dfuErrStalledPacket = 0x0F;

// Their names there: dfuDNLOAD-IDLE, errADDRESS.
std::string dfuStateName(std::uint8_t state);
std::string dfuStatusName(std::uint8_t status);

} // namespace zvbl
