#pragma once

#include <string>
#include <vector>

#include "look/Report.h"

// What is written or read where. Neighbours become one.
class Pieces {
public:
    void add(unsigned long long first, unsigned long long length);
    unsigned long long bytes() const { return m_bytes; }
    // The lowest address; 0 for none.
    unsigned long long lowest() const;
    // As a table of that name.
    void tell(const std::string &name, Section &action) const;

private:
    struct Piece {
        unsigned long long first;
        unsigned long long length;
    };
    std::vector<Piece> m_pieces;
    unsigned long long m_bytes = 0;
};
