#include "tests/faults/Failures.h"

#include <algorithm>
#include <optional>

#include "foundation/Result.h"

namespace faults {
namespace {

// A text that is not the one of the status.
struct OtherText {
    Function function;
    std::optional<unsigned> status; // none: whatever it answers
    const char *text;
};
constexpr OtherText otherTexts[] = {
    {Function::ZVBL_VERIFY, 0x13, Info_Program_VerifyDataNotMatching},
    {Function::TARGET_GetUserSystemData, 0x13, Info_AccessProtection},
    {Function::TARGET_GetUserSystemData, 0x14, Info_AccessProtection},
    {Function::ZVBL_GetZVDeviceList, std::nullopt, Info_Com_NotOpen}, // after a reset nothing was opened again
    {Function::FILES_GetMemoryMapping, std::nullopt, Info_Program_InputParamsError},
    {Function::FILES_GetMemoryMapping, std::nullopt, Info_Files_BADPARAMETER},
    {Function::FILES_FilterImageForOperation, std::nullopt, Info_UnknownError},
};

} // namespace

bool changesChip(Function function) {
    constexpr Function changing[] = {
        Function::ZVBL_GO,
        Function::ZVBL_ResetMCU,
        Function::ZVBL_DNLOAD,
        Function::ZVBL_ERASE,
        Function::ZVBL_BLOCK_ERASE,
        Function::ZVBL_SPIMREMAP,
        Function::ZVBL_EnableBank3,
        Function::TARGET_SetUserSystemData,
        Function::ZVBL_ACCESS_PROTECT,
        Function::ZVBL_ACCESS_PROTECT_LEVEL,
        Function::ZVBL_ACCESS_PERM_UNPROTECT,
        Function::ZVBL_ERASEPROGRAM_PROTECT,
        Function::ZVBL_ERASEPROGRAM_PERM_UNPROTECT,
        Function::FILES_ImageToFile,
    };
    return std::find(std::begin(changing), std::end(changing), function) != std::end(changing);
}

bool failsLater(Function function) {
    return function == Function::FILES_GetMemoryMapping || function == Function::FILES_FilterImageForOperation;
}

std::vector<std::string> textsOf(Function function, unsigned status) {
    const int code = isOfFiles(function) ? CResult::Convert(status) : CResult::Convert(static_cast<int>(status));
    std::vector<std::string> texts = {CResult::GetInfoStringName(code)};
    for (const OtherText &other : otherTexts)
        if (other.function == function && other.status.value_or(status) == status)
            texts.emplace_back(other.text);
    return texts;
}

} // namespace faults
