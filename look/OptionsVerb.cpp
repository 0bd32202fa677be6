#include "look/OptionsVerb.h"

#include <memory>

#include "foundation/Result.h"
#include "link/AccessProtection.h"
#include "link/BootLoader.h"
#include "look/Chip.h"
#include "look/OptionDifference.h"
#include "look/OptionFacts.h"
#include "look/Status.h"
#include "look/Unit.h"
#include "usersystemdata/CUserSystemData.h"

namespace {

struct Words {
    std::string chip;
    std::string bid;
    std::string other; // a file or a job to be compared with
    bool asJob = false;

    TellOptions tell() const { return asJob ? tellOptionsAsJob : tellOptions; }
};

int lookAtChip(std::vector<std::string> link, const Words &words, Section &report) {
    const auto unit = unitAt(std::move(link));
    CBootLoader &control = unit->control();
    if (const int result = control.GetUserSystemData(); result != CResult::SUCCESS)
        throw Refusal(notAcceptable, isRefusal(result) ? "the chip refuses to tell: it is under access protection"
                                                       : CResult::GetInfoStringName(result));
    words.tell()(*control.m_ObUserSystemData, report);
    return words.other.empty() ? lookedWell : tellOptionDifference(control, words.other, report);
}

int lookAtFile(const std::vector<std::string> &files, const Words &words, Section &report) {
    if (files.size() != 1 || words.chip.empty() || !words.other.empty())
        throw Refusal(badWords, "options takes the words of a link, or one FILE and --chip NAME");
    const int bid = words.bid.empty() ? 0 : std::stoi(words.bid, nullptr, 16);
    CDevice &chip = chipNamed(words.chip);
    if (words.asJob)
        tellOptionFile(files.front(), chip, bid, words.tell(), report);
    else
        tellOptionFile(files.front(), chip, bid, words.tell(), report.section("files", files.front()));
    return lookedWell;
}

std::string checkHex(const std::string &text) {
    const bool isHex = text.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
    return isHex && text.size() <= 4 ? "" : "not a hexadecimal number of four digits";
}

} // namespace

Look declareOptions(CLI::App &words) {
    const auto given = std::make_shared<Words>();
    words.allow_extras(); // the words of a link, or a file
    words.footer("LINK-WORDS are those of the console, -com --pn ttyUSB0; or FILE, as -usd takes and saves it.");
    words.add_option(
        "--diff", given->other,
        "compares the chip's with those of a file, or with what a job leaves, JOB.toml: status 9 where they "
        "differ");
    words.add_option("--chip", given->chip, "the chip that a file is for, by its map file: ZV32F403A_1024K");
    words.add_flag("--toml", given->asJob, "as the [options] of a job of zv32-line, to be pasted");
    words.add_option("--bid", given->bid, "its BID, hexadecimal: on a ZV32F415 the layout depends on it")
        ->check(CLI::Validator(checkHex, "HEX"));
    return [given, &words](Call &call) {
        const std::vector<std::string> rest = words.remaining();
        const bool isLink = rest.empty() || rest.front().rfind('-', 0) == 0;
        return isLink ? lookAtChip(rest, *given, call.report) : lookAtFile(rest, *given, call.report);
    };
}
