#pragma once

#include <string>

#include "line/view/Columns.h"
#include "line/view/Screen.h"

// The terminal of standard output, with a screen of its own to the end of the block.
class Terminal {
public:
    // Whether standard output is one that can have a screen.
    static bool isThere();

    Terminal();
    ~Terminal();
    Terminal(const Terminal &) = delete;
    Terminal &operator=(const Terminal &) = delete;

    ScreenSize size() const;

    // Readable after the size has changed.
    int resized() const { return m_resized; }
    // Whether it has, since the last call.
    bool takeResized() const;

    // What could not be sent at once is kept. A terminal that takes nothing holds nobody up.
    void write(const std::string &text);
    void flush() { write(""); }
    bool isBehind() const { return !m_kept.empty(); }

private:
    int m_descriptor;
    int m_resized = -1;
    std::string m_kept;
};

// What the terminal can show, as the environment tells.
Glyphs glyphsOfEnvironment();
