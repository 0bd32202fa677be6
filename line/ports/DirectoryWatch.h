#pragma once

#include <map>
#include <set>
#include <string>

// Tells when an entry of a directory comes, goes, or gets other permissions. Directories may come later, and go.
class DirectoryWatch {
public:
    // Directories, and in each the entries that matter; all of them where none is named.
    using Entries = std::map<std::string, std::set<std::string>>;
    explicit DirectoryWatch(Entries entries);
    ~DirectoryWatch();
    DirectoryWatch(const DirectoryWatch &) = delete;
    DirectoryWatch &operator=(const DirectoryWatch &) = delete;

    // Readable after something has happened; -1 where the system has no such watch.
    int descriptor() const { return m_descriptor; }

    // Whether something that matters has happened since the last call; begins to watch what has come.
    bool happened();

private:
    void watch();
    bool matters(int watch, const std::string &entry) const;

    const Entries m_entries;
    std::map<int, std::string> m_watched;
    int m_descriptor;
};
