#include "line/unit/Options.h"

#include <algorithm>

#include "device/Device.h"
#include "foundation/Result.h"
#include "line/unit/Failure.h"
#include "link/BootLoader.h"
#include "usersystemdata/OptionNames.h"

namespace {

constexpr char failed[] = "options";

constexpr BYTE unprotected = 0xFF;

std::vector<NamedOptionByte> namesOf(const std::vector<BYTE> &chip, const CBootLoader &control) {
    return namedOptionBytes(seriesOf(*control.m_ObDevice), static_cast<int>(chip.size()));
}

} // namespace

bool protectsSectors(const std::vector<BYTE> &chip, const CBootLoader &control) {
    const auto names = namesOf(chip, control);
    return std::any_of(names.begin(), names.end(), [&](const NamedOptionByte &one) {
        return one.item == OptionItem::epp && chip[static_cast<std::size_t>(one.byte)] != unprotected;
    });
}

std::vector<BYTE> optionsIn(std::vector<BYTE> chip, const Json &wanted, const CBootLoader &control) {
    const auto names = namesOf(chip, control);
    for (const auto &option : wanted.items()) {
        const NamedOptionByte *found = named(names, option.key());
        if (found == nullptr)
            throw Failure(failed, "this chip has no option byte " + option.key());
        chip[static_cast<std::size_t>(found->byte)] = option.value().get<BYTE>();
    }
    return chip;
}

std::vector<BYTE> readOptions(CBootLoader &control, const char *cause) {
    std::vector<BYTE> bytes;
    require(control.ReadOptionBytes(bytes), cause);
    return bytes;
}

void writeOptions(CBootLoader &control, std::vector<BYTE> wanted) {
    if (readOptions(control, failed) == wanted)
        return;
    require(control.WriteOptionBytes(wanted), failed);
    require(control.Reconnect(), failed);
    if (readOptions(control, failed) != wanted)
        throw Failure(failed, CResult::PROGRAM_VERIFY_DATA_NOT_MATCHING);
}
