#include "look/line/Pieces.h"

#include <algorithm>

void Pieces::add(unsigned long long first, unsigned long long length) {
    m_bytes += length;
    if (!m_pieces.empty() && m_pieces.back().first + m_pieces.back().length == first)
        m_pieces.back().length += length;
    else
        m_pieces.push_back({first, length});
}

unsigned long long Pieces::lowest() const {
    const auto lower = [](const Piece &a, const Piece &b) { return a.first < b.first; };
    const auto found = std::min_element(m_pieces.begin(), m_pieces.end(), lower);
    return found == m_pieces.end() ? 0 : found->first;
}

void Pieces::tell(const std::string &name, Section &action) const {
    std::vector<std::vector<Value>> rows;
    for (const Piece &piece : m_pieces)
        rows.push_back({addressValue(static_cast<unsigned int>(piece.first)),
                        addressValue(static_cast<unsigned int>(piece.first + piece.length - 1)), Value(piece.length)});
    action.table(name, {"first", "last", "bytes"}, std::move(rows));
}
