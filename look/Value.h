#pragma once

#include <string>
#include <type_traits>
#include <utility>

#include "programs/Json.h"

// One value: what JSON holds, and how a person reads it.
struct Value {
    Json json;
    std::string text;

    // A person reads it as it is: a text without quotes, a number in decimal, "yes" or "no", a list with commas.
    template <typename Plain, typename = std::enable_if_t<!std::is_same_v<std::decay_t<Plain>, Value>>>
    Value(Plain &&value) : Value(asRead(Json(std::forward<Plain>(value)))) {}
    Value(Json value, std::string shown) : json(std::move(value)), text(std::move(shown)) {}

private:
    static Value asRead(Json value);
};

// Eight upper-case hexadecimal digits; a number in JSON.
Value addressValue(unsigned int address);

enum class Mark { good, note, warning, error };
