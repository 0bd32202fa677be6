// Most changes of a text record break its checksum, and a reader looks no further. After every other change the
// checksums are made right, so that what stands behind them is reached too.

#include <algorithm>
#include <cstring>

#include "tests/fuzz/Target.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t *data, std::size_t size, std::size_t room);

namespace {

constexpr char digits[] = "0123456789ABCDEF";

int digitOf(std::uint8_t c) {
    const char *const place = c == 0 ? nullptr : std::strchr(digits, c);
    return place ? static_cast<int>(place - digits) : -1;
}

// Sets the last two of the digits between, so that all bytes together make the sum; leaves alone what is no record.
void repair(std::uint8_t *begin, const std::uint8_t *end, unsigned wanted) {
    if ((end - begin) % 2 != 0 || end - begin < 4)
        return;
    unsigned sum = 0;
    for (std::uint8_t *at = begin; at != end; at += 2) {
        const int high = digitOf(at[0]);
        const int low = digitOf(at[1]);
        if (high < 0 || low < 0)
            return;
        if (at + 2 == end) {
            const unsigned right = (wanted - sum) & 0xFF;
            at[0] = static_cast<std::uint8_t>(digits[right >> 4]);
            at[1] = static_cast<std::uint8_t>(digits[right & 15]);
            return;
        }
        sum += static_cast<unsigned>(16 * high + low);
    }
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t *data, std::size_t size, std::size_t room, unsigned seed) {
    const std::size_t length = LLVMFuzzerMutate(data, size, room);
    if (seed % 2 == 0)
        return length;
    std::uint8_t *const end = data + length;
    for (std::uint8_t *line = data; line != end;) {
        std::uint8_t *const lineEnd = std::find_if(line, end, [](std::uint8_t c) { return c == '\n' || c == '\r'; });
        if (line != lineEnd && *line == ':')
            repair(line + 1, lineEnd, 0);
        else if (lineEnd - line > 2 && *line == 'S')
            repair(line + 2, lineEnd, 0xFF);
        line = std::find_if_not(lineEnd, end, [](std::uint8_t c) { return c == '\n' || c == '\r'; });
    }
    return length;
}
