#include "line/plan/Plan.h"

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "line/job/SectorList.h"
#include "line/job/UnitTables.h"
#include "line/plan/Misfits.h"
#include "line/plan/OptionText.h"
#include "programs/FileBytes.h"

namespace {

constexpr std::size_t nameWidth = 13;

const char *const accessTexts[] = {"leave", "on (can be removed; removal erases the flash)", "high (can't be undone)"};

std::string line(std::string name, const std::string &text) {
    name.resize(std::max(nameWidth, name.size() + 1), ' ');
    return name + text + '\n';
}

// Between quotes, with what is a quote or a backslash told apart.
std::string quoted(const std::string &text) {
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::string imageText(const std::string &hash, const Runs &image) {
    std::size_t bytes = 0;
    std::string ranges;
    for (const Run &run : image) {
        bytes += run.bytes.size();
        ranges += (ranges.empty() ? " " : ", ") + rangeText(run.address, run.end());
    }
    return "sha256 " + hash + ' ' + std::to_string(bytes) + " bytes" + ranges;
}

std::string unitText(const UnitDatum &unit) {
    char where[32];
    std::snprintf(where, sizeof where, "%08X %u ", unit.at, unit.size);
    std::string text = where + std::string(nameOf(unit.value));
    if (!unit.series.empty())
        text += ' ' + quoted(unit.series);
    if (!unit.text.empty())
        text += ' ' + quoted(unit.text);
    if (!unit.supply.empty())
        text += ' ' + quoted(unit.supply);
    return text + ' ' + nameOf(unit.form);
}

std::vector<int> sectorsOf(const Job &job, const Chip &chip, const Runs &image) {
    std::vector<int> numbers;
    for (std::size_t i = 0; i < chip.sectors().size(); ++i) {
        const Chip::Sector &sector = chip.sectors()[i];
        bool touched = false;
        for (const Run &run : image)
            touched |= run.address < sector.end() && sector.address < run.end();
        for (const UnitDatum &unit : job.units)
            touched |= unit.at < sector.end() && sector.address < unit.end();
        if (touched)
            numbers.push_back(static_cast<int>(i));
    }
    return numbers;
}

} // namespace

Plan planOf(const Job &job, const Chip &chip, const Runs &image) {
    refuseMisfits(job, chip);
    Plan plan;
    plan.imageHash = sha256Of(job.imageBytes);
    plan.sectors = sectorsOf(job, chip, image);
    const std::string forEver = irreversibleText(job);
    plan.irreversible = !forEver.empty();
    std::string &text = plan.text;
    text = "plan 1\n";
    text += line("name", quoted(job.name));
    text += line("quantity", std::to_string(job.quantity));
    text +=
        line("chip", job.chip + (job.eraseProtected ? ", a protected one is erased" : ", a protected one is refused"));
    text += line("again", job.makeAgain ? "make" : "refuse");
    text += line("image", imageText(plan.imageHash, image));
    for (const UnitDatum &unit : job.units)
        text += line("unit", unitText(unit));
    text += line("erase", "sectors " + sectorsText(plan.sectors));
    text += line("verify", nameOf(job.verify));
    if (const std::string options = optionText(job.options, chip); !options.empty())
        text += line("options", options);
    for (const OtpBlock &block : job.otp)
        text += line("otp", otpText(block));
    text += line("access", accessTexts[static_cast<int>(job.access)]);
    text += line("run", job.run ? "yes" : "no");
    text += line("irreversible", plan.irreversible ? forEver : "nothing");
    plan.hash = sha256Of(text);
    return plan;
}
