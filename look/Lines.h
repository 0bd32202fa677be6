#pragma once

#include <string>
#include <vector>

#include "look/Value.h"

// Builds the lines of one section as a person reads them. Control characters, which a file's name may hold, are shown
// as "?": they could tell a terminal something.
class Lines {
public:
    // Names are filled up to the width.
    Lines(bool inColour, int indentation, std::size_t nameWidth);

    // A line by itself. What follows stands two columns further in.
    void title(const std::string &title);
    void named(const std::string &name, const std::string &text);
    void marked(Mark mark, const std::string &name, const std::string &text, const std::string &cure);
    void table(const std::string &name, const std::vector<std::string> &columns,
               const std::vector<std::vector<Value>> &rows);
    // Lines as they are.
    void add(const std::string &lines) { m_text += lines; }

    // How far in an inner section stands.
    int inner() const { return m_indentation; }
    const std::string &text() const { return m_text; }

private:
    void line(int indentation, const std::string &text, const char *colour = nullptr);

    const bool m_inColour;
    int m_indentation;
    const std::size_t m_nameWidth;
    std::string m_text;
};
