#include "libs/files/format/HexDigits.h"

namespace files::hexdigits {

extern constexpr std::array<std::uint16_t, 65536> decodeTable = makeDecodeTable();
extern constexpr std::array<std::uint16_t, 256> encodeTable = makeEncodeTable();

} // namespace files::hexdigits
