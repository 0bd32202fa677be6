#include "programs/Text.h"

namespace {

constexpr unsigned char leadOfSecondControls = 0xC2; // then 80 to 9F

bool isControl(unsigned char c) {
    return c < ' ' || c == 0x7F;
}

bool isSecondControl(const std::string &text, std::size_t at) {
    return static_cast<unsigned char>(text[at]) == leadOfSecondControls && at + 1 < text.size() &&
           static_cast<unsigned char>(text[at + 1]) < 0xA0;
}

} // namespace

std::string harmless(const std::string &text) {
    std::string shown;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        const bool ofTwo = isSecondControl(text, i);
        shown += isControl(c) || ofTwo ? '?' : text[i];
        i += ofTwo ? 1 : 0;
    }
    return shown;
}

bool isHarmless(const std::string &text) {
    return harmless(text) == text;
}

std::string harmlessJson(const std::string &json) {
    if (json.find('\x7F') == json.npos && json.find('\xC2') == json.npos) // quicker than together
        return json;
    std::string shown;
    for (std::size_t i = 0; i < json.size(); ++i) {
        const bool isOfTwo = isSecondControl(json, i);
        const bool isOne = json[i] == '\x7F';
        i += isOfTwo ? 1 : 0;
        shown += isOfTwo || isOne ? "\\u00" + hexOf(&json[i], 1) : std::string(1, json[i]);
    }
    return shown;
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
