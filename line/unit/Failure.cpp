#include "line/unit/Failure.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "foundation/Result.h"

namespace {

// What a link answers that does not carry any more.
constexpr int linkFailures[] = {CResult::COM_NOT_OPENED,        CResult::COM_CANT_OPEN_COM, CResult::COM_SEND_FAIL,
                                CResult::COM_READ_FAIL,         CResult::SYS_CANT_INIT_BL,  CResult::NO_DFU_AVAILABLE,
                                CResult::CANT_OPEN_DFU,         CResult::DFU_SEND_FAIL,     CResult::DFU_READ_FAIL,
                                CResult::DFU_COMMUNICATION_FAIL};

// Before a chip has answered there is no link to be lost.
constexpr const char *ofTheConnect[] = {"no-port", "permission", "port-busy", "no-answer"};

bool isLinkFailure(const char *cause, int result) {
    const auto names = [&](const char *name) { return std::strcmp(name, cause) == 0; };
    return std::none_of(std::begin(ofTheConnect), std::end(ofTheConnect), names) &&
           std::find(std::begin(linkFailures), std::end(linkFailures), result) != std::end(linkFailures);
}

} // namespace

Failure::Failure(const char *why, int result)
    : std::runtime_error(CResult::GetInfoStringName(result)), cause(isLinkFailure(why, result) ? "link-lost" : why),
      code(result) {}

void require(int result, const char *cause) {
    if (result != CResult::SUCCESS)
        throw Failure(cause, result);
}
