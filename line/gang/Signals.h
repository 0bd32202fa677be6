#pragma once

// The signals by which an operator, or the machine, ends a line: taken as they come to a descriptor, to the end of the
// block.
class Signals {
public:
    Signals();
    ~Signals();
    Signals(const Signals &) = delete;
    Signals &operator=(const Signals &) = delete;

    // Readable after one.
    int descriptor() const { return m_descriptor; }
    // How many have come since the last call.
    int take();

private:
    int m_descriptor;
};
