#pragma once

#include <string>
#include <vector>

#include "usersystemdata/OptionLayout.h"

// An option byte by its name: "ssb", "data0", "bank3key7".
struct NamedOptionByte {
    std::string name;
    OptionItem item;
    int byte;   // its number in the compact form
    int index;  // its number in the item
    bool isOne; // the item has no other
};

// "data"
const char *nameOf(OptionItem item);

// All of a family, a MCUSERIALS value, that a compact form of so many bytes has, by rising byte number.
std::vector<NamedOptionByte> namedOptionBytes(int family, int compactLength);

// The one of this name; null where there is none.
const NamedOptionByte *named(const std::vector<NamedOptionByte> &names, const std::string &name);
