#pragma once

#include <nlohmann/json.hpp>
#include <string>

// Keys stay in the order in which they were given.
using Json = nlohmann::ordered_json;

// As it is printed: on one line, or with so many spaces for each level. What is no UTF-8 is replaced, and control
// characters are escaped, those too that JSON itself lets stand.
std::string printed(const Json &json, int indentation = -1);
