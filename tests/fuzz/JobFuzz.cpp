#include <sstream>

#include "line/job/Job.h"
#include "line/plan/Order.h"
#include "line/plan/Plan.h"
#include "line/plan/UnitImage.h"
#include "programs/FileBytes.h"
#include "programs/Status.h"
#include "programs/Text.h"
#include "tests/fuzz/Target.h"
#include "tests/fuzz/Workplace.h"

namespace {

const UnitFacts facts = {4711, std::string("0123456789ab"), 1795284260, "PO-88", {{"mac", "020000a1b2c3"}}};

void makeUnit(const Job &job, const Runs &image) {
    try {
        for (const Run &run : wholeWords(unitImageOf(job, image, facts)))
            fuzz::require(run.address % 4 == 0 && run.bytes.size() % 4 == 0, "a chip is written in whole words");
    } catch (const Refusal &refusal) {
        fuzz::require(refusal.status == notMade, "what is wrong with one unit is told of the unit");
    }
}

void plan(const Job &job) {
    const Chip chip(job.chip, job.chipPlace);
    const Runs image = imageOf(job, chip);
    const Plan plan = planOf(job, chip, image);
    fuzz::require(plan.hash == sha256Of(plan.text), "the hash is that of the text");
    std::istringstream lines(plan.text);
    for (std::string line; std::getline(lines, line);)
        fuzz::require(isHarmless(line), "nothing in a plan tells a terminal anything");
    for (const int sector : plan.sectors)
        fuzz::require(sector >= 0 && static_cast<std::size_t>(sector) < chip.sectors().size(), "sectors of the chip");
    fuzz::require(plan.irreversible == (job.access == Access::high || !job.otp.empty()),
                  "what can't be undone is told");
    makeOrder(job, plan, Json::object()).dump();
    makeUnit(job, image);
}

} // namespace

// Any text as a job: it has a plan, or is refused with its name in front.
int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const std::string path = [] {
        ::setenv("ZV32_MAP_DIR", MAPS, 1);
        fuzz::fill(fuzz::workplace() / "fw.bin", "abcdefgh");
        return fuzz::workplace() / "job.toml";
    }();
    fuzz::fill(path, std::string(data, data + size));
    try {
        plan(readJob(path));
    } catch (const Refusal &refusal) {
        fuzz::require(refusal.status == notAcceptable, "a job is not acceptable");
        fuzz::require(std::string(refusal.what()).rfind(path + ':', 0) == 0, "file and line stand in front");
    }
    return 0;
}
