#pragma once

#include <CLI/CLI.hpp>

#include "line/books/Books.h"

// Words that say which attempts are asked for. What they are told is in the form of the register after parsing.
void declareOrder(CLI::App &words, Wanted &wanted);
void declareSince(CLI::App &words, Wanted &wanted);
void declareUid(CLI::App &words, Wanted &wanted);
