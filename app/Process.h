#pragma once

// What the process needs of the system before anything else runs, first of all before a port is opened.

// Opens /dev/null on what is closed among the three standard descriptors; otherwise the chip's port would take such
// a number, and what the console prints would go to the chip. False if it cannot.
bool holdStandardDescriptors();

// A reader of the output that went away, and a limit on the size of files, are failures of a write and no signals.
void takeFailedWritesAsErrors();

// The link library goes on without a trace that it cannot write. Where ZVBL_TRACE names one, a line on standard error
// says so.
void tellLostTrace();

// An exception that nobody takes ends the process with a line on standard error and this status, on any thread.
constexpr int unexpectedEnd = 70;
void reportUnexpectedEnds();
