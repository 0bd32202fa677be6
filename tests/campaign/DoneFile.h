#pragma once

#include <map>
#include <string>
#include <vector>

namespace campaign {

// A file of the cells that are done, so that a campaign that was interrupted goes on where it was. It begins with what
// it is about: one about something else is begun anew. A cell has a line, or several, that say what came of it.
class DoneFile {
public:
    DoneFile(const std::string &path, const std::string &about);

    void add(const std::string &cell, const std::vector<std::string> &lines) const; // by several processes at once
    std::map<std::string, std::vector<std::string>> read() const;
    const std::string &path() const { return m_path; }

private:
    const std::string m_path;
};

} // namespace campaign
