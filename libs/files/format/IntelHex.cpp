#include "libs/files/format/IntelHex.h"

#include <algorithm>

#include "libs/files/format/HexDigits.h"
#include "libs/files/format/RecordWindow.h"

namespace files {

namespace {

// A record: ':', then as digit pairs the data length, a 16-bit offset, the type, the data and a
// checksum that makes the sum of all bytes 0.
constexpr unsigned char mark = ':';
constexpr std::size_t headBytes = 4;
constexpr std::size_t maxData = 255;
constexpr std::size_t writtenData = 32;
constexpr std::uint32_t pageSize = 0x10000;

enum Type { dataRecord, endRecord, segmentBase, segmentStart, linearBase, linearStart, typeCount };

// The data length that each type has; AnyLength for data.
constexpr int anyLength = -1;
constexpr int typeLength[typeCount] = {anyLength, 0, 2, 4, 2, 4};

class Reader {
public:
    Reader(InputFile &file, RunCollector &runs) : m_window(file), m_runs(runs) {}

    Status read();
    std::uint64_t offset() const { return m_window.offset(); }

private:
    Status readRecord();
    Status takeData(unsigned offset, const BYTE *data, std::size_t length);
    void takeBase(unsigned type, const BYTE *data);

    RecordWindow m_window;
    RunCollector &m_runs;
    std::uint32_t m_base = 0;
    bool m_segmented = false;
    bool m_ended = false;
};

Status Reader::read() {
    for (;;) {
        bool found = false;
        const Status moved = m_window.next(found);
        if (moved != Status::ok)
            return moved;
        if (!found)
            return m_ended ? Status::ok : Status::badFormat;
        if (m_ended && m_window.passTextEnd())
            continue;
        const Status taken = m_ended ? Status::badFormat : readRecord();
        if (taken != Status::ok)
            return taken;
    }
}

Status Reader::readRecord() {
    const unsigned char *text = m_window.begin();
    unsigned char head[headBytes];
    unsigned sum = 0;
    if (m_window.available() < 1 + 2 * headBytes || text[0] != mark || !decodeBytes(text + 1, headBytes, head, sum))
        return Status::badFormat;
    const std::size_t length = head[0];
    const unsigned type = head[3];
    const std::size_t characters = 1 + 2 * (headBytes + length + 1);
    if (m_window.available() < characters || type >= typeCount ||
        (typeLength[type] != anyLength && typeLength[type] != static_cast<int>(length)))
        return Status::badFormat;

    // The checksum follows the data and is decoded with them.
    BYTE *data = m_runs.room(length + 1);
    if (!decodeBytes(text + 1 + 2 * headBytes, length + 1, data, sum) || (sum & 0xFF) != 0 ||
        !m_window.pass(characters))
        return Status::badFormat;
    if (type == dataRecord)
        return takeData(static_cast<unsigned>(head[1] << 8 | head[2]), data, length);
    takeBase(type, data);
    m_ended = type == endRecord;
    return Status::ok;
}

Status Reader::takeData(unsigned offset, const BYTE *data, std::size_t length) {
    const std::size_t inPage = pageSize - offset;
    if (!m_segmented || length <= inPage)
        return m_runs.commit(std::uint64_t(m_base) + offset, length);
    BYTE wrapped[maxData];
    std::copy(data + inPage, data + length, wrapped);
    const Status taken = m_runs.commit(std::uint64_t(m_base) + offset, inPage);
    if (taken != Status::ok)
        return taken;
    std::copy(wrapped, wrapped + (length - inPage), m_runs.room(length - inPage));
    return m_runs.commit(m_base, length - inPage);
}

void Reader::takeBase(unsigned type, const BYTE *data) {
    if (type != segmentBase && type != linearBase)
        return;
    m_segmented = type == segmentBase;
    m_base = static_cast<std::uint32_t>(data[0] << 8 | data[1]) << (m_segmented ? 4 : 16);
}

Status writeRecord(AtomicFile &file, unsigned type, unsigned offset, const BYTE *data, std::size_t length) {
    static_assert(1 + 2 * (headBytes + writtenData + 1) + 1 <= AtomicFile::maxLine, "a line has its room");
    char *const line = file.line();
    const BYTE head[headBytes] = {static_cast<BYTE>(length), static_cast<BYTE>(offset >> 8), static_cast<BYTE>(offset),
                                  static_cast<BYTE>(type)};
    unsigned sum = 0;
    line[0] = mark;
    char *at = encodeBytes(head, headBytes, line + 1, sum);
    at = encodeBytes(data, length, at, sum);
    const BYTE checksum = static_cast<BYTE>(0 - sum);
    at = encodeBytes(&checksum, 1, at, sum);
    *at++ = '\n';
    return file.addLine(static_cast<std::size_t>(at - line));
}

} // namespace

Status readIntelHex(InputFile &file, std::uint32_t, RunCollector &runs) {
    // Each byte takes more than two characters.
    runs.reserve(static_cast<std::size_t>(std::min<std::uint64_t>(file.size() / 2, maxImageSize)));
    Reader reader(file, runs);
    const Status status = reader.read();
    file.stopAt(reader.offset());
    return status;
}

Status writeIntelHex(const std::vector<const Element *> &elements, const std::string &, AtomicFile &file) {
    constexpr std::uint32_t noPage = pageSize;
    std::uint32_t page = noPage;
    for (const Element *element : elements) {
        for (std::uint32_t done = 0; done < element->length;) {
            const std::uint32_t address = element->address + done;
            const std::uint32_t offset = address % pageSize;
            if (address / pageSize != page) {
                page = address / pageSize;
                const BYTE upper[] = {static_cast<BYTE>(page >> 8), static_cast<BYTE>(page)};
                const Status moved = writeRecord(file, linearBase, 0, upper, sizeof upper);
                if (moved != Status::ok)
                    return moved;
            }
            const std::uint32_t length =
                std::min({element->length - done, pageSize - offset, std::uint32_t(writtenData)});
            const Status written = writeRecord(file, dataRecord, offset, element->bytes.get() + done, length);
            if (written != Status::ok)
                return written;
            done += length;
        }
    }
    return writeRecord(file, endRecord, 0, nullptr, 0);
}

} // namespace files
