#include "look/Records.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr std::size_t hexHead = 4; // length, offset, type
constexpr char byteOrderMark[] = "\xEF\xBB\xBF";

// How a format writes a record: what stands in front of its digits, and how many of them there are.
struct Shape {
    std::size_t mark;       // characters
    std::size_t leastBytes; // before its length is known
    std::uint8_t rightSum;  // of all bytes
};

Shape shapeOf(ImageFormat format) {
    return format == ImageFormat::intelHex ? Shape{1, hexHead + 1, 0} : Shape{2, 1, 0xFF};
}

int digitOf(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// The bytes behind the mark, up to the first character that is no digit.
std::vector<std::uint8_t> bytesOf(std::string_view line, std::size_t mark) {
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = mark; i + 1 < line.size() && digitOf(line[i]) >= 0 && digitOf(line[i + 1]) >= 0; i += 2)
        bytes.push_back(static_cast<std::uint8_t>(digitOf(line[i]) << 4 | digitOf(line[i + 1])));
    return bytes;
}

// Bytes of the whole record, checksum included, by its first ones.
std::size_t wantedBytes(const std::vector<std::uint8_t> &bytes, ImageFormat format) {
    return format == ImageFormat::intelHex ? hexHead + bytes[0] + 1 : std::size_t(1) + bytes[0];
}

std::size_t addressBytesOf(char type) {
    switch (type) {
    case '2':
    case '6':
    case '8': return 3;
    case '3':
    case '7': return 4;
    default: return 2;
    }
}

std::string typeFault(std::string_view line, const std::vector<std::uint8_t> &bytes, ImageFormat format) {
    if (format == ImageFormat::sRecord) {
        if (line[1] < '0' || line[1] > '9' || line[1] == '4')
            return "no record has this type";
        return bytes[0] < addressBytesOf(line[1]) + 1 ? "the record is too short for its address" : "";
    }
    static constexpr int lengths[] = {-1, 0, 2, 4, 2, 4};
    if (bytes[3] >= std::size(lengths))
        return "no record has this type";
    const int length = lengths[bytes[3]];
    return length >= 0 && length != bytes[0] ? "a record of this type has " + std::to_string(length) + " bytes" : "";
}

LineFault sumFault(const std::vector<std::uint8_t> &bytes, std::size_t wanted, const Shape &shape) {
    std::uint8_t sum = 0;
    for (std::size_t i = 0; i + 1 < wanted; ++i)
        sum = static_cast<std::uint8_t>(sum + bytes[i]);
    const auto right = static_cast<std::uint8_t>(shape.rightSum - sum);
    if (right == bytes[wanted - 1])
        return {};
    char text[64];
    std::snprintf(text, sizeof text, "the checksum is %02X, and %02X would be right",
                  static_cast<unsigned int>(bytes[wanted - 1]), static_cast<unsigned int>(right));
    return {shape.mark + 2 * wanted - 1, text};
}

bool isMarked(std::string_view line, ImageFormat format) {
    return !line.empty() && line[0] == (format == ImageFormat::intelHex ? ':' : 'S');
}

// Data of a HEX file: each byte by itself, as a segment wraps at its end.
void addHexData(std::vector<DataRecord> &records, std::size_t line, const std::vector<std::uint8_t> &bytes,
                std::uint32_t base, bool segmented) {
    const unsigned int offset = static_cast<unsigned int>(bytes[1] << 8 | bytes[2]);
    const std::size_t inPage = segmented ? std::min<std::size_t>(bytes[0], 0x10000 - offset) : bytes[0];
    const auto data = bytes.begin() + hexHead;
    const auto middle = data + static_cast<std::ptrdiff_t>(inPage);
    const auto end = data + bytes[0];
    if (middle != data)
        records.push_back({line, std::uint64_t(base) + offset, {data, middle}});
    if (end != middle)
        records.push_back({line, base, {middle, end}});
}

