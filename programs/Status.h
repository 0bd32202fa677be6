#pragma once

#include <stdexcept>
#include <string>

// Exit statuses of the programs beside the console.
constexpr int allDone = 0;
constexpr int badWords = 1;
constexpr int notAcceptable = 2; // a file can't be read, or is none of its kind
constexpr int notApproved = 3;
constexpr int notMade = 4; // at least one unit
constexpr int noUnit = 5;  // no chip was found
constexpr int registerUnusable = 6;
constexpr int usedUp = 7; // numbers, or units of an order
constexpr int interrupted = 8;
constexpr int somethingWrong = 9;

// Ends what a program was asked to do. The text says what was wrong with what.
class Refusal : public std::runtime_error {
public:
    Refusal(int exitStatus, const std::string &text) : std::runtime_error(text), status(exitStatus) {}
    const int status;
};
