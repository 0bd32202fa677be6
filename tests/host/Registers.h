#pragma once

#include <string>

#include <sys/types.h>

// What is changed of a system call that a watched thread is about to make, or has made. For x86-64.
namespace host {

void skipCall(pid_t thread); // it is not made
void setAnswer(pid_t thread, long answer);

// Gives it another argument. The thread counts on having its own one afterwards.
enum class Argument { first, third };
void setArgument(pid_t thread, Argument which, unsigned long value);
std::string textAt(pid_t thread, unsigned long address);

// Whether its first argument is a descriptor.
bool usesDescriptor(long call);

} // namespace host
