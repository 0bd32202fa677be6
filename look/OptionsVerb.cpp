#include "look/OptionsVerb.h"

#include <memory>

#include "device/Device.h"
#include "device/Families.h"
#include "foundation/Result.h"
#include "link/AccessProtection.h"
#include "link/BootLoader.h"
#include "look/Chip.h"
#include "look/OptionFacts.h"
#include "look/Status.h"
#include "look/Unit.h"
#include "usersystemdata/CUserSystemData.h"

namespace {

struct Words {
    std::string chip;
    std::string bid;
    std::string other; // a file to be compared with
    bool asJob = false;

    TellOptions tell() const { return asJob ? tellOptionsAsJob : tellOptions; }
};

std::vector<BYTE> compactForm(CUserSystemData &data) {
    BYTE *bytes = nullptr;
    const quint32 length = data.Get(bytes);
    const std::unique_ptr<BYTE[]> block(bytes);
    return {bytes, bytes + length};
}

std::vector<BYTE> bytesOfFile(const std::string &path, const CBootLoader &control) {
    CDevice &device = *control.m_ObDevice;
    const ImageRead image = readImage(path, false);
    if (const std::string refusal = optionBytesRefusal(image, &device); !refusal.empty())
        throw Refusal(notAcceptable, path + ": " + refusal);
    CUserSystemData data(seriesOf(device), control.m_BID, &device, nullptr, 0);
    std::vector<BYTE> bytes = image.ranges.front().bytes;
    data.SetElementData(bytes.data(), static_cast<quint32>(bytes.size()));
    return compactForm(data);
}

Value hexValue(BYTE byte) {
    return {byte, addressValue(byte).text.substr(6)};
}

// somethingWrong where a byte differs.
int tellDifference(CBootLoader &control, const std::string &path, Section &report) {
    const std::vector<BYTE> chip = compactForm(*control.m_ObUserSystemData);
    const std::vector<BYTE> file = bytesOfFile(path, control);
    std::vector<std::vector<Value>> rows;
    for (std::size_t i = 0; i < std::min(chip.size(), file.size()); ++i)
        if (chip[i] != file[i])
            rows.push_back({Value(i), hexValue(chip[i]), hexValue(file[i])});
    const bool differs = !rows.empty();
    report.fact("differs", Value(differs, (differs ? "yes, from " : "no, from ") + path));
    if (differs)
        report.table("bytes that differ", {"byte", "chip", "file"}, std::move(rows));
    return differs ? somethingWrong : lookedWell;
}

int lookAtChip(std::vector<std::string> link, const Words &words, Section &report) {
    const auto unit = unitAt(std::move(link));
    CBootLoader &control = unit->control();
    if (const int result = control.GetUserSystemData(); result != CResult::SUCCESS)
        throw Refusal(notAcceptable, isRefusal(result) ? "the chip refuses to tell: it is under access protection"
                                                       : CResult::GetInfoStringName(result));
    words.tell()(*control.m_ObUserSystemData, report);
    return words.other.empty() ? lookedWell : tellDifference(control, words.other, report);
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
    words.add_option("--diff", given->other, "compares the chip's with those of a file: status 9 where they differ");
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
