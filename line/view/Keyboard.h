#pragma once

#include <cstddef>
#include <vector>

#include <termios.h>

// The keys of nests, from standard input. A terminal gives each at once and does not show it, to the end of the block.
class Keyboard {
public:
    // Without a terminal it takes none, unless it is told to.
    explicit Keyboard(bool alsoElsewhere);
    ~Keyboard();
    Keyboard(const Keyboard &) = delete;
    Keyboard &operator=(const Keyboard &) = delete;

    // Readable after a key; -1 where there are none, or no more.
    int descriptor() const { return m_descriptor; }

    // The nests whose keys were pressed since the last call.
    std::vector<std::size_t> take();

private:
    bool isKey(char byte);

    // A key such as an arrow is a sequence: an escape character, then a letter, or "[" and more up to a letter.
    enum class Sequence { none, begun, open };

    int m_descriptor;
    Sequence m_sequence = Sequence::none;
    bool m_isTerminal = false;
    termios m_before{};
};
