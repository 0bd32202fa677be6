// The commands that have other groups on I2C.

#include <algorithm>

#include "libs/zvbl/wire/Wire.h"
#include "sim/bootloader/Bootloader.h"
#include "sim/bootloader/Groups.h"

namespace sim {

namespace {

const CommandRow &usualEraseExt() {
    const CommandTable &rows = fixedCommands();
    return *std::find_if(rows.begin(), rows.end(),
                         [](const CommandRow &row) { return row.opcode == wire::opEraseExt; });
}

// The count, or a special code, which stands alone as it does elsewhere.
Next countOrCode(Exchange &x, const Bytes &group) {
    const std::size_t count = number16(group, 0);
    if (count < wire::eraseBlock) {
        x.expect((count + 1) * 2 + 1, payload(group, 0));
        return x.goOn();
    }
    x.expect(5, payload(group, 0));
    return usualEraseExt().groups[0].act(x, group);
}

// The numbers, or after the code of a block its address.
Next numbersOrBlock(Exchange &x, const Bytes &group) {
    Bytes whole = x.told();
    if (number16(whole, 0) == wire::eraseBlock)
        return usualEraseExt().groups[1].act(x, group);
    whole.insert(whole.end(), group.begin(), group.end());
    return usualEraseExt().groups[0].act(x, whole);
}

std::size_t asTold(const Bytes &) {
    return 0;
}

} // namespace

const CommandTable &i2cCommands() {
    static const CommandTable rows = {
        {wire::opEraseExt,
         "ERASE_EXT",
         Guard::access,
         awaitGroups,
         {{exactly<3>, xorSound, countOrCode}, {asTold, xorSound, numbersOrBlock}}},
    };
    return rows;
}

} // namespace sim
