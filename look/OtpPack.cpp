#include "look/OtpPack.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <sstream>

#include "device/Device.h"
#include "device/Families.h"
#include "libs/files/AtomicFile.h"
#include "look/Status.h"
#include "programs/FileBytes.h"

namespace {

constexpr std::size_t blockLength = 32;
constexpr std::size_t longestTable = 1 << 20;
constexpr unsigned int mostBlocks = 128; // that any chip has
constexpr char doIt = 0;
constexpr char leaveIt = 1;

struct Block {
    bool isWritten = false;
    bool isLocked = false;
    std::string bytes = std::string(blockLength, '\xFF');
};

using Blocks = std::map<unsigned int, Block>;

// One line of the table, with what is needed to complain about it.
class Line {
public:
    Line(const std::string &path, std::size_t number, const std::string &text)
        : m_where(path + ": line " + std::to_string(number) + ": "), m_text(withoutComment(text)) {}

    bool isEmpty() const { return m_text.find_first_not_of(" \t\r") == std::string::npos; }

    void read(Blocks &blocks, unsigned int count) {
        const unsigned int number = readNumber(count);
        if (blocks.count(number) != 0)
            refuse("block " + std::to_string(number) + " stands here for the second time");
        Block block;
        readData(block);
        const std::string rest = word();
        block.isLocked = rest == "lock";
        if ((!rest.empty() && !block.isLocked) || !word().empty())
            refuse("behind the data stands \"lock\" or nothing");
        if (!block.isWritten && !block.isLocked)
            refuse("\"-\" without \"lock\" does nothing");
        blocks[number] = block;
    }

private:
    [[noreturn]] void refuse(const std::string &why) const { throw Refusal(notAcceptable, m_where + why); }

    // A "#" inside of quotes is a part of the text.
    static std::string withoutComment(const std::string &text) {
        bool quoted = false;
        for (std::size_t i = 0; i < text.size(); ++i) {
            quoted = quoted != (text[i] == '"');
            if (text[i] == '#' && !quoted)
                return text.substr(0, i);
        }
        return text;
    }

    std::string word() {
        const std::size_t first = std::min(m_text.find_first_not_of(" \t\r", m_at), m_text.size());
        m_at = std::min(m_text.find_first_of(" \t\r", first), m_text.size());
        return m_text.substr(first, m_at - first);
    }

    unsigned int readNumber(unsigned int count) {
        const std::string text = word();
        if (text.empty() || text.size() > 4 || text.find_first_not_of("0123456789") != std::string::npos)
            refuse("a line begins with the number of a block, not with \"" + text + "\"");
        const auto number = static_cast<unsigned int>(std::stoul(text));
        if (number >= count)
            refuse("block " + text + " is not there: the last one is " + std::to_string(count - 1));
        return number;
    }

    void readData(Block &block) {
        const std::size_t first = std::min(m_text.find_first_not_of(" \t", m_at), m_text.size());
        if (first < m_text.size() && m_text[first] == '"') {
            const std::size_t end = m_text.find('"', first + 1);
            if (end == std::string::npos)
                refuse("the text has no quote at its end");
            m_at = end + 1;
            take(block, m_text.substr(first + 1, end - first - 1));
            return;
        }
        const std::string text = word();
        if (text != "-")
            take(block, bytesOf(text));
    }

    std::string bytesOf(const std::string &digits) const {
        if (digits.empty() || digits.size() % 2 != 0 ||
            digits.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
            refuse("the data are pairs of hexadecimal digits, a text in quotes or \"-\"");
        std::string bytes;
        for (std::size_t i = 0; i < digits.size(); i += 2)
            bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
        return bytes;
    }

    void take(Block &block, const std::string &bytes) const {
        if (bytes.empty() || bytes.size() > blockLength)
            refuse("a block has 1 to 32 bytes, not " + std::to_string(bytes.size()));
        std::copy(bytes.begin(), bytes.end(), block.bytes.begin());
        block.isWritten = true;
    }

    const std::string m_where;
    const std::string m_text;
    std::size_t m_at = 0;
};

std::string recordOf(unsigned int number, const Block &block) {
    const std::uint32_t place = number * static_cast<std::uint32_t>(blockLength);
    std::string record;
    for (int shift = 24; shift >= 0; shift -= 8)
        record += static_cast<char>(place >> shift);
    record += block.bytes;
    record += block.isLocked ? doIt : leaveIt;
    record += block.isWritten ? doIt : leaveIt;
    return record;
}

std::string fileOf(const Blocks &blocks) {
    std::string records;
    const unsigned int count = blocks.rbegin()->first + 1;
    for (unsigned int number = 0; number < count; ++number) {
        const auto found = blocks.find(number);
        records += recordOf(number, found == blocks.end() ? Block() : found->second);
    }
    return records + std::string(2 * std::size_t(count), '\xFF');
}

unsigned int blocksOf(const CDevice *device) {
    if (device == nullptr)
        return mostBlocks;
    const int length = familyOf(*device).otp.dataLength;
    if (length == 0)
        throw Refusal(notAcceptable, device->m_StrTarget + " has no OTP data");
    return static_cast<unsigned int>(length) / static_cast<unsigned int>(blockLength);
}

void save(const std::string &path, const std::string &bytes) {
    files::AtomicFile file;
    files::Status status = file.create(path.c_str());
    if (status == files::Status::ok)
        status = file.write(bytes.data(), bytes.size());
    if (status == files::Status::ok)
        status = file.commit();
    if (status != files::Status::ok)
        throw Refusal(notAcceptable, path + ": it can't be written");
}

} // namespace

void packOtp(const std::string &table, const std::string &output, const CDevice *device) {
    const unsigned int count = blocksOf(device);
    std::istringstream text(bytesOfFile(table, longestTable));
    Blocks blocks;
    std::size_t number = 0;
    for (std::string line; std::getline(text, line);) {
        Line one(table, ++number, line);
        if (!one.isEmpty())
            one.read(blocks, count);
    }
    if (blocks.empty())
        throw Refusal(notAcceptable, table + ": no block in it");
    save(output, fileOf(blocks));
}
