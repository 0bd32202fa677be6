#include "line/view/Keys.h"

#include <string_view>

namespace {

constexpr std::string_view keys = "1234567890abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ.-";

} // namespace

char keyOfNest(std::size_t nest) {
    return keys.at(nest);
}

std::optional<std::size_t> nestOfKey(char key) {
    const std::size_t nest = keys.find(key);
    return nest == std::string_view::npos ? std::nullopt : std::optional(nest);
}
