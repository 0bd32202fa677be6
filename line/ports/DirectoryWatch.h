#pragma once

#include <map>
#include <string>
#include <vector>

// Tells when an entry of a directory comes, goes, or gets other permissions. Directories may come later, and go.
class DirectoryWatch {
public:
    explicit DirectoryWatch(std::vector<std::string> directories);
    ~DirectoryWatch();
    DirectoryWatch(const DirectoryWatch &) = delete;
    DirectoryWatch &operator=(const DirectoryWatch &) = delete;

    // Readable after something has happened; -1 where the system has no such watch.
    int descriptor() const { return m_descriptor; }

    // Whether something has happened since the last call; begins to watch what has come.
    bool happened();

private:
    void watch();

    std::vector<std::string> m_directories;
    std::map<int, std::string> m_watched;
    int m_descriptor;
};
