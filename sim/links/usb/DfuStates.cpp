#include "sim/links/usb/DfuStates.h"

#include "sim/links/usb/DfuDescriptors.h"

namespace sim {

const std::vector<DfuDevice::Request> &DfuDevice::requests() {
    static const std::vector<Request> rows = {
        {RequestNumber::detach, "DETACH", toInterface, true, 0, 0},
        {RequestNumber::dnload, "DNLOAD", toInterface, true, 0, dfuTransferSize},
        {RequestNumber::upload, "UPLOAD", fromInterface, true, 1, dfuTransferSize},
        {RequestNumber::getStatus, "GETSTATUS", fromInterface, false, statusLength, statusLength},
        {RequestNumber::clrStatus, "CLRSTATUS", toInterface, false, 0, 0},
        {RequestNumber::getState, "GETSTATE", fromInterface, false, 1, 1},
        {RequestNumber::abort, "ABORT", toInterface, false, 0, 0},
    };
    return rows;
}

// What fits which state; everything else is stalled.
const std::vector<DfuDevice::Transition> &DfuDevice::transitions() {
    using N = RequestNumber;
    static const std::vector<Transition> rows = {
        {State::idle, N::dnload, &DfuDevice::download},
        {State::idle, N::upload, &DfuDevice::upload},
        {State::idle, N::abort, &DfuDevice::toIdle},
        {State::idle, N::getStatus, &DfuDevice::getStatus},
        {State::idle, N::getState, &DfuDevice::getState},
        {State::downloadSync, N::getStatus, &DfuDevice::carryOut},
        {State::downloadSync, N::getState, &DfuDevice::getState},
        {State::downloadBusy, N::getStatus, &DfuDevice::stillBusy},
        {State::downloadIdle, N::dnload, &DfuDevice::download},
        {State::downloadIdle, N::abort, &DfuDevice::toIdle},
        {State::downloadIdle, N::getStatus, &DfuDevice::getStatus},
        {State::downloadIdle, N::getState, &DfuDevice::getState},
        {State::manifestSync, N::getStatus, &DfuDevice::leave},
        {State::manifestSync, N::getState, &DfuDevice::getState},
        {State::uploadIdle, N::upload, &DfuDevice::upload},
        {State::uploadIdle, N::abort, &DfuDevice::toIdle},
        {State::uploadIdle, N::getStatus, &DfuDevice::getStatus},
        {State::uploadIdle, N::getState, &DfuDevice::getState},
        {State::error, N::clrStatus, &DfuDevice::toIdle},
        {State::error, N::getStatus, &DfuDevice::getStatus},
        {State::error, N::getState, &DfuDevice::getState},
    };
    return rows;
}

const char *DfuDevice::nameOf(State state) {
    static const char *const names[] = {"appIDLE",          "appDETACH",   "dfuIDLE",
                                        "dfuDNLOAD-SYNC",   "dfuDNBUSY",   "dfuDNLOAD-IDLE",
                                        "dfuMANIFEST-SYNC", "dfuMANIFEST", "dfuMANIFEST-WAIT-RESET",
                                        "dfuUPLOAD-IDLE",   "dfuERROR"};
    return names[static_cast<std::size_t>(state)];
}

} // namespace sim
