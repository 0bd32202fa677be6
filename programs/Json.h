#pragma once

#include <nlohmann/json.hpp>

// Keys stay in the order in which they were given.
using Json = nlohmann::ordered_json;
