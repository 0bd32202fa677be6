#include "libs/zvbl/TraceRun.h"

#include <fstream>
#include <mutex>
#include <set>

#include "libs/zvbl/Text.h"

namespace zvbl {
namespace {

constexpr std::size_t longestLine = 4096;

} // namespace

std::string asWord(const std::string &text) {
    std::string word;
    for (const char letter : printable(text))
        word += letter == ' ' ? "\\x20" : std::string(1, letter);
    return word;
}

bool isFirstOfRun(const std::string &path) {
    static std::mutex mutex;
    static auto &known = *new std::set<std::string>; // links may be closed by destructors of the program's end
    const std::lock_guard<std::mutex> lock(mutex);
    return known.insert(path).second;
}

std::string describeRun(const char *link) {
    std::ifstream line("/proc/self/cmdline");
    std::string program, words, word;
    std::getline(line, program, '\0');
    while (words.size() < longestLine && std::getline(line, word, '\0'))
        words += ' ' + asWord(word);
    if (words.size() > longestLine)
        words = words.substr(0, longestLine) + "...";
    return "run of " + asWord(program.substr(program.rfind('/') + 1)) + ", library " ZVBL_VERSION ", " + link + ":" +
           words;
}

} // namespace zvbl
