#include "line/job/Otp.h"

#include <algorithm>

#include "programs/Text.h"

namespace {

constexpr std::int64_t lastBlock = 127; // of any chip
constexpr std::size_t wordDigits = 8;

std::string readBytes(Table &table) {
    const std::string digits = table.text("hex");
    if (digits.find_first_not_of("0123456789abcdefABCDEF") != digits.npos || digits.size() % wordDigits != 0 ||
        digits.size() > 2 * OtpBlock::size)
        table.placeOf("hex").refuse("must be the hexadecimal digits of 4, 8 and up to 32 bytes");
    return bytesOfHex(digits);
}

OtpBlock readBlock(Table &table) {
    OtpBlock block{};
    block.number = static_cast<int>(table.number("block", 0, lastBlock));
    block.place = table.placeOf("block");
    if (table.has("hex"))
        block.bytes = readBytes(table);
    block.lock = table.flagOr("lock", false);
    if (block.bytes.empty() && !block.lock)
        block.place.refuse("is neither written nor locked");
    table.finish();
    return block;
}

} // namespace

std::vector<OtpBlock> readOtp(Table &job) {
    std::vector<OtpBlock> blocks;
    for (Table &table : job.tables("otp"))
        blocks.push_back(readBlock(table));
    std::stable_sort(blocks.begin(), blocks.end(),
                     [](const OtpBlock &a, const OtpBlock &b) { return a.number < b.number; });
    for (std::size_t i = 1; i < blocks.size(); ++i)
        if (blocks[i].number == blocks[i - 1].number)
            blocks[i].place.refuse("is the block of line " + std::to_string(blocks[i - 1].place.line) + " again");
    return blocks;
}
