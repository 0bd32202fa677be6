#include "libs/zvbl/Command.h"

#include <algorithm>
#include <iterator>

#include "libs/zvbl/wire/Wire.h"

namespace zvbl {

bool endsBootloader(std::uint8_t opcode) {
    static constexpr std::uint8_t ends[] = {wire::opGo,
                                            wire::opReset,
                                            wire::opEppProtect,
                                            wire::opEppUnprotect,
                                            wire::opAccessProtect,
                                            wire::opAccessProtectLevel,
                                            wire::opAccessUnprotect,
                                            wire::opEnableSlib,
                                            wire::opDisableSlib,
                                            wire::opUserDataWrite};
    return std::find(std::begin(ends), std::end(ends), opcode) != std::end(ends);
}

} // namespace zvbl
