#pragma once

#include <map>
#include <string>

// The word that stands for a value in a table that words are read by.
template <typename Choice>
const char *wordOf(const std::map<std::string, Choice> &words, Choice value) {
    for (const auto &word : words)
        if (word.second == value)
            return word.first.c_str();
    return "";
}
