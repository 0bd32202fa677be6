#include "look/OptionFacts.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <map>

#include "device/Device.h"
#include "device/Families.h"
#include "foundation/ShareParameter.h"
#include "link/AccessProtection.h"
#include "look/Sectors.h"
#include "look/Status.h"
#include "usersystemdata/CUserSystemData.h"
#include "usersystemdata/Layouts.h"
#include "usersystemdata/OptionNames.h"

namespace {

constexpr BYTE highLevel = 0xCC;
constexpr BYTE erased = 0xFF;
constexpr std::size_t longestElement = 4096;
constexpr std::size_t shortestElement = USERSYSTEMDATA_LENGTH_403;

struct Switch {
    const char *name;
    bool CUserSystemData::*on;
};

constexpr Switch switches[] = {
    {"watchdog is started by the program", &CUserSystemData::m_BnWDT_ATO_EN},
    {"no reset at deep sleep", &CUserSystemData::m_BnDEPSLP_RST},
    {"no reset at standby", &CUserSystemData::m_BnSTDBY_RST},
    {"start from bank 1", &CUserSystemData::m_BBFB2},
    {"watchdog runs in deep sleep", &CUserSystemData::m_BnWDT_DEPSLP},
    {"watchdog runs in standby", &CUserSystemData::m_BnWDT_STDBY},
    {"RAM parity off", &CUserSystemData::m_SRAM_Parity},
};

std::string hexOf(BYTE byte) {
    char text[3];
    std::snprintf(text, sizeof text, "%02X", static_cast<unsigned int>(byte));
    return text;
}

const char *accessText(BYTE fap) {
    if (fap == accessProtectionOff)
        return "off";
    return fap == highLevel ? "on, at the high level where the chip has levels" : "on";
}

std::string upperCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::toupper(c); });
    return text;
}

// The bytes that are not as erased, each by its number in the chip and its name.
std::vector<std::vector<Value>> rowsOf(CUserSystemData &data) {
    std::vector<std::vector<Value>> rows;
    for (const NamedOptionByte &one : namedOptionBytes(data.m_MCUSerials, data.m_nUserSystemDataLen)) {
        const BYTE value = optionByte(data, one.item, one.index);
        if (value != erased || one.item == OptionItem::fap || one.item == OptionItem::ssb)
            rows.push_back({Value(one.byte), Value(upperCase(one.name)), Value({value, hexOf(value)})});
    }
    return rows;
}

void checkComplements(const ImageRange &range, int length, Section &report) {
    QList<int> broken;
    const std::size_t pairs = std::min(range.bytes.size() / 2, static_cast<std::size_t>(length));
    for (std::size_t i = 0; i < pairs; ++i)
        if ((range.bytes[2 * i] ^ range.bytes[2 * i + 1]) != 0xFF)
            broken.append(static_cast<int>(i));
    if (!broken.isEmpty())
        report.finding(Mark::warning, "complements",
                       "bytes " + rangesText(broken) +
                           " do not stand beside their complements: the values alone count");
}

int lengthOf(const CDevice &device, int bid) {
    return CUserSystemData::GetUserSystemDataLength(seriesOf(device), bid, static_cast<int>(device.m_ISectorSize));
}

} // namespace

void tellOptions(CUserSystemData &data, Section &report) {
    report.fact("access protection",
                Value({data.FAP, std::string(accessText(data.FAP)) + " (" + hexOf(data.FAP) + ")"}));
    const QList<int> sectors = data.GetEPPMapSectorIndex(data.m_nSectorNums);
    report.fact("protected sectors", sectors.isEmpty() ? Value(Json::array(), "none") : sectorsValue(sectors));
    for (const Switch &one : switches)
        report.fact(one.name, data.*one.on);
    report.fact("bytes in all", data.m_nUserSystemDataLen);
    report.table("bytes that are not FF", {"byte", "name", "value"}, rowsOf(data));
}

void tellOptionsAsJob(CUserSystemData &data, Section &report) {
    std::string text = "[options]\n";
    std::map<std::string, std::string> lists;
    for (const NamedOptionByte &one : namedOptionBytes(data.m_MCUSerials, data.m_nUserSystemDataLen)) {
        const BYTE value = optionByte(data, one.item, one.index);
        if (value == erased || one.item == OptionItem::fap || one.item == OptionItem::epp)
            continue;
        std::string &list = lists[nameOf(one.item)];
        if (one.isOne)
            text += one.name + " = 0x" + hexOf(value) + '\n';
        else
            list += (list.empty() ? "" : ", ") + std::to_string(one.index) + " = 0x" + hexOf(value);
    }
    for (const auto &list : lists)
        if (!list.second.empty())
            text += list.first + " = { " + list.second + " }\n";
    if (const QList<int> sectors = data.GetEPPMapSectorIndex(data.m_nSectorNums); !sectors.isEmpty())
        text += "protect = \"" + rangesText(sectors) + "\"\n";
    report.plain("toml", text);
}

std::string optionBytesRefusal(const ImageRead &image, const CDevice *device) {
    if (!image.isRead)
        return image.refusal;
    if (image.ranges.empty())
        return "no byte in it";
    const std::size_t length = image.ranges.front().bytes.size();
    std::size_t least = shortestElement;
    if (device != nullptr)
        least = std::max(least, static_cast<std::size_t>(lengthOf(*device, 0)) * 2);
    if (length < least)
        return std::to_string(length) + " bytes are too few: " + std::to_string(least) + " are needed";
    return length > longestElement ? std::to_string(length) + " bytes are more than 4096" : "";
}

void tellOptionFile(const std::string &path, CDevice &device, int bid, TellOptions tell, Section &report) {
    const ImageRead image = readImage(path, false);
    const std::string refusal = optionBytesRefusal(image, &device);
    if (!refusal.empty())
        throw Refusal(notAcceptable, path + ": " + refusal);
    const ImageRange &range = image.ranges.front();
    if (image.ranges.size() > 1)
        report.finding(Mark::warning, "ranges", "only the first of " + std::to_string(image.ranges.size()) + " counts");
    CUserSystemData data(seriesOf(device), bid, &device, nullptr, 0);
    checkComplements(range, data.m_nUserSystemDataLen, report);
    std::vector<BYTE> bytes = range.bytes;
    data.SetElementData(bytes.data(), static_cast<quint32>(bytes.size()));
    tell(data, report);
}
