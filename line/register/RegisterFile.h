#pragma once

#include <string>

// The file of a register, as far as its file system goes.

// The name of a file system that other machines may write to at the same time, by its number in statfs(2); null for
// any other. A database there is not safe: locks and memory are not shared with those machines.
const char *networkFileSystem(long number);

// Of a path, "." for a name alone.
std::string directoryOf(const std::string &path);

// Makes an empty file, which its group may read and write, unless there is one. Throws Refusal, with registerUnusable,
// for a file system that is shared over a network, for what is no regular file, and where it can't be made.
void makeRegisterFile(const std::string &path);
