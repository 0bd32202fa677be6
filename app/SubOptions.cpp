#include "app/SubOptions.h"

#include <stdexcept>

std::string wordAt(int argc, char **argv, int index) {
    if (index >= argc || argv[index] == nullptr)
        throw std::logic_error("no word");
    return argv[index];
}

SubOptionWalk::SubOptionWalk(int words, char **line, int &index, LastWord last)
    : argc(words), argv(line), argIndex(index), m_lastWord(last) {}

bool SubOptionWalk::next() {
    if (argIndex >= argc)
        return false;
    ++argIndex;
    if (argIndex >= argc || Is_Option(argv[argIndex]))
        return false;
    m_badWord = !Is_SubOption(argv[argIndex]);
    if (m_badWord || (m_lastWord == leavesLastWord && argIndex >= argc - 1))
        return false;
    ++argIndex;
    return true;
}

std::string SubOptionWalk::word() const {
    return argv[argIndex - 1];
}

std::string SubOptionWalk::value() const {
    return hasValue() ? argv[argIndex] : std::string();
}
