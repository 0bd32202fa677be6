#include "look/Value.h"

#include <cstdio>

namespace {

std::string shown(const Json &value) {
    if (value.is_string())
        return value.get<std::string>();
    if (value.is_boolean())
        return value.get<bool>() ? "yes" : "no";
    if (value.is_null())
        return "-";
    if (!value.is_array())
        return value.dump();
    std::string list;
    for (const Json &one : value)
        list += (list.empty() ? "" : ", ") + shown(one);
    return list;
}

} // namespace

Value Value::asRead(Json value) {
    std::string text = shown(value);
    return {std::move(value), std::move(text)};
}

Value addressValue(unsigned int address) {
    char text[9];
    std::snprintf(text, sizeof text, "%08X", address);
    return {address, text};
}
