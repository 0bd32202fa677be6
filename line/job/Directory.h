#pragma once

#include <string>

// The directory of a file that a person named, open to the end, so that what is below it stays what it was.
class Directory {
public:
    // Throws Refusal, with notAcceptable, where it can't be opened.
    explicit Directory(const std::string &fileInIt);
    ~Directory();
    Directory(const Directory &) = delete;
    Directory &operator=(const Directory &) = delete;

    // All bytes of a regular file in it or below it, at most so many. Throws Refusal, with notAcceptable, for an
    // absolute name, for one with an empty part, "." or "..", and where any part of it is a symbolic link.
    std::string read(const std::string &name, std::size_t most) const;

private:
    int m_number;
};
