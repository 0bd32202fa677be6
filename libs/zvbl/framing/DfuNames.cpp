#include "libs/zvbl/framing/DfuNames.h"

#include <iterator>

namespace zvbl {
namespace {

constexpr const char *stateNames[] = {"appIDLE",          "appDETACH",   "dfuIDLE",
                                      "dfuDNLOAD-SYNC",   "dfuDNBUSY",   "dfuDNLOAD-IDLE",
                                      "dfuMANIFEST-SYNC", "dfuMANIFEST", "dfuMANIFEST-WAIT-RESET",
                                      "dfuUPLOAD-IDLE",   "dfuERROR"};

constexpr const char *statusNames[] = {"OK",         "errTARGET",       "errFILE",     "errWRITE",
                                       "errERASE",   "errCHECK_ERASED", "errPROG",     "errVERIFY",
                                       "errADDRESS", "errNOTDONE",      "errFIRMWARE", "errVENDOR",
                                       "errUSBR",    "errPOR",          "errUNKNOWN",  "errSTALLEDPKT"};

} // namespace

std::string dfuStateName(std::uint8_t state) {
    return state < std::size(stateNames) ? stateNames[state] : "state " + std::to_string(state);
}

std::string dfuStatusName(std::uint8_t status) {
    return status < std::size(statusNames) ? statusNames[status] : "status " + std::to_string(status);
}

} // namespace zvbl
