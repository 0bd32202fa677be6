#pragma once

#include <stdexcept>
#include <string>

// Exit statuses of zv32-look.
constexpr int lookedWell = 0;
constexpr int badWords = 1;
constexpr int notAcceptable = 2; // a file can't be read, or is none of its kind
constexpr int noUnit = 5;        // no chip was found
constexpr int somethingWrong = 9;

// Ends a look before its report is whole. The text says what was wrong with what.
class Refusal : public std::runtime_error {
public:
    Refusal(int exitStatus, const std::string &text) : std::runtime_error(text), status(exitStatus) {}
    const int status;
};
