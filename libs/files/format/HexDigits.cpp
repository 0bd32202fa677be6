#include "libs/files/format/HexDigits.h"

namespace files::hexdigits {

extern constexpr std::array<std::uint16_t, 65536> DecodeTable = makeDecodeTable();
extern constexpr std::array<std::uint16_t, 256> EncodeTable = makeEncodeTable();

} // namespace files::hexdigits
