#pragma once

#include <array>
#include <string>
#include <string_view>

#include "line/books/RecordWalk.h"

// Records as rows of comma-separated values (RFC 4180, lines end with LF alone): text that needs it in quotes, "?" in
// the place of each control character, nothing for null and for what a record does not tell.

// The names of the columns, without the end of the line.
std::string csvHead();

// Rows of records, one after the other.
class CsvRows {
public:
    static constexpr std::size_t columns = 37;

    // Until the next one. What is no record is a row of nothing.
    const std::string &of(std::string_view record);

private:
    void clear();
    void take(std::string_view way, std::string_view value, bool isText);

    RecordWalk m_walk;
    std::array<std::string, columns> m_values; // in the order of the head
    std::string m_row;
};
