#include "line/job/Options.h"

#include <stdexcept>

#include "line/job/SectorList.h"

namespace {

constexpr std::int64_t highestByte = 0xFF;

// What has a way of its own, which takes care of it.
void refuseProtection(const Table &table, const std::string &key) {
    if (key == "fap")
        table.placeOf(key).refuse("is set by finish.access");
    if (key == "epp")
        table.placeOf(key).refuse("is set by options.protect");
}

void readByte(Table &table, const std::string &key, const std::string &name, OptionBytes &options) {
    const auto value = static_cast<std::uint8_t>(table.number(key, 0, highestByte));
    options.bytes[name] = {value, table.placeOf(key)};
}

void readProtect(Table &table, OptionBytes &options) {
    options.protectPlace = table.placeOf("protect");
    try {
        options.protect = readSectors(table.text("protect"));
    } catch (const std::invalid_argument &failure) {
        options.protectPlace.refuse(failure.what());
    }
}

void readMany(Table table, const std::string &key, OptionBytes &options) {
    for (const std::string &number : table.names())
        readByte(table, number, key + number, options);
}

} // namespace

OptionBytes readOptions(Table table) {
    OptionBytes options;
    for (const std::string &key : table.names()) {
        refuseProtection(table, key);
        if (key == "protect")
            readProtect(table, options);
        else if (table.isTable(key))
            readMany(table.table(key), key, options);
        else
            readByte(table, key, key, options);
    }
    return options;
}
