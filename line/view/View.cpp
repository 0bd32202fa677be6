#include "line/view/View.h"

#include <iostream>
#include <optional>

#include "line/view/EventLines.h"
#include "line/view/Keyboard.h"
#include "line/view/Screen.h"
#include "line/view/Terminal.h"

using namespace std::chrono_literals;

namespace {

constexpr auto pause = 100ms; // between two pictures: percents come faster than anybody reads

class LinesView : public View {
public:
    explicit LinesView(bool keysBegin) : m_keyboard(keysBegin) {}

    void show(const State &state) override {
        for (const std::string &line : eventLines(m_before ? &*m_before : nullptr, state, m_glyphs))
            std::cout << line << '\n';
        std::cout.flush();
        m_before = state;
    }
    std::vector<int> descriptors() const override {
        return m_keyboard.descriptor() < 0 ? std::vector<int>() : std::vector<int>{m_keyboard.descriptor()};
    }
    Clock::time_point next() const override { return Clock::time_point::max(); }
    std::vector<std::size_t> work() override { return m_keyboard.take(); }

private:
    const Glyphs m_glyphs = {glyphsOfEnvironment().utf8, false};
    Keyboard m_keyboard;
    std::optional<State> m_before;
};

class ScreenView : public View {
public:
    explicit ScreenView(bool keysBegin) : m_keyboard(keysBegin) {}
    ~ScreenView() override {
        m_terminal = std::nullopt; // the screen below is the one that was there before
        if (!m_isDirty && m_lines.empty())
            return;
        for (const std::string &line : screenOf(m_state, m_size, {m_glyphs.utf8, false}))
            std::cout << line << '\n';
        std::cout.flush();
    }

    void show(const State &state) override {
        m_state = state;
        m_isDirty = true;
        drawIfDue();
    }
    std::vector<int> descriptors() const override {
        std::vector<int> all;
        for (const int descriptor : {m_keyboard.descriptor(), m_terminal->resized()})
            if (descriptor >= 0)
                all.push_back(descriptor);
        return all;
    }
    Clock::time_point next() const override {
        return m_isDirty || m_terminal->isBehind() ? m_due : Clock::time_point::max();
    }
    std::vector<std::size_t> work() override {
        if (m_terminal->takeResized()) {
            m_size = m_terminal->size();
            m_lines.clear();
            m_isDirty = true;
            m_due = Clock::now();
        }
        drawIfDue();
        return m_keyboard.take();
    }

private:
    void drawIfDue() {
        if (Clock::now() < m_due)
            return;
        m_terminal->flush();
        // A terminal that can't keep up gets the last picture, and not all.
        if (m_isDirty && !m_terminal->isBehind())
            draw();
        m_due = Clock::now() + pause;
    }

    // Only the lines that are others.
    void draw() {
        const std::vector<std::string> lines = screenOf(m_state, m_size, m_glyphs);
        std::string text = m_lines.empty() ? "\033[2J" : "";
        for (std::size_t i = 0; i < lines.size(); ++i)
            if (i >= m_lines.size() || m_lines[i] != lines[i])
                text += "\033[" + std::to_string(i + 1) + ";1H\033[K" + lines[i];
        if (lines.size() < m_lines.size())
            text += "\033[" + std::to_string(lines.size() + 1) + ";1H\033[J";
        m_terminal->write(text);
        m_lines = lines;
        m_isDirty = false;
    }

    const Glyphs m_glyphs = glyphsOfEnvironment();
    Keyboard m_keyboard;
    std::optional<Terminal> m_terminal{std::in_place};
    ScreenSize m_size = m_terminal->size();
    State m_state;
    std::vector<std::string> m_lines; // on the screen
    bool m_isDirty = false;
    Clock::time_point m_due;
};

} // namespace

std::unique_ptr<View> makeView(bool keysBegin) {
    if (Terminal::isThere())
        return std::make_unique<ScreenView>(keysBegin);
    return std::make_unique<LinesView>(keysBegin);
}
