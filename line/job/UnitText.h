#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

// What is known of a unit when its data are made.
struct UnitFacts {
    std::uint32_t number = 0;
    std::string uid;       // 12 bytes
    std::int64_t time = 0; // seconds since 1970, UTC
    std::string order;
    std::map<std::string, std::string> supply = {}; // what the hook before it gave, by name
};

// Whether all of a text is printable ASCII: nothing else of texts gets into a chip.
bool isPrintable(const std::string &text);

std::string uidText(const UnitFacts &facts);  // 24 lower-case hexadecimal digits
std::string timeText(const UnitFacts &facts); // "2026-11-21T18:04:20Z"
constexpr std::size_t uidDigits = 24;
constexpr std::size_t timeCharacters = 20;

// A text of a job with {number}, {number:06}, {uid}, {time} and {order} in it.
class UnitText {
public:
    // Throws std::invalid_argument, which says why, for what is no such text.
    explicit UnitText(const std::string &text);

    bool has(const std::string &what) const;
    std::size_t shortest() const; // no unit has fewer characters
    std::string of(const UnitFacts &facts) const;

private:
    struct Piece {
        std::string what;  // empty for what stands there as it is
        std::string plain; // then this
        std::size_t width; // of a number, filled up with 0 in front
    };
    static Piece placeholder(const std::string &inside);
    static std::size_t shortestOf(const Piece &piece);
    static std::string textOf(const Piece &piece, const UnitFacts &facts);

    std::vector<Piece> m_pieces;
};
