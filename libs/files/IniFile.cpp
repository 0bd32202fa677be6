#include "libs/files/IniFile.h"

#include <algorithm>

namespace files {

namespace {

std::string trimmed(const std::string &text) {
    const char *const blanks = " \t\r";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// The value without its comment and quotes.
std::string plainValue(const std::string &text) {
    std::string value;
    bool quoted = false;
    for (const char c : text) {
        if (c == ';' && !quoted)
            break;
        quoted ^= c == '"';
        value += c;
    }
    value = trimmed(value);
    if (value.size() >= 2 && value.front() == '"' && value.back() == '"')
        return value.substr(1, value.size() - 2);
    return value;
}

class Parser {
public:
    explicit Parser(IniSections &sections) : m_sections(sections) {}

    Status takeLine(const std::string &line);

private:
    Status openSection(const std::string &name);

    IniSections &m_sections;
    IniSection *m_section = nullptr;
};

Status Parser::takeLine(const std::string &line) {
    if (line.find('\0') != std::string::npos)
        return Status::badFormat;
    if (line.empty() || line.front() == ';' || line.front() == '#')
        return Status::ok;
    if (line.front() == '[') {
        const std::string head = plainValue(line);
        return head.back() == ']' ? openSection(trimmed(head.substr(1, head.size() - 2))) : Status::badFormat;
    }
    const std::size_t equals = line.find('=');
    const std::string key = trimmed(line.substr(0, equals));
    if (equals == std::string::npos || key.empty() || !m_section)
        return Status::badFormat;
    const bool isNew = m_section->emplace(key, plainValue(line.substr(equals + 1))).second;
    return isNew ? Status::ok : Status::badFormat;
}

Status Parser::openSection(const std::string &name) {
    const auto [place, isNew] = m_sections.emplace(name, IniSection());
    m_section = &place->second;
    return isNew ? Status::ok : Status::badFormat;
}

} // namespace

Status parseIni(const std::string &text, IniSections &sections) {
    const std::string byteOrderMark = "\xEF\xBB\xBF";
    std::size_t at = text.compare(0, byteOrderMark.size(), byteOrderMark) == 0 ? byteOrderMark.size() : 0;
    Parser parser(sections);
    while (at < text.size()) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        const Status taken = parser.takeLine(trimmed(text.substr(at, end - at)));
        if (taken != Status::ok)
            return taken;
        at = end + 1;
    }
    return Status::ok;
}

} // namespace files
