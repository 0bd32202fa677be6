#pragma once

#include <map>
#include <string>

namespace host {

// What came of the cases of one sweep of one job.
struct Count {
    unsigned cases = 0;
    unsigned right = 0;
    unsigned left = 0; // files that stay beside their place
    unsigned lies = 0;
    double seconds = 0; // of processor time
};

// A file of the cells that are done, so that a campaign that was interrupted goes on where it was. It begins with what
// it is about: one about something else is begun anew.
class DoneFile {
public:
    DoneFile(const std::string &path, const std::string &about);

    void add(const std::string &cell, const Count &count) const; // by several processes at once
    std::map<std::string, Count> read() const;
    const std::string &path() const { return m_path; }

private:
    const std::string m_path;
};

} // namespace host
