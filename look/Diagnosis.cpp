#include "look/Diagnosis.h"

#include <algorithm>

#include "foundation/ShareParameter.h"
#include "libs/files/ImageReader.h"
#include "look/ImageKind.h"
#include "look/Records.h"

namespace {

constexpr std::size_t mostContradictions = 10;

std::string place(std::size_t line, std::size_t column) {
    return "line " + std::to_string(line) + ", column " + std::to_string(column) + ": ";
}

bool isEnd(std::string_view line, ImageFormat format) {
    if (format == ImageFormat::intelHex)
        return line.substr(0, 1) == ":" && line.substr(7, 2) == "01";
    return line.substr(0, 2) == "S7" || line.substr(0, 2) == "S8" || line.substr(0, 2) == "S9";
}

bool isCount(std::string_view line) {
    return line.substr(0, 2) == "S5" || line.substr(0, 2) == "S6";
}

// Why a record that is right by itself was not taken where it stands.
std::string standingFault(const std::vector<std::string_view> &lines, std::size_t index, ImageFormat format) {
    const auto here = lines.begin() + static_cast<std::ptrdiff_t>(index);
    if (std::any_of(lines.begin(), here, [format](std::string_view line) { return isEnd(line, format); }))
        return "it stands behind the end record";
    if (format == ImageFormat::sRecord && isCount(*here)) {
        const auto records = std::count_if(lines.begin(), here, [](std::string_view line) {
            return line.size() > 1 && line[0] == 'S' && line[1] >= '1' && line[1] <= '3';
        });
        return "it counts other than the data records in front of it, " + std::to_string(records);
    }
    return "the file library does not take this record";
}

void tellBadFormat(const std::string &bytes, std::uint64_t offset, ImageFormat format, Section &report) {
    const auto contradictions = contradictionsOf(dataRecordsOf(bytes, format), mostContradictions);
    for (const Contradiction &one : contradictions)
        report.finding(Mark::error, "contradiction",
                       "lines " + std::to_string(one.line) + " and " + std::to_string(one.otherLine) +
                           " give address " + addressValue(static_cast<unsigned int>(one.address)).text +
                           " different bytes");
    const std::vector<std::string_view> lines = linesOf(bytes);
    std::size_t index = static_cast<std::size_t>(
        std::count(bytes.begin(),
                   bytes.begin() + static_cast<std::ptrdiff_t>(std::min<std::uint64_t>(offset, bytes.size())), '\n'));
    // A record that runs on was passed over before that showed.
    if (index < lines.size() && lines[index].empty() && index > 0)
        --index;
    if (index < lines.size()) {
        const LineFault fault = faultOf(lines[index], format);
        const bool isItself = !fault.reason.empty();
        if (isItself || contradictions.empty())
            report.finding(Mark::error, "refused",
                           place(index + 1, isItself ? fault.column : 1) +
                               (isItself ? fault.reason : standingFault(lines, index, format)));
    } else if (contradictions.empty()) {
        report.finding(Mark::error, "refused",
                       place(lines.size() + 1, 1) + "the file ends without an end record: it was cut off");
    }
}

} // namespace

bool isTaken(const std::string &name, const std::string &bytes, Section &report) {
    files::InputFile file;
    file.open(bytes.data(), bytes.size());
    files::Image image;
    const ImageKind *kind = imageKindOf(name);
    switch (files::readImage(name.c_str(), file, ZVCHIP_FLASH_BASE_ADDRESS, image)) {
    case files::Status::ok: return true;
    case files::Status::badSuffix:
        report.finding(Mark::error, "refused", "no format has this suffix", "name it .bin, .hex, .s19 or .srec");
        return false;
    case files::Status::badFormat:
        if (kind != nullptr)
            tellBadFormat(bytes, file.stoppedAt(), kind->format, report);
        return false;
    case files::Status::badAddressRange:
        report.finding(Mark::error, "refused",
                       "data beyond 32 bits of address, or more than 256 MB of them, in record at byte " +
                           std::to_string(file.stoppedAt()));
        return false;
    default: report.finding(Mark::error, "refused", "it can't be read"); return false;
    }
}
