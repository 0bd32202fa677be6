#include "look/Lines.h"

#include <algorithm>

#include "programs/Text.h"

namespace {

const char *const bold = "\033[1m";
const char *const plain = "\033[0m";
// By Mark.
const char *const colours[] = {"\033[32m", nullptr, "\033[33m", "\033[31m"};

// In columns of a terminal: a character of UTF-8 takes one.
std::size_t columnsOf(const std::string &text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

std::string filled(const std::string &text, std::size_t width) {
    const std::size_t columns = columnsOf(text);
    return columns < width ? text + std::string(width - columns, ' ') : text;
}

std::string filledInFront(const std::string &text, std::size_t width) {
    const std::size_t columns = columnsOf(text);
    return columns < width ? std::string(width - columns, ' ') + text : text;
}

bool isNumber(const Value &value) {
    return value.json.is_number();
}

} // namespace

Lines::Lines(bool inColour, int indentation, std::size_t nameWidth)
    : m_inColour(inColour), m_indentation(indentation), m_nameWidth(nameWidth) {}

void Lines::line(int indentation, const std::string &text, const char *colour) {
    const std::string shown = harmless(text);
    const bool coloured = m_inColour && colour != nullptr;
    m_text += std::string(static_cast<std::size_t>(indentation), ' ');
    m_text += coloured ? colour + shown + plain : shown;
    m_text.erase(m_text.find_last_not_of(' ') + 1);
    m_text += '\n';
}

void Lines::title(const std::string &title) {
    line(m_indentation, title, bold);
    m_indentation += 2;
}

void Lines::named(const std::string &name, const std::string &text) {
    line(m_indentation, filled(name, m_nameWidth) + "  " + text);
}

void Lines::marked(Mark mark, const std::string &name, const std::string &text, const std::string &cure) {
    line(m_indentation, filled(name, m_nameWidth) + "  " + text + (cure.empty() ? "" : " -- " + cure),
         colours[static_cast<int>(mark)]);
}

void Lines::table(const std::string &name, const std::vector<std::string> &columns,
                  const std::vector<std::vector<Value>> &rows) {
    line(m_indentation, name);
    std::vector<std::size_t> widths(columns.size());
    std::transform(columns.begin(), columns.end(), widths.begin(), columnsOf);
    for (const std::vector<Value> &row : rows)
        for (std::size_t i = 0; i < widths.size(); ++i)
            widths[i] = std::max(widths[i], columnsOf(row[i].text));
    std::string head;
    for (std::size_t i = 0; i < widths.size(); ++i)
        head += (rows.empty() || !isNumber(rows.front()[i]) ? filled : filledInFront)(columns[i], widths[i]) + "  ";
    line(m_indentation + 2, head);
    for (const std::vector<Value> &row : rows) {
        std::string text;
        for (std::size_t i = 0; i < widths.size(); ++i)
            text += (isNumber(row[i]) ? filledInFront : filled)(row[i].text, widths[i]) + "  ";
        line(m_indentation + 2, text);
    }
}
