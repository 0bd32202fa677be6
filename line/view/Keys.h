#pragma once

#include <cstddef>
#include <optional>

// The keys by which an operator speaks of a nest: one for each, in the order of the station file: 1 to 9, 0, a to z, A
// to Z, "." and "-".
char keyOfNest(std::size_t nest);

// The nest that a key stands for; none for any other key.
std::optional<std::size_t> nestOfKey(char key);
