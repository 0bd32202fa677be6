#include "libs/files/format/SRecord.h"

#include <algorithm>

#include "libs/files/format/HexDigits.h"
#include "libs/files/format/RecordWindow.h"

namespace files {

namespace {

// A record: 'S', a digit for the type, then as digit pairs the number of bytes that follow, an
// address of two to four bytes, the data and a checksum that makes the sum of all bytes 0xFF.
constexpr unsigned char mark = 'S';
constexpr std::size_t markLength = 2;
constexpr std::size_t maxAddress = 4;
constexpr std::size_t writtenData = 32;
constexpr std::size_t maxHeader = 32;

enum class Role { header, data, none, count, end };

struct Type {
    Role role;
    std::size_t addressBytes;
};

constexpr Type types[] = {{Role::header, 2}, {Role::data, 2},  {Role::data, 3}, {Role::data, 4}, {Role::none, 0},
                          {Role::count, 2},  {Role::count, 3}, {Role::end, 4},  {Role::end, 3},  {Role::end, 2}};

class Reader {
public:
    Reader(InputFile &file, RunCollector &runs) : m_window(file), m_runs(runs) {}

    Status read();
    std::uint64_t offset() const { return m_window.offset(); }

private:
    Status readRecord();
    Status take(Role role, std::uint32_t address, std::size_t length);

    RecordWindow m_window;
    RunCollector &m_runs;
    std::uint64_t m_dataRecords = 0;
    bool m_counted = false; // the last record was a right count
    bool m_ended = false;
};

Status Reader::read() {
    for (;;) {
        bool found = false;
        const Status moved = m_window.next(found);
        if (moved != Status::ok)
            return moved;
        if (!found)
            return m_ended || m_counted ? Status::ok : Status::badFormat;
        if ((m_ended || m_counted) && m_window.passTextEnd()) {
            m_ended = true;
            continue;
        }
        const Status taken = m_ended ? Status::badFormat : readRecord();
        if (taken != Status::ok)
            return taken;
    }
}

Status Reader::readRecord() {
    const unsigned char *text = m_window.begin();
    if (m_window.available() < markLength + 2 || text[0] != mark || text[1] < '0' || text[1] > '9')
        return Status::badFormat;
    const Type type = types[text[1] - '0'];
    unsigned sum = 0;
    BYTE count = 0;
    if (!decodeBytes(text + markLength, 1, &count, sum) || type.role == Role::none || count < type.addressBytes + 1)
        return Status::badFormat;
    const std::size_t characters = markLength + 2 + 2 * std::size_t(count);
    if (m_window.available() < characters)
        return Status::badFormat;

    text += markLength + 2;
    std::uint32_t address = 0;
    unsigned valid = hexdigits::validBit;
    for (std::size_t i = 0; i < type.addressBytes; ++i, text += 2) {
        const unsigned value = decodeByte(text);
        valid &= value;
        sum += value;
        address = address << 8 | (value & 0xFF);
    }
    // The checksum follows the data and is decoded with them.
    const std::size_t length = count - type.addressBytes - 1;
    const bool digits = decodeBytes(text, length + 1, m_runs.room(length + 1), sum) && valid;
    if (!digits || (sum & 0xFF) != 0xFF || !m_window.pass(characters))
        return Status::badFormat;
    return take(type.role, address, length);
}

// The record's data, if it has any, are in the room of m_runs.
Status Reader::take(Role role, std::uint32_t address, std::size_t length) {
    m_ended = role == Role::end;
    m_counted = role == Role::count && address == m_dataRecords;
    if (role == Role::header)
        return Status::ok;
    if (role != Role::data)
        return length == 0 && (m_ended || m_counted) ? Status::ok : Status::badFormat;
    ++m_dataRecords;
    return m_runs.commit(address, length);
}

Status writeRecord(AtomicFile &file, unsigned type, std::uint32_t address, const BYTE *data, std::size_t length) {
    static_assert(markLength + 2 * (1 + maxAddress + writtenData + 1) + 1 <= AtomicFile::maxLine,
                  "a line has its room");
    char *const line = file.line();
    const std::size_t addressBytes = types[type].addressBytes;
    BYTE head[1 + maxAddress] = {static_cast<BYTE>(addressBytes + length + 1)};
    for (std::size_t i = 0; i < addressBytes; ++i)
        head[1 + i] = static_cast<BYTE>(address >> 8 * (addressBytes - 1 - i));
    unsigned sum = 0;
    line[0] = mark;
    line[1] = static_cast<char>('0' + type);
    char *at = encodeBytes(head, 1 + addressBytes, line + markLength, sum);
    at = encodeBytes(data, length, at, sum);
    const BYTE checksum = static_cast<BYTE>(~sum);
    at = encodeBytes(&checksum, 1, at, sum);
    *at++ = '\n';
    return file.addLine(static_cast<std::size_t>(at - line));
}

Status writeHeader(AtomicFile &file, const std::string &name) {
    std::string base = name.substr(name.rfind('/') + 1);
    base.resize(std::min(base.size(), maxHeader));
    return writeRecord(file, 0, 0, reinterpret_cast<const BYTE *>(base.data()), base.size());
}

} // namespace

Status readSRecord(InputFile &file, std::uint32_t, RunCollector &runs) {
    // Each byte takes more than two characters.
    runs.reserve(static_cast<std::size_t>(std::min<std::uint64_t>(file.size() / 2, maxImageSize)));
    Reader reader(file, runs);
    const Status status = reader.read();
    file.stopAt(reader.offset());
    return status;
}

Status writeSRecord(const std::vector<const Element *> &elements, const std::string &name, AtomicFile &file) {
    const Status headed = writeHeader(file, name);
    if (headed != Status::ok)
        return headed;
    for (const Element *element : elements) {
        for (std::uint32_t done = 0; done < element->length;) {
            const std::uint32_t length = std::min(element->length - done, std::uint32_t(writtenData));
            const Status written = writeRecord(file, 3, element->address + done, element->bytes.get() + done, length);
            if (written != Status::ok)
                return written;
            done += length;
        }
    }
    return writeRecord(file, 7, 0, nullptr, 0);
}

} // namespace files
