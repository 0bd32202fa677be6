#include "look/OtpVerb.h"

#include <memory>

#include "app/FileNames.h"
#include "look/Chip.h"
#include "look/OtpFacts.h"
#include "look/OtpPack.h"
#include "look/Status.h"
#include "programs/FileBytes.h"

namespace {

constexpr std::size_t mostBytes = 1 << 20; // more than the console takes

struct OtpWords {
    std::string file;
    std::string chip;
    std::string table;
    std::string output;
};

int show(const std::string &file, const CDevice *device, Call &call) {
    bytesOfFile(file, mostBytes); // says what is wrong with it
    Section &section = call.report.section("files", file);
    if (!IsValidOTPFileName(file.find('/') == std::string::npos ? "./" + file : file))
        section.finding(Mark::error, "name", "the console takes only names that end in ZVTP");
    if (!tellOtp(file, device, section))
        throw Refusal(notAcceptable, file + ": it can't be read");
    return lookedWell;
}

int look(const OtpWords &asked, Call &call) {
    const CDevice *device = asked.chip.empty() ? nullptr : &chipNamed(asked.chip);
    if (asked.table.empty() != asked.output.empty() || asked.table.empty() == asked.file.empty())
        throw Refusal(badWords, "otp: give either FILE, or --pack TABLE and -o FILE");
    if (!asked.table.empty())
        packOtp(asked.table, asked.output, device);
    return show(asked.table.empty() ? asked.file : asked.output, device, call);
}

} // namespace

Look declareOtp(CLI::App &words) {
    const auto asked = std::make_shared<OtpWords>();
    words.add_option("FILE", asked->file, "a file of -otp");
    words.add_option("--chip", asked->chip, "the chip that it is for, by its map file: ZV32M412_256K");
    words.add_option("--pack", asked->table, "a text to make a file of: NUMBER DATA [lock] for each block");
    words.add_option("-o", asked->output, "the file to make");
    return [asked](Call &call) { return look(*asked, call); };
}
