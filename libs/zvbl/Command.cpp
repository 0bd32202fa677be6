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

bool leavesCells(std::uint8_t opcode) {
    static constexpr std::uint8_t leaves[] = {wire::opGet,          wire::opGetVerRops,  wire::opGetId,
                                              wire::opRead,         wire::opFirmwareCrc, wire::opToolExchange,
                                              wire::opUserDataRead, wire::opSlibStatus};
    return std::find(std::begin(leaves), std::end(leaves), opcode) != std::end(leaves);
}

} // namespace zvbl
