#include "look/LineVerb.h"

#include <memory>

#include "app/LinkSettings.h"
#include "foundation/ShareParameter.h"
#include "look/Chip.h"
#include "look/Status.h"
#include "look/line/Walk.h"

namespace {

int lookAtLine(const std::string &chip, Call &call) {
    if (call.line.empty())
        throw Refusal(badWords, "line: the words of a console line have to stand behind --");
    std::vector<char *> argv;
    for (std::string &word : call.line)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    g_shareParameter = ShareParameter();
    loadStartValues();
    CDevice *device = chip.empty() ? nullptr : &chipNamed(chip);
    if (device != nullptr)
        device->m_haveBank3 = false;
    Line line(static_cast<int>(call.line.size()), argv.data(), device, call.report);
    const int status = lookAtWords(line);
    if (device == nullptr)
        call.report.finding(Mark::note, "chip",
                            "the chip is not known: whether all fits and what is erased takes --chip NAME");
    call.report.fact("console status", {status, std::to_string(status) + ", if the chip takes everything"});
    return status == OP_SUCCESS ? lookedWell : somethingWrong;
}

} // namespace

Look declareLine(CLI::App &words) {
    const auto chip = std::make_shared<std::string>();
    words.add_option("--chip", *chip, "the chip that the line is for, by its map file: ZV32F403A_1024K");
    words.footer("The words of the console line stand behind --: zv32-look line -- -com --pn ttyUSB0 -e --all");
    return [chip](Call &call) { return lookAtLine(*chip, call); };
}
