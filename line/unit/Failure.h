#pragma once

#include <stdexcept>
#include <string>

// A step that failed: the cause by its name, the code of the result, and a text for a person.
struct Failure : std::runtime_error {
    // A failure of the link is the cause "link-lost", whichever step it ended.
    Failure(const char *why, int result);
    Failure(const char *why, const std::string &text) : std::runtime_error(text), cause(why) {}
    const char *cause;
    int code = 0;
};

// Throws for a result that is not success.
void require(int result, const char *cause);
