#include "foundation/PathText.h"

#include <algorithm>

namespace {

// The byte is in the low half; no byte below 80 needs this.
constexpr ushort firstByteMark = 0xDC80;
constexpr ushort lastByteMark = 0xDCFF;

bool isByteMark(QChar c) {
    return c.unicode() >= firstByteMark && c.unicode() <= lastByteMark;
}

} // namespace

QString textOf(const std::string &path) {
    QString text = QString::fromStdString(path);
    if (text.toStdString() == path)
        return text;
    text.clear();
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        text.append(QChar(byte < 0x80 ? byte : firstByteMark - 0x80 + byte));
    }
    return text;
}

std::string pathOf(const QString &text) {
    // The second half of a true pair looks the same, and stands after a first half.
    const bool isMarked =
        std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80 || isByteMark(c); });
    if (!isMarked)
        return text.toStdString();
    std::string path;
    for (const QChar c : text)
        path += static_cast<char>(c.unicode() & 0xFF);
    return path;
}
