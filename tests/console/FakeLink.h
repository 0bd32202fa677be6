#pragma once

// A link with its bootloader control and a device, without any library behind it.

#include <sstream>
#include <string>
#include <vector>

#include "link/BootLoader.h"
#include "link/CCom.h"

class FakeLink {
public:
    explicit FakeLink(const std::string &series = "07") {
        link.m_ObBootLoader = new CBootLoader(&link, 0); // the link owns it
        link.m_ObBootLoader->m_ObDevice = &device;
        device.m_StrSerial = series;
        device.m_IFlashSize = 256;
        device.m_ISectorSize = 2048;
    }

    CDevice device;
    CCom link;
};

// The words of a command line as main has them, closed by the null entry.
class Line {
public:
    explicit Line(const std::string &text) {
        std::istringstream stream(text);
        for (std::string word; stream >> word;)
            words.push_back(word);
        for (std::string &word : words)
            pointers.push_back(word.data());
        pointers.push_back(nullptr);
    }
    Line(const Line &) = delete;
    Line &operator=(const Line &) = delete;

    int argc() const { return static_cast<int>(words.size()); }
    char **argv() { return pointers.data(); }

private:
    std::vector<std::string> words;
    std::vector<char *> pointers;
};
