#include "line/plan/Misfits.h"

#include <string>

#include "device/Families.h"
#include "usersystemdata/OptionNames.h"

namespace {

void refuseOptions(const Job &job, const Chip &chip) {
    const auto names = chip.optionBytes();
    for (const auto &option : job.options.bytes)
        if (named(names, option.first) == nullptr)
            option.second.place.refuse("no option byte of this chip is called " + option.first);
    if (!job.options.protect.empty() && job.options.protect.back() >= static_cast<int>(chip.sectors().size()))
        job.options.protectPlace.refuse("the last sector of this chip is " + std::to_string(chip.sectors().size() - 1));
}

void refuseOtp(const Job &job, const Chip &chip) {
    const int blocks = chip.family().otp.dataLength / OtpBlock::size;
    for (const OtpBlock &block : job.otp)
        if (block.number >= blocks)
            block.place.refuse(blocks == 0 ? "this chip has no OTP memory"
                                           : "the last block of this chip is " + std::to_string(blocks - 1));
}

} // namespace

void refuseMisfits(const Job &job, const Chip &chip) {
    refuseOptions(job, chip);
    refuseOtp(job, chip);
}
