#include "line/job/Job.h"

#include <map>

#include "line/job/Directory.h"
#include "line/job/UnitTables.h"
#include "line/job/Words.h"
#include "programs/Status.h"

namespace {

constexpr std::size_t longestJob = 1024 * 1024;
// As text, more than four times what the largest chip holds.
constexpr std::size_t longestImage = 64 * 1024 * 1024;
constexpr std::int64_t mostUnits = 1000000000;

const std::map<std::string, bool> protectedWords = {{"refuse", false}, {"erase", true}};
const std::map<std::string, bool> againWords = {{"refuse", false}, {"make", true}};
const std::map<std::string, Verify> verifyWords = {
    {"crc", Verify::crc}, {"read", Verify::read}, {"both", Verify::both}};
const std::map<std::string, Access> accessWords = {
    {"leave", Access::leave}, {"on", Access::on}, {"high", Access::high}};

void readChip(Table table, Job &job) {
    job.chip = table.text("name");
    job.chipPlace = table.placeOf("name");
    job.eraseProtected = table.choiceOr("protected", protectedWords, false);
    job.makeAgain = table.choiceOr("again", againWords, false);
    table.finish();
}

void readImage(Table table, const Directory &directory, Job &job) {
    job.imageName = table.text("file");
    job.imagePlace = table.placeOf("file");
    job.verify = table.choice("verify", verifyWords);
    table.finish();
    try {
        job.imageBytes = directory.read(job.imageName, longestImage);
    } catch (const Refusal &refusal) {
        job.imagePlace.refuse(refusal.what());
    }
}

void readFinish(Table table, Job &job) {
    job.access = table.choiceOr("access", accessWords, Access::leave);
    job.run = table.flagOr("run", false);
    if (job.run && job.access != Access::leave)
        table.placeOf("run").refuse("the bootloader of a protected chip starts nothing");
    table.finish();
}

std::string lastPartOf(const std::string &path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

} // namespace

const char *nameOf(Verify verify) {
    return wordOf(verifyWords, verify);
}

const char *nameOf(Access access) {
    return wordOf(accessWords, access);
}

Job readJob(const std::string &path) {
    const Directory directory(path);
    Table table = Table::parse(path, directory.read(lastPartOf(path), longestJob));
    Job job{};
    table.number("format", 1, 1);
    job.name = table.text("name");
    job.quantity = table.number("quantity", 1, mostUnits);
    readChip(table.table("chip"), job);
    Table image = table.table("image");
    job.units = readUnits(table);
    if (table.has("options"))
        job.options = readOptions(table.table("options"));
    job.otp = readOtp(table);
    if (table.has("finish"))
        readFinish(table.table("finish"), job);
    table.finish();
    readImage(std::move(image), directory, job);
    return job;
}
