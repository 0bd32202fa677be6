#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "line/job/Table.h"

// What becomes of the option bytes. Those that are not named stay as they are.
struct OptionBytes {
    struct Value {
        std::uint8_t value;
        Place place;
    };
    std::map<std::string, Value> bytes; // by their names: usersystemdata/OptionNames.h
    std::vector<int> protect;           // sectors under erase and program protection, rising
    Place protectPlace;
};

// Reads [options].
OptionBytes readOptions(Table table);
