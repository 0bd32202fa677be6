#pragma once

#include <string>

class SubOptionWalk;

// Standard output of the front end. Every line is flushed, so that a script that reads along sees it at once.

void printLine(const std::string &text);

// Prints the text as a line. In spite of its name it waits for nothing.
void WriteInforAndWaitInput(const std::string &text);

// Prints the word at the index, quoted, as a bad parameter. At the null entry that closes argv the output ends
// for good after the first quote.
void WriteBadParameterInfor(char **argv, int arg_index);

// The same for the word on which the walk rests. Returns the status.
int refuse(const SubOptionWalk &walk, int status);
