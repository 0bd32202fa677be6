#include "line/view/Screen.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "line/view/Cell.h"
#include "line/view/Keys.h"

namespace {

constexpr std::size_t goodWidth = 40;  // of a nest
constexpr std::size_t leastWidth = 26; // a name of 8 characters and a number of 10 digits
constexpr std::size_t mostWidth = 100;
constexpr std::size_t planDigits = 8;
constexpr std::size_t longestOrder = 24;
constexpr char gap[] = "   ";

std::string oneDecimal(double number) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", number);
    return text;
}

// Behind the title.
std::string factsOf(const State &state, const Glyphs &glyphs) {
    std::string facts = gap + ("plan " + shown(state.plan.substr(0, planDigits), glyphs));
    if (!state.order.empty())
        facts += gap + ("order " + cut(shown(state.order, glyphs), longestOrder, glyphs));
    facts += gap + std::to_string(state.made) + " of " + std::to_string(state.quantity);
    if (state.passed + state.failed > 0)
        facts += gap + oneDecimal(100.0 * state.passed / (state.passed + state.failed)) + " %";
    return facts;
}

// Where the nests are on the screen.
struct Grid {
    std::size_t columns = 1;
    std::size_t lines = 0;
    std::size_t width = 0;
};

std::size_t rounded(std::size_t number, std::size_t by) {
    return (number + by - 1) / by;
}

Grid gridFor(std::size_t nests, std::size_t width, std::size_t room) {
    const std::size_t most = std::max<std::size_t>(1, width / leastWidth);
    Grid grid;
    grid.columns = std::clamp<std::size_t>(width / goodWidth, 1, most);
    while (rounded(nests, grid.columns) > room && grid.columns < most)
        ++grid.columns;
    grid.lines = rounded(nests, grid.columns);
    grid.columns = rounded(nests, std::max<std::size_t>(grid.lines, 1));
    grid.width = std::min(width / std::max<std::size_t>(grid.columns, 1), mostWidth);
    return grid;
}

std::string lineOf(const State &state, const Grid &grid, std::size_t line, std::size_t nameWidth,
                   const Glyphs &glyphs) {
    std::string text;
    for (std::size_t nest = line; nest < state.nests.size(); nest += grid.lines)
        text += cellOf(state.nests[nest], keyOfNest(nest), nameWidth, grid.width, glyphs);
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

void addNests(std::vector<std::string> &lines, const State &state, std::size_t width, std::size_t room,
              const Glyphs &glyphs) {
    const Grid grid = gridFor(state.nests.size(), width, room);
    std::size_t nameWidth = 0;
    for (const NestState &nest : state.nests)
        nameWidth = std::max(nameWidth, columnsOf(shown(nest.name, glyphs)));
    const std::size_t most = grid.lines <= room ? grid.lines : room - 1;
    for (std::size_t line = 0; line < most; ++line)
        lines.push_back(lineOf(state, grid, line, nameWidth, glyphs));
    if (most < grid.lines)
        lines.push_back(cut(" the screen is too small for all nests", width, glyphs));
}

// For nests, beside the first line and the last ones.
std::size_t roomWith(const std::vector<std::string> &last, const ScreenSize &size) {
    return size.lines > last.size() + 2 ? size.lines - last.size() - 1 : 1;
}

} // namespace

std::string headOf(const State &state, const Glyphs &glyphs) {
    return shown(state.title, glyphs) + factsOf(state, glyphs);
}

std::string footOf(const State &state, const Glyphs &glyphs) {
    std::string text;
    if (state.unitsPerHour > 0)
        text += std::to_string(std::lround(state.unitsPerHour)) + " units/h" + gap;
    if (state.secondsPerUnit > 0)
        text += oneDecimal(state.secondsPerUnit) + " s/unit" + gap;
    text += "not delivered: " + std::to_string(state.undelivered);
    const char *before = "   failures: ";
    for (const auto &failure : state.failures) {
        text += before + shown(failure.first, glyphs) + ' ' + std::to_string(failure.second);
        before = ", ";
    }
    return text;
}

std::vector<std::string> screenOf(const State &state, const ScreenSize &size, const Glyphs &glyphs) {
    const std::string facts = factsOf(state, glyphs);
    const std::size_t room = size.columns > columnsOf(facts) ? size.columns - columnsOf(facts) : 0;
    const std::string title = cut(shown(state.title, glyphs), room, glyphs);
    std::vector<std::string> lines = {cut(title + facts, size.columns, glyphs)};
    std::vector<std::string> last;
    if (!state.notice.empty())
        last.push_back(cut(" ! " + shown(state.notice, glyphs), size.columns, glyphs));
    last.push_back(cut(' ' + footOf(state, glyphs), size.columns, glyphs));
    // Where there is no room for both, the notice is what the operator has to see.
    if (gridFor(state.nests.size(), size.columns, roomWith(last, size)).lines > roomWith(last, size))
        last.resize(1);
    addNests(lines, state, size.columns, roomWith(last, size), glyphs);
    lines.insert(lines.end(), last.begin(), last.end());
    lines.resize(std::min(lines.size(), size.lines));
    return lines;
}
