#include "look/OptionDifference.h"

#include <algorithm>
#include <memory>

#include "device/Device.h"
#include "device/Families.h"
#include "line/job/Job.h"
#include "link/BootLoader.h"
#include "look/OptionFacts.h"
#include "look/Sectors.h"
#include "look/Status.h"
#include "usersystemdata/CUserSystemData.h"
#include "usersystemdata/Layouts.h"
#include "usersystemdata/OptionNames.h"

namespace {

using Rows = std::vector<std::vector<Value>>;

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

Rows fromFile(const CBootLoader &control, const std::string &path) {
    const std::vector<BYTE> chip = compactForm(*control.m_ObUserSystemData);
    const std::vector<BYTE> file = bytesOfFile(path, control);
    Rows rows;
    for (std::size_t i = 0; i < std::min(chip.size(), file.size()); ++i)
        if (chip[i] != file[i])
            rows.push_back({Value(i), hexValue(chip[i]), hexValue(file[i])});
    return rows;
}

void addBytes(CUserSystemData &chip, const OptionBytes &wanted, Rows &rows) {
    const auto names = namedOptionBytes(chip.m_MCUSerials, chip.m_nUserSystemDataLen);
    for (const auto &option : wanted.bytes) {
        const NamedOptionByte *found = named(names, option.first);
        if (found == nullptr)
            option.second.place.refuse("this chip has no such option byte");
        const BYTE held = optionByte(chip, found->item, found->index);
        if (held != option.second.value)
            rows.push_back({Value(option.first), hexValue(held), hexValue(option.second.value)});
    }
}

// Sectors are protected in groups: more of them than the job names are no difference.
void addSectors(CUserSystemData &chip, const std::vector<int> &wanted, Rows &rows) {
    const QList<int> held = chip.GetEPPMapSectorIndex(chip.m_nSectorNums);
    if (std::all_of(wanted.begin(), wanted.end(), [&](int sector) { return held.contains(sector); }))
        return;
    rows.push_back({Value("protect"), Value(held.isEmpty() ? "none" : rangesText(held)),
                    Value(rangesText(QList<int>(wanted.begin(), wanted.end())))});
}

// A chip that tells its option bytes is not under access protection.
Rows fromJob(CUserSystemData &chip, const Job &job) {
    Rows rows;
    addBytes(chip, job.options, rows);
    addSectors(chip, job.options.protect, rows);
    if (job.access != Access::leave)
        rows.push_back({Value("access"), Value("off"), Value(nameOf(job.access))});
    return rows;
}

bool isJob(const std::string &path) {
    constexpr char suffix[] = ".toml";
    constexpr std::size_t length = sizeof suffix - 1;
    return path.size() > length && path.compare(path.size() - length, length, suffix) == 0;
}

} // namespace

int tellOptionDifference(const CBootLoader &control, const std::string &path, Section &report) {
    const bool job = isJob(path);
    Rows rows = job ? fromJob(*control.m_ObUserSystemData, readJob(path)) : fromFile(control, path);
    const bool differs = !rows.empty();
    report.fact("differs", Value(differs, (differs ? "yes, from " : "no, from ") + path));
    if (differs)
        report.table(job ? "not as the job leaves them" : "bytes that differ",
                     {job ? "name" : "byte", "chip", job ? "job" : "file"}, std::move(rows));
    return differs ? somethingWrong : lookedWell;
}
