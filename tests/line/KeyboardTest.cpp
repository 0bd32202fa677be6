#include "line/view/Keyboard.h"

#include <string>

#include <gtest/gtest.h>
#include <unistd.h>

namespace {

// A pipe as standard input, to the end of the block.
class Input {
public:
    Input() : m_before(dup(STDIN_FILENO)) {
        int ends[2];
        if (pipe(ends) != 0)
            abort();
        m_writer = ends[1];
        dup2(ends[0], STDIN_FILENO);
        close(ends[0]);
    }
    ~Input() {
        finish();
        dup2(m_before, STDIN_FILENO);
        close(m_before);
    }
    Input(const Input &) = delete;
    Input &operator=(const Input &) = delete;

    void type(const std::string &bytes) const {
        EXPECT_EQ(write(m_writer, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }
    void finish() {
        if (m_writer >= 0)
            close(m_writer);
        m_writer = -1;
    }

private:
    int m_before;
    int m_writer = -1;
};

using Nests = std::vector<std::size_t>;

} // namespace

TEST(KeyboardTest, TakesKeysOfNestsAndNothingElse) {
    Input input;
    Keyboard keyboard(true);
    EXPECT_EQ(keyboard.take(), Nests());
    input.type("1 0\n\x03z");
    EXPECT_EQ(keyboard.take(), (Nests{0, 9, 35}));
    EXPECT_EQ(keyboard.take(), Nests());
}

TEST(KeyboardTest, AnArrowIsNoNestAlsoWhereItComesInPieces) {
    Input input;
    Keyboard keyboard(true);
    input.type("\033[A1\033OB2\033[15~3\033[1;5C4");
    EXPECT_EQ(keyboard.take(), (Nests{0, 1, 2, 3}));
    Nests taken;
    for (const char *piece : {"\033", "[", "1;", "5A", "5"}) {
        input.type(piece);
        for (const std::size_t nest : keyboard.take())
            taken.push_back(nest);
    }
    EXPECT_EQ(taken, Nests{4});
}

TEST(KeyboardTest, TheEndOfTheInputIsReadableNoMore) {
    Input input;
    Keyboard keyboard(true);
    EXPECT_EQ(keyboard.descriptor(), STDIN_FILENO);
    input.finish();
    EXPECT_EQ(keyboard.take(), Nests());
    EXPECT_EQ(keyboard.descriptor(), -1);
    EXPECT_EQ(keyboard.take(), Nests());
}

TEST(KeyboardTest, WhatIsNoTerminalBelongsToOthersUnlessItIsSaid) {
    Input input;
    Keyboard keyboard(false);
    EXPECT_EQ(keyboard.descriptor(), -1);
    input.type("1");
    EXPECT_EQ(keyboard.take(), Nests());
    char byte = 0;
    EXPECT_EQ(read(STDIN_FILENO, &byte, 1), 1);
}
