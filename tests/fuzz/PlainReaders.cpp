#include "tests/fuzz/PlainReaders.h"

namespace fuzz {

namespace {

// A text that is read from its front.
class Text {
public:
    explicit Text(const std::string &text) : m_text(text) {
        if (text.rfind("\xEF\xBB\xBF", 0) == 0) // a byte order mark
            m_at = 3;
    }

    bool atEnd() const { return m_at == m_text.size(); }
    char next() { return atEnd() ? '\0' : m_text[m_at++]; }
    char peek() const { return atEnd() ? '\0' : m_text[m_at]; }

    static bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
    void passBlanks() {
        while (!atEnd() && isBlank(peek()))
            ++m_at;
    }

    // Whether a record may end here: an old editor's Ctrl-Z counts as the end of the text.
    bool atRecordEnd() const { return atEnd() || isBlank(peek()) || peek() == '\x1A'; }

    // Two digits; nothing where they are none.
    std::optional<unsigned> byte() {
        const int high = digit(next());
        const int low = digit(next());
        if (high < 0 || low < 0)
            return std::nullopt;
        return static_cast<unsigned>(16 * high + low);
    }

    // As many bytes; nothing where one of them is none.
    std::optional<std::vector<unsigned>> bytes(std::size_t count) {
        std::vector<unsigned> values;
        for (std::size_t i = 0; i < count; ++i) {
            const std::optional<unsigned> value = byte();
            if (!value)
                return std::nullopt;
            values.push_back(*value);
        }
        return values;
    }

private:
    static int digit(char c) {
        if (c >= '0' && c <= '9')
            return c - '0';
        if (c >= 'A' && c <= 'F')
            return c - 'A' + 10;
        return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
    }

    const std::string &m_text;
    std::size_t m_at = 0;
};

unsigned sumOf(const std::vector<unsigned> &bytes) {
    unsigned sum = 0;
    for (const unsigned byte : bytes)
        sum += byte;
    return sum & 0xFF;
}

// False: past 32 bits, or the address holds another byte already.
bool put(Cells &cells, std::uint64_t address, unsigned byte) {
    if (address > 0xFFFFFFFF)
        return false;
    const auto [place, isNew] = cells.emplace(address, static_cast<std::uint8_t>(byte));
    return isNew || place->second == byte;
}

struct HexReader {
    Cells cells;
    std::uint64_t base = 0;
    bool segmented = false;
    bool ended = false;

    bool data(unsigned offset, const std::vector<unsigned> &record) {
        const unsigned length = record[0];
        // Not even an empty record may stand past the last address.
        for (unsigned i = 0; i < length; ++i) {
            const std::uint64_t at = segmented ? (offset + i) % 0x10000 : std::uint64_t(offset) + i;
            if (!put(cells, base + at, record[4 + i]))
                return false;
        }
        return true;
    }

    bool record(Text &text) {
        if (text.next() != ':')
            return false;
        const std::optional<unsigned> length = text.byte();
        if (!length)
            return false;
        const auto rest = text.bytes(*length + 4);
        if (!rest || !text.atRecordEnd())
            return false;
        std::vector<unsigned> record{*length};
        record.insert(record.end(), rest->begin(), rest->end());
        if (sumOf(record) != 0)
            return false;
        const unsigned offset = record[1] * 256 + record[2];
        switch (record[3]) {
        case 0: return data(offset, record);
        case 1: ended = true; return *length == 0;
        case 2:
            segmented = true;
            base = *length == 2 ? (record[4] * 256 + record[5]) * 16 : 0;
            return *length == 2;
        case 4:
            segmented = false;
            base = *length == 2 ? std::uint64_t(record[4] * 256 + record[5]) * 65536 : 0;
            return *length == 2;
        case 3:
        case 5: return *length == 4;
        default: return false;
        }
    }
};

struct SRecordReader {
    Cells cells;
    std::uint64_t dataRecords = 0;
    bool counted = false;
    bool ended = false;

    bool data(std::uint64_t address, const std::vector<unsigned> &bytes) {
        ++dataRecords;
        for (const unsigned byte : bytes)
            if (!put(cells, address++, byte))
                return false;
        return true;
    }

    bool record(Text &text) {
        if (text.next() != 'S')
            return false;
        const char type = text.next();
        if (type < '0' || type > '9' || type == '4')
            return false;
        const unsigned addressBytes[] = {2, 2, 3, 4, 0, 2, 3, 4, 3, 2};
        const unsigned addressLength = addressBytes[type - '0'];
        const std::optional<unsigned> count = text.byte();
        if (!count || *count < addressLength + 1)
            return false;
        const auto rest = text.bytes(*count);
        if (!rest || !text.atRecordEnd())
            return false;
        std::vector<unsigned> all(*rest);
        all.push_back(*count);
        if (sumOf(all) != 0xFF)
            return false;
        std::uint64_t address = 0;
        for (unsigned i = 0; i < addressLength; ++i)
            address = address * 256 + (*rest)[i];
        const std::vector<unsigned> bytes(rest->begin() + addressLength, rest->end() - 1);
        counted = false;
        if (type == '0')
            return true;
        if (type <= '3')
            return data(address, bytes);
        if (type <= '6')
            counted = address == dataRecords;
        else
            ended = true;
        return bytes.empty() && (counted || ended);
    }
};

bool isDone(const HexReader &reader) {
    return reader.ended;
}

bool isDone(const SRecordReader &reader) {
    return reader.ended || reader.counted;
}

template <typename Reader>
std::optional<Cells> read(const std::string &content) {
    Text text(content);
    Reader reader;
    for (;;) {
        text.passBlanks();
        if (text.atEnd())
            return isDone(reader) ? std::optional<Cells>(reader.cells) : std::nullopt;
        if (isDone(reader) && text.peek() == '\x1A') {
            text.next();
            reader.ended = true;
        } else if (reader.ended || !reader.record(text)) {
            return std::nullopt;
        }
    }
}

} // namespace

std::optional<Cells> readHexPlainly(const std::string &text) {
    return read<HexReader>(text);
}

std::optional<Cells> readSRecordPlainly(const std::string &text) {
    return read<SRecordReader>(text);
}

} // namespace fuzz
