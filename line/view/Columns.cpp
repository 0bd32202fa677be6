#include "line/view/Columns.h"

#include <algorithm>
#include <cwchar>
#include <locale.h>

#include "programs/Text.h"

namespace {

// Within it the C library reads UTF-8, whatever the locale of the program is.
class ReadsUtf8 {
public:
    ReadsUtf8() : m_before(uselocale(utf8())) {}
    ~ReadsUtf8() { uselocale(m_before); }
    ReadsUtf8(const ReadsUtf8 &) = delete;
    ReadsUtf8 &operator=(const ReadsUtf8 &) = delete;

private:
    static locale_t utf8() {
        static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
        return locale;
    }

    locale_t m_before;
};

struct Character {
    std::size_t bytes = 1;
    int columns = 0; // 1 or 2; 0 for what is not to be shown
};

Character characterAt(const std::string &text, std::size_t at) {
    wchar_t wide = 0;
    std::mbstate_t state{};
    const std::size_t bytes = std::mbrtowc(&wide, text.data() + at, text.size() - at, &state);
    if (bytes == 0 || bytes > text.size()) // no character, or half of one
        return {};
    const int columns = wcwidth(wide);
    return {bytes, columns == 2 ? 2 : columns == 1 ? 1 : 0};
}

bool isAscii(char c) {
    return static_cast<unsigned char>(c) < 0x80;
}

// As nearly all texts are: each byte is a character of one column.
bool isPlain(const std::string &text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

} // namespace

std::string shown(const std::string &text, const Glyphs &glyphs) {
    if (isPlain(text))
        return text;
    const ReadsUtf8 reads;
    const std::string plain = harmless(text);
    std::string all;
    for (std::size_t at = 0; at < plain.size();) {
        const Character character = characterAt(plain, at);
        const bool good = character.columns > 0 && (glyphs.utf8 || isAscii(plain[at]));
        all += good ? plain.substr(at, character.bytes) : "?";
        at += character.bytes;
    }
    return all;
}

std::size_t columnsOf(const std::string &shown) {
    if (isPlain(shown))
        return shown.size();
    const ReadsUtf8 reads;
    std::size_t columns = 0;
    for (std::size_t at = 0; at < shown.size();) {
        const Character character = characterAt(shown, at);
        columns += static_cast<std::size_t>(character.columns);
        at += character.bytes;
    }
    return columns;
}

std::string cut(const std::string &shown, std::size_t columns, const Glyphs &glyphs) {
    if (columnsOf(shown) <= columns)
        return shown;
    if (columns == 0)
        return {};
    const ReadsUtf8 reads;
    std::size_t used = 1; // by the mark
    std::size_t at = 0;
    for (;;) {
        const Character character = characterAt(shown, at);
        used += static_cast<std::size_t>(character.columns);
        if (used > columns)
            return shown.substr(0, at) + (glyphs.utf8 ? "\u2026" : "~");
        at += character.bytes;
    }
}

std::string filled(const std::string &shown, std::size_t columns) {
    const std::size_t used = columnsOf(shown);
    return used < columns ? shown + std::string(columns - used, ' ') : shown;
}
