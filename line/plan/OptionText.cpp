#include "line/plan/OptionText.h"

#include <algorithm>
#include <cstdio>

#include "line/job/SectorList.h"
#include "programs/Text.h"

std::string optionText(const OptionBytes &options, const Chip &chip) {
    std::string text;
    for (const NamedOptionByte &one : chip.optionBytes()) {
        const auto found = options.bytes.find(one.name);
        if (found == options.bytes.end())
            continue;
        char value[8];
        std::snprintf(value, sizeof value, "=%02X", found->second.value);
        text += (text.empty() ? "" : " ") + one.name + value;
    }
    if (!options.protect.empty())
        text += (text.empty() ? "protect=" : " protect=") + sectorsText(options.protect);
    return text;
}

std::string otpText(const OtpBlock &block) {
    std::string text = "block " + std::to_string(block.number);
    if (!block.bytes.empty())
        text += ' ' + hexOf(block.bytes.data(), block.bytes.size());
    return text + (block.lock ? " locked" : "");
}

std::string irreversibleText(const Job &job) {
    const auto &otp = job.otp;
    std::string text;
    if (std::any_of(otp.begin(), otp.end(), [](const OtpBlock &block) { return !block.bytes.empty(); }))
        text = "otp";
    if (std::any_of(otp.begin(), otp.end(), [](const OtpBlock &block) { return block.lock; }))
        text += text.empty() ? "otp locks" : ", otp locks";
    if (job.access == Access::high)
        text += text.empty() ? "access high" : ", access high";
    return text;
}
