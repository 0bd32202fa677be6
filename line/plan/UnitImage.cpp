#include "line/plan/UnitImage.h"

#include <algorithm>

#include "libs/files/ImageReader.h"
#include "line/plan/UnitBytes.h"

namespace {

constexpr std::uint32_t wordSize = 4;
constexpr char blank = '\xFF';

// What a file that could not be taken is told to be.
std::string reasonOf(files::Status status, const Job &job, const files::InputFile &file) {
    if (status == files::Status::badSuffix)
        return "is no .hex, .s19, .srec or .bin file";
    if (status == files::Status::unexpectedError)
        return "needs more memory than there is";
    const auto stopped = static_cast<std::ptrdiff_t>(std::min<std::uint64_t>(file.stoppedAt(), job.imageBytes.size()));
    const auto lines = std::count(job.imageBytes.begin(), job.imageBytes.begin() + stopped, '\n');
    if (static_cast<std::size_t>(stopped) < job.imageBytes.size())
        return "line " + std::to_string(lines + 1) +
               ": a digit, the length, the type or the sum of the record is wrong";
    return status == files::Status::badAddressRange ? "reaches past the addresses of 32 bits"
                                                    : "has no end record, or two values for one address";
}

void refuseOutside(const Job &job, const Chip &chip, const files::Image &image) {
    for (const files::Element &element : image.elements)
        if (!chip.holds(element.address, element.end()))
            job.imagePlace.refuse(job.imageName + ": " + rangeText(element.address, element.end()) +
                                  " is not within the flash, " + chip.range());
    for (const UnitDatum &unit : job.units)
        if (!chip.holds(unit.at, unit.end()))
            unit.place.refuse(rangeText(unit.at, unit.end()) + " is not within the flash, " + chip.range());
}

// Lays a run over what is there: the runs that it meets or touches become one with it.
void lay(Runs &runs, Run run) {
    const auto touches = [&](const Run &other) { return other.address <= run.end() && run.address <= other.end(); };
    const auto first = std::find_if(runs.begin(), runs.end(), touches);
    const auto last = std::find_if_not(first, runs.end(), touches);
    if (first != last && first->address <= run.address && run.end() <= first->end()) {
        first->bytes.replace(run.address - first->address, run.bytes.size(), run.bytes);
        return;
    }
    if (first != last) {
        const std::uint32_t address = std::min(first->address, run.address);
        const std::uint64_t end = std::max((last - 1)->end(), run.end());
        Run whole{address, std::string(end - address, '\0')};
        for (auto other = first; other != last; ++other)
            whole.bytes.replace(other->address - address, other->bytes.size(), other->bytes);
        whole.bytes.replace(run.address - address, run.bytes.size(), run.bytes);
        run = std::move(whole);
    }
    const auto place = runs.erase(first, last);
    const auto above = std::find_if(runs.begin(), runs.end(), [&](const Run &r) { return r.address > run.address; });
    runs.insert(first == last ? above : place, std::move(run));
}

} // namespace

Runs imageOf(const Job &job, const Chip &chip) {
    files::InputFile file;
    file.open(job.imageBytes.data(), job.imageBytes.size());
    files::Image image;
    const files::Status status =
        files::readImage(job.imageName.c_str(), file, static_cast<std::uint32_t>(files::flashBase), image);
    if (status != files::Status::ok)
        job.imagePlace.refuse(job.imageName + ": " + reasonOf(status, job, file));
    if (image.elements.empty())
        job.imagePlace.refuse(job.imageName + ": holds no data");
    refuseOutside(job, chip, image);
    Runs runs;
    for (const files::Element &element : image.elements)
        runs.push_back({element.address, {reinterpret_cast<const char *>(element.bytes.get()), element.length}});
    return runs;
}

Runs unitImageOf(const Job &job, const Runs &image, const UnitFacts &facts) {
    Runs runs = image;
    for (const UnitDatum &unit : job.units)
        lay(runs, {unit.at, unitBytes(unit, facts)});
    return runs;
}

Runs wholeWords(Runs runs) {
    Runs whole;
    for (Run &run : runs) {
        const std::uint32_t first = run.address - run.address % wordSize;
        if (whole.empty() || whole.back().end() < first)
            whole.push_back({first, {}});
        Run &last = whole.back();
        last.bytes.resize(run.address - last.address, blank); // or takes the filling of the one before away
        if (last.bytes.empty())
            last.bytes = std::move(run.bytes); // an image is large
        else
            last.bytes += run.bytes;
        last.bytes.resize((last.bytes.size() + wordSize - 1) / wordSize * wordSize, blank);
    }
    return whole;
}

std::string bytesOf(const Runs &runs) {
    std::string bytes;
    for (const Run &run : runs)
        bytes += run.bytes;
    return bytes;
}
