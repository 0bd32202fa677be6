#include "tests/campaign/DoneFile.h"

#include <fstream>
#include <stdexcept>

#include <fcntl.h>
#include <unistd.h>

namespace campaign {

DoneFile::DoneFile(const std::string &path, const std::string &about) : m_path(path) {
    std::string first;
    std::getline(std::ifstream(m_path) >> std::ws, first);
    if (first != about)
        std::ofstream(m_path) << about << "\n";
}

void DoneFile::add(const std::string &cell, const std::vector<std::string> &lines) const {
    std::string text;
    for (const std::string &line : lines)
        text += cell + '\t' + line + '\n';
    const int file = open(m_path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    // One write, so that lines of two processes never mix and one that is ended loses none.
    if (file < 0 || write(file, text.data(), text.size()) < 0)
        throw std::runtime_error("cannot write to " + m_path);
    close(file);
}

std::map<std::string, std::vector<std::string>> DoneFile::read() const {
    std::map<std::string, std::vector<std::string>> cells;
    std::ifstream in(m_path);
    std::string line;
    std::getline(in, line);
    for (std::string cell; std::getline(in, cell, '\t') && std::getline(in, line);)
        cells[cell].push_back(line);
    return cells;
}

} // namespace campaign