void addSRecordData(std::vector<DataRecord> &records, std::size_t line, char type,
                    const std::vector<std::uint8_t> &bytes) {
    if (type < '1' || type > '3')
        return;
    const std::size_t addressBytes = addressBytesOf(type);
    std::uint64_t address = 0;
    for (std::size_t i = 1; i <= addressBytes; ++i)
        address = address << 8 | bytes[i];
    const auto data = bytes.begin() + 1 + static_cast<std::ptrdiff_t>(addressBytes);
    const auto end = bytes.begin() + bytes[0];
    if (end != data)
        records.push_back({line, address, {data, end}});
}

} // namespace

LineFault faultOf(std::string_view line, ImageFormat format) {
    const Shape shape = shapeOf(format);
    if (!isMarked(line, format))
        return {1, format == ImageFormat::intelHex ? "a record begins with \":\"" : "a record begins with \"S\""};
    const std::vector<std::uint8_t> bytes = bytesOf(line, shape.mark);
    const std::size_t read = shape.mark + 2 * bytes.size();
    const bool isKnown = bytes.size() >= shape.leastBytes;
    const std::size_t wanted = isKnown ? wantedBytes(bytes, format) : shape.leastBytes;
    if (bytes.size() < wanted) {
        for (std::size_t i = read; i < line.size() && i < read + 2; ++i)
            if (digitOf(line[i]) < 0)
                return {i + 1, "\"" + std::string(1, line[i]) + "\" is no hexadecimal digit"};
        return {line.size() + 1, "the record breaks off"};
    }
    const std::string fault = typeFault(line, bytes, format);
    if (!fault.empty())
        return {format == ImageFormat::intelHex ? std::size_t(8) : std::size_t(2), fault};
    if (line.size() > shape.mark + 2 * wanted)
        return {shape.mark + 2 * wanted + 1, "something stands behind the record"};
    return sumFault(bytes, wanted, shape);
}

std::vector<std::string_view> linesOf(std::string_view text) {
    if (text.substr(0, 3) == byteOrderMark)
        text.remove_prefix(3);
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        const std::size_t last = line.find_last_not_of(" \t\r\x1A");
        lines.push_back(line.substr(0, last == std::string_view::npos ? 0 : last + 1));
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    }
    return lines;
}

std::vector<DataRecord> dataRecordsOf(std::string_view text, ImageFormat format) {
    std::vector<DataRecord> records;
    std::uint32_t base = 0;
    bool segmented = false;
    std::size_t number = 0;
    for (const std::string_view line : linesOf(text)) {
        ++number;
        if (line.empty())
            continue;
        if (!faultOf(line, format).reason.empty())
            return records;
        const std::vector<std::uint8_t> bytes = bytesOf(line, shapeOf(format).mark);
        if (format == ImageFormat::sRecord) {
            addSRecordData(records, number, line[1], bytes);
        } else if (bytes[3] == 0) {
            addHexData(records, number, bytes, base, segmented);
        } else if (bytes[3] == 2 || bytes[3] == 4) {
            segmented = bytes[3] == 2;
            base = static_cast<std::uint32_t>(bytes[4] << 8 | bytes[5]) << (segmented ? 4 : 16);
        }
    }
    return records;
}

std::vector<Contradiction> contradictionsOf(std::vector<DataRecord> records, std::size_t most) {
    std::vector<Contradiction> found;
    std::stable_sort(records.begin(), records.end(),
                     [](const DataRecord &a, const DataRecord &b) { return a.address < b.address; });
    const DataRecord *reaching = nullptr; // of those before, the one that reaches furthest
    for (const DataRecord &record : records) {
        const std::uint64_t end = reaching == nullptr ? 0 : reaching->address + reaching->bytes.size();
        for (std::uint64_t at = record.address; at < end && at < record.address + record.bytes.size(); ++at) {
            if (record.bytes[at - record.address] == reaching->bytes[at - reaching->address])
                continue;
            found.push_back({at, std::min(record.line, reaching->line), std::max(record.line, reaching->line)});
            if (found.size() == most)
                return found;
            break;
        }
        if (reaching == nullptr || record.address + record.bytes.size() > end)
            reaching = &record;
    }
    return found;
}
