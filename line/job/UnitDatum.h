#pragma once

#include <cstdint>
#include <string>

#include "line/job/Table.h"

enum class UnitValue { number, uid, time, order, text, supply };
enum class UnitForm { u32le, u32be, ascii, hex };

// What differs from unit to unit: so many bytes at an address.
struct UnitDatum {
    std::uint32_t at;
    UnitValue value;
    UnitForm form;
    std::uint32_t size; // bytes
    std::string series; // of the number, empty where there is none
    std::string text;
    std::string supply; // the name that the hook gives the value by
    Place place;        // of "at"

    std::uint64_t end() const { return std::uint64_t(at) + size; }
};
