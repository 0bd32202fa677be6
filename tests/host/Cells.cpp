#include "tests/host/Cells.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

#include <fcntl.h>
#include <unistd.h>

namespace host {

DoneFile::DoneFile(const std::string &path, const std::string &about) : m_path(path) {
    std::string first;
    std::getline(std::ifstream(m_path) >> std::ws, first);
    if (first != about)
        std::ofstream(m_path) << about << "\n";
}

void DoneFile::add(const std::string &cell, const Count &count) const {
    std::ostringstream line;
    line << cell << '\t' << count.cases << ' ' << count.right << ' ' << count.left << ' ' << count.lies << ' '
         << count.seconds << '\n';
    const int file = open(m_path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    // One write, so that lines of two processes never mix and one that is ended loses none.
    if (file < 0 || write(file, line.str().data(), line.str().size()) < 0)
        throw std::runtime_error("cannot write to " + m_path);
    close(file);
}

std::map<std::string, Count> DoneFile::read() const {
    std::map<std::string, Count> cells;
    std::ifstream in(m_path);
    std::string line;
    std::getline(in, line);
    for (std::string cell; std::getline(in, cell, '\t') && std::getline(in, line);) {
        Count count;
        std::istringstream(line) >> count.cases >> count.right >> count.left >> count.lies >> count.seconds;
        cells[cell] = count;
    }
    return cells;
}

} // namespace host
