#include "line/books/RecordWalk.h"

#include <algorithm>

#include "programs/Json.h"

namespace {

constexpr int deepest = 2; // objects in one another

bool isSpace(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

} // namespace

bool RecordWalk::run(std::string_view json, const Take &take) {
    m_json = json;
    m_at = 0;
    m_way.clear();
    m_take = &take;
    return has('{') && object(1) && !has('\0') && m_at == m_json.size();
}

// The next character that is no space, if it is this one.
bool RecordWalk::has(char c) {
    while (m_at < m_json.size() && isSpace(m_json[m_at]))
        ++m_at;
    if (m_at == m_json.size() || m_json[m_at] != c)
        return false;
    ++m_at;
    return true;
}

// Behind its beginning.
bool RecordWalk::object(int depth) {
    if (has('}'))
        return true;
    const std::size_t start = m_way.size();
    do {
        m_way.resize(start);
        if (!member(depth))
            return false;
    } while (has(','));
    return has('}');
}

bool RecordWalk::member(int depth) {
    std::string_view name;
    if (!has('"') || !text(name) || !has(':'))
        return false;
    m_way += name;
    return value(depth);
}

bool RecordWalk::value(int depth) {
    if (has('{')) {
        m_way += '.';
        return depth < deepest && object(depth + 1);
    }
    std::string_view found;
    const bool isText = has('"');
    if (!(isText ? text(found) : word(found)))
        return false;
    (*m_take)(m_way, found, isText);
    return true;
}

// Behind its first quote.
bool RecordWalk::text(std::string_view &found) {
    const std::size_t start = m_at;
    std::size_t end = m_json.find('"', start);
    const std::size_t escape = m_json.substr(start, end - start).find('\\');
    if (end != m_json.npos && escape == m_json.npos) {
        found = m_json.substr(start, end - start);
        m_at = end + 1;
        return true;
    }
    for (end = start; end < m_json.size() && m_json[end] != '"'; ++end)
        end += m_json[end] == '\\' ? 1 : 0;
    if (end >= m_json.size())
        return false;
    m_at = end + 1;
    const Json decoded = Json::parse(m_json.substr(start - 1, m_at - start + 1), nullptr, false);
    if (!decoded.is_string())
        return false;
    m_decoded = decoded.get_ref<const std::string &>();
    found = m_decoded;
    return true;
}

bool RecordWalk::word(std::string_view &found) {
    const std::size_t end = std::min(m_json.find_first_not_of("+-.0123456789Eaeflnrstu", m_at), m_json.size());
    found = m_json.substr(m_at, end - m_at);
    m_at = end;
    return !found.empty();
}
