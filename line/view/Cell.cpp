#include "line/view/Cell.h"

#include <algorithm>

namespace {

constexpr std::size_t wordWidth = 7; // of "connect"
constexpr std::size_t longestBar = 20;
constexpr std::size_t shortestBar = 4;
constexpr std::size_t leastWhy = 6;
constexpr int wholePercent = 100;

struct PhaseRow {
    Phase phase;
    const char *word; // null where the step is the word
    const char *colour;
    const char *tail; // what the operator has to do
    bool takesKey;
};
constexpr PhaseRow rows[] = {
    {Phase::empty, "empty", "", "", false},
    {Phase::ready, "ready", "\033[1m", "press ", true},
    {Phase::busy, nullptr, "", "", false},
    {Phase::pass, "PASS", "\033[1;32m", "take out", false},
    {Phase::fail, "FAIL", "\033[1;31m", "", false},
    {Phase::refused, "REFUSED", "\033[1;33m", "", false},
    {Phase::closed, "CLOSED", "\033[1;7m", "press ", true},
};
constexpr char plain[] = "\033[0m";

const PhaseRow &rowOf(Phase phase) {
    return *std::find_if(std::begin(rows), std::end(rows), [&](const PhaseRow &row) { return row.phase == phase; });
}

std::string wordOf(const NestState &nest, const Glyphs &glyphs) {
    const char *word = rowOf(nest.phase).word;
    return word != nullptr ? word : shown(nest.step, glyphs);
}

std::string numberOf(const NestState &nest) {
    return nest.phase == Phase::pass && nest.number ? std::to_string(*nest.number) : "";
}

bool hasWhy(Phase phase) {
    return phase == Phase::fail || phase == Phase::refused || phase == Phase::closed;
}

std::string bar(int percent, std::size_t columns, const Glyphs &glyphs) {
    constexpr int eighths = 8;
    const char *const parts[eighths] = {"", "▏", "▎", "▍", "▌", "▋", "▊", "▉"};
    const int filled = percent * static_cast<int>(columns) * eighths / wholePercent;
    std::string text;
    for (int i = 0; i < filled / eighths; ++i)
        text += glyphs.utf8 ? "█" : "#";
    return glyphs.utf8 ? text + parts[filled % eighths] : text;
}

std::string tailOf(const NestState &nest, char key) {
    const PhaseRow &row = rowOf(nest.phase);
    return row.takesKey ? row.tail + std::string(1, key) : row.tail;
}

// Behind the word of a nest that is busy.
std::string progress(const NestState &nest, std::size_t columns, const Glyphs &glyphs) {
    if (nest.percent < 0)
        return {};
    const int percent = std::min(nest.percent, wholePercent);
    const std::string digits = std::to_string(percent);
    std::string text = std::string(3 - digits.size(), ' ') + digits + " %";
    const std::size_t room = columns > text.size() + 2 ? columns - text.size() - 2 : 0;
    const std::string drawn = room < shortestBar ? "" : bar(percent, std::min(room, longestBar), glyphs);
    return drawn.empty() ? text : text + "  " + drawn;
}

// What stands behind the word, in so many columns.
std::string detail(const NestState &nest, char key, std::size_t columns, const Glyphs &glyphs) {
    if (nest.phase == Phase::busy)
        return progress(nest, columns, glyphs);
    const std::string tail = tailOf(nest, key);
    if (!hasWhy(nest.phase)) {
        const std::string number = numberOf(nest);
        const std::string both = number.empty() ? tail : number + "  " + tail;
        if (both.size() <= columns)
            return both;
        return number.size() <= columns ? number : "";
    }
    if (tail.empty() || columns < tail.size() + leastWhy)
        return tail.empty() ? cut(shown(nest.why, glyphs), columns, glyphs) : tail;
    return cut(shown(nest.why, glyphs), columns - tail.size() - 2, glyphs) + ", " + tail;
}

// What may not be cut: of a number it would make another one.
std::size_t neededBehind(const NestState &nest, char key) {
    return rowOf(nest.phase).takesKey ? tailOf(nest, key).size() : numberOf(nest).size();
}

} // namespace

std::string cellOf(const NestState &nest, char key, std::size_t nameWidth, std::size_t columns, const Glyphs &glyphs) {
    const std::string name = filled(cut(shown(nest.name, glyphs), nameWidth, glyphs), nameWidth);
    const std::string word = wordOf(nest, glyphs);
    const bool narrow = nameWidth + wordWidth + neededBehind(nest, key) + 5 > columns;
    const std::string front = ' ' + name + (narrow ? " " : "  ");
    const std::string gap(narrow ? 1 : std::max(columnsOf(word), wordWidth) - columnsOf(word) + 1, ' ');
    const std::size_t used = columnsOf(front) + columnsOf(word) + gap.size();
    const std::string behind = detail(nest, key, columns > used + 1 ? columns - used - 1 : 0, glyphs);
    const std::string whole = cut(front + word + gap + behind, columns, glyphs);
    const char *colour = rowOf(nest.phase).colour;
    if (!glyphs.colour || *colour == '\0' || whole.compare(0, front.size() + word.size(), front + word) != 0)
        return filled(whole, columns);
    const std::string rest = whole.substr(front.size() + word.size());
    const std::size_t coloured = columnsOf(front) + columnsOf(word);
    return front + colour + word + plain + filled(rest, columns > coloured ? columns - coloured : 0);
}

std::string wordsOf(const NestState &nest, const Glyphs &glyphs) {
    std::string text = wordOf(nest, glyphs);
    if (!numberOf(nest).empty())
        text += ' ' + numberOf(nest);
    if (hasWhy(nest.phase) && !nest.why.empty())
        text += ' ' + shown(nest.why, glyphs);
    return text;
}
