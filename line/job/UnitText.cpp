#include "line/job/UnitText.h"

#include <algorithm>
#include <ctime>
#include <stdexcept>

#include "programs/Text.h"

namespace {

constexpr std::size_t widestNumber = 10;

std::string filled(const std::string &digits, std::size_t width) {
    return digits.size() < width ? std::string(width - digits.size(), '0') + digits : digits;
}

} // namespace

bool isPrintable(const std::string &text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

std::string uidText(const UnitFacts &facts) {
    return hexOf(facts.uid.data(), facts.uid.size());
}

std::string timeText(const UnitFacts &facts) {
    const std::time_t seconds = facts.time;
    std::tm parts;
    char text[timeCharacters + 1];
    gmtime_r(&seconds, &parts);
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
    return text;
}

UnitText::Piece UnitText::placeholder(const std::string &inside) {
    if (inside == "number" || inside == "uid" || inside == "time" || inside == "order")
        return {inside, "", 1};
    const std::string wide = "number:0";
    const std::string digits = inside.compare(0, wide.size(), wide) == 0 ? inside.substr(wide.size()) : "";
    const bool isWidth = !digits.empty() && digits.size() <= 2 && digits.find_first_not_of("0123456789") == digits.npos;
    const std::size_t width = isWidth ? std::stoul(digits) : 0;
    if (width < 1 || width > widestNumber)
        throw std::invalid_argument("{" + inside +
                                    "} is none of {number}, {number:01} to {number:010}, {uid}, {time}, {order}");
    return {"number", "", width};
}

UnitText::UnitText(const std::string &text) {
    if (!isPrintable(text))
        throw std::invalid_argument("holds what is no printable ASCII character");
    std::string rest = text;
    while (!rest.empty()) {
        const std::size_t open = std::min(rest.find('{'), rest.size());
        if (rest.find('}') < open)
            throw std::invalid_argument("holds a } without a { in front of it");
        if (open > 0)
            m_pieces.push_back({"", rest.substr(0, open), 0});
        rest.erase(0, open);
        const std::size_t close = rest.find('}');
        if (!rest.empty() && close == rest.npos)
            throw std::invalid_argument("holds a { without a } behind it");
        if (!rest.empty())
            m_pieces.push_back(placeholder(rest.substr(1, close - 1)));
        rest.erase(0, std::min(rest.size(), close == rest.npos ? 0 : close + 1));
    }
}

bool UnitText::has(const std::string &what) const {
    return std::any_of(m_pieces.begin(), m_pieces.end(), [&](const Piece &piece) { return piece.what == what; });
}

std::size_t UnitText::shortestOf(const Piece &piece) {
    if (piece.what.empty())
        return piece.plain.size();
    if (piece.what == "number")
        return piece.width;
    return piece.what == "uid" ? uidDigits : piece.what == "time" ? timeCharacters : 1;
}

std::size_t UnitText::shortest() const {
    std::size_t length = 0;
    for (const Piece &piece : m_pieces)
        length += shortestOf(piece);
    return length;
}

std::string UnitText::textOf(const Piece &piece, const UnitFacts &facts) {
    if (piece.what.empty())
        return piece.plain;
    if (piece.what == "number")
        return filled(std::to_string(facts.number), piece.width);
    return piece.what == "uid" ? uidText(facts) : piece.what == "time" ? timeText(facts) : facts.order;
}

std::string UnitText::of(const UnitFacts &facts) const {
    std::string text;
    for (const Piece &piece : m_pieces)
        text += textOf(piece, facts);
    return text;
}
