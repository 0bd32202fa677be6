#include "look/OtpFacts.h"

#include <sys/stat.h>

#include "app/OtpFile.h"
#include "device/Device.h"
#include "device/Families.h"

namespace {

constexpr unsigned int recordLength = 38;
constexpr unsigned int blockLength = sizeof(OTP_CONFIG_INFO::pData);

unsigned long long sizeOf(const std::string &path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0 ? static_cast<unsigned long long>(info.st_size) : 0;
}

std::string hexOf(const BYTE *data, unsigned int length) {
    static const char digits[] = "0123456789ABCDEF";
    std::string text;
    for (unsigned int i = 0; i < length; ++i) {
        text += digits[data[i] >> 4];
        text += digits[data[i] & 15];
    }
    return text;
}

// Where the write lands, in words; an error where that is outside of the chip's OTP data.
std::string placeOf(const OtpWrite &write, const OTP_CONFIG_INFO &record, const OtpArea &area, Section &report) {
    const unsigned int blocks = static_cast<unsigned int>(area.dataLength) / blockLength;
    const std::string number = "record " + std::to_string(write.record);
    if (area.dataLength == 0)
        return "no OTP data on this chip";
    if (write.isLock) {
        const auto locked = static_cast<unsigned int>(write.record);
        if (locked >= blocks)
            report.finding(Mark::error, "lock", number + " locks a block that is not there");
        else if (record.PartAddress != locked * blockLength)
            report.finding(Mark::error, "lock",
                           number + " locks block " + std::to_string(locked) + ", not the block of its address",
                           "bring the records into the order of the blocks, and leave none out");
        return "lock of block " + std::to_string(locked);
    }
    const unsigned long long end = static_cast<unsigned long long>(record.PartAddress) + blockLength;
    if (end > static_cast<unsigned long long>(area.dataLength)) {
        report.finding(Mark::error, "outside",
                       number + " writes " + addressValue(write.address).text + ", which is not in the OTP data");
        return "outside of the OTP data";
    }
    if (record.PartAddress % blockLength != 0)
        report.finding(Mark::warning, "crossing", number + " begins inside of a block");
    return "block " + std::to_string(record.PartAddress / blockLength);
}

void checkLength(unsigned long long bytes, int taken, Section &report) {
    const unsigned long long written = bytes / recordLength;
    if (written > static_cast<unsigned long long>(taken))
        report.finding(Mark::error, "lost records",
                       std::to_string(bytes) + " bytes hold " + std::to_string(written) + " records, and " +
                           std::to_string(taken) + " of them count: the number is the size divided by 40",
                       "put two bytes for each record at the end");
    if (taken == 0)
        report.finding(Mark::error, "does nothing", "no record: nothing is written, and the status is 0");
}

} // namespace

bool tellOtp(const std::string &path, const CDevice *device, Section &report) {
    if (OTPProjectFileOpen(path) == 0)
        return false;
    QList<OTP_CONFIG_INFO> &records = m_listWriteOTPData;
    const OtpArea area = device == nullptr ? OtpArea{0, 0, 0, 0} : familyOf(*device).otp;
    report.fact("file", path);
    report.fact("records", records.size());
    checkLength(sizeOf(path), records.size(), report);
    if (device != nullptr && area.dataLength == 0)
        report.finding(Mark::error, "no otp data",
                       device->m_StrTarget + " has none: places are addresses as they stand");
    std::vector<std::vector<Value>> rows;
    bool locks = false;
    for (const OtpWrite &write : otpWrites(records, area.dataAddress, area.lockAddress)) {
        const std::string place = device == nullptr ? "" : placeOf(write, records[write.record], area, report);
        rows.push_back({Value(write.record), addressValue(write.address), Value(write.length), Value(place),
                        Value(hexOf(write.data, write.length))});
        locks = locks || write.isLock;
    }
    if (!rows.empty())
        report.finding(Mark::warning, "for ever",
                       locks ? "blocks that are written and locked can't be changed again"
                             : "a block that is written can't be written again");
    report.table("writes", {"record", "address", "bytes", "place", "data"}, std::move(rows));
    return true;
}
