#include "programs/Text.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace {

// Characters of two bytes of UTF-8 and more that are not harmless, from the first to the last of a row.
struct Controls {
    std::string_view first;
    std::string_view last;
};
constexpr Controls longControls[] = {
    {"\xC2\x80", "\xC2\x9F"},
    // Those that turn the direction of a text round.
    {"\xD8\x9C", "\xD8\x9C"},
    {"\xE2\x80\x8E", "\xE2\x80\x8F"},
    {"\xE2\x80\xAA", "\xE2\x80\xAE"},
    {"\xE2\x81\xA6", "\xE2\x81\xA9"},
};

bool isPlain(char c) {
    return c >= ' ' && c < '\x7F';
}

// What is not harmless at the beginning of a text; empty where all is well there.
std::string_view controlOf(std::string_view text) {
    const auto first = static_cast<unsigned char>(text.front());
    if (first < ' ' || first == 0x7F)
        return text.substr(0, 1);
    for (const Controls &controls : longControls) {
        const std::string_view piece = text.substr(0, controls.first.size());
        if (piece >= controls.first && piece <= controls.last)
            return piece;
    }
    return {};
}

template <class Replace>
std::string replaced(const std::string &text, Replace replace) {
    std::string all;
    for (std::string_view rest = text; !rest.empty();) {
        const auto plain = static_cast<std::size_t>(std::find_if_not(rest.begin(), rest.end(), isPlain) - rest.begin());
        all += rest.substr(0, plain);
        rest.remove_prefix(plain);
        if (rest.empty())
            break;
        const std::string_view control = controlOf(rest);
        all += control.empty() ? std::string(1, rest.front()) : replace(control);
        rest.remove_prefix(std::max<std::size_t>(control.size(), 1));
    }
    return all;
}

// As JSON writes a character of up to three bytes of UTF-8 in ASCII.
std::string jsonEscape(std::string_view character) {
    constexpr unsigned ofFirst[] = {0x7F, 0x1F, 0x0F};
    unsigned code = static_cast<unsigned char>(character.front()) & ofFirst[character.size() - 1];
    for (const char next : character.substr(1))
        code = code << 6 | (static_cast<unsigned char>(next) & 0x3FU);
    const char bytes[] = {static_cast<char>(code >> 8), static_cast<char>(code)};
    return "\\u" + hexOf(bytes, sizeof bytes);
}

} // namespace

std::string harmless(const std::string &text) {
    return replaced(text, [](std::string_view) { return std::string("?"); });
}

bool isHarmless(const std::string &text) {
    return harmless(text) == text;
}

// The line ends between the values of JSON stand; there are none in them.
std::string harmlessJson(const std::string &json) {
    const auto has = [&](char byte) { return json.find(byte) != json.npos; };
    const bool mayHold = has('\x7F') || std::any_of(std::begin(longControls), std::end(longControls),
                                                    [&](const Controls &row) { return has(row.first.front()); });
    if (!mayHold) // each record of an export: quicker than byte by byte
        return json;
    return replaced(json, [](std::string_view control) {
        return static_cast<unsigned char>(control.front()) < ' ' ? std::string(control) : jsonEscape(control);
    });
}

std::string hexOf(const void *bytes, std::size_t length) {
    constexpr char digits[] = "0123456789abcdef";
    std::string text;
    text.reserve(2 * length); // of an image too
    for (std::size_t i = 0; i < length; ++i) {
        const unsigned char byte = static_cast<const unsigned char *>(bytes)[i];
        text += digits[byte >> 4];
        text += digits[byte & 0xF];
    }
    return text;
}

std::string bytesOfHex(const std::string &digits) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes += static_cast<char>(std::stoul(digits.substr(i, 2), nullptr, 16));
    return bytes;
}
