#pragma once

#include <memory>
#include <string>
#include <vector>

#include "app/Words.h"

class CBootLoader;
class CCom;

// A chip in its bootloader, on a link that the shared record tells of. The link closes with it.
class Unit {
public:
    // The option of a connection, as "-com" is. Connects; isThere tells whether that worked.
    explicit Unit(OptionId connection);
    ~Unit();
    Unit(const Unit &) = delete;
    Unit &operator=(const Unit &) = delete;

    bool isOpen() const { return m_isOpen; }       // the port
    bool isThere() const { return m_result == 0; } // a bootloader answers on it
    CBootLoader &control() const;                  // only where it is open

private:
    void startDfu();

    std::unique_ptr<CCom> m_link;
    bool m_isOpen = false;
    int m_result = -1;
};

// The chip at the link that console words name: "-com --pn ttyUSB0". Throws Refusal: badWords where they are none of a
// connection, noUnit where no chip answers or it is not known.
std::unique_ptr<Unit> unitAt(std::vector<std::string> words);
