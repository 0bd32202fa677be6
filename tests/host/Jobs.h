#pragma once

// The command lines of the console that are harmed.
namespace host {

// What is at the other end of them.
enum class End {
    paper, // the recording double of the bootloader library: no port, no time
    chip,  // our library, a pseudo terminal and the simulated chip
};

struct Job {
    const char *name;
    End end;
    const char *words;   // behind those of the connection
    int failure;         // the exit status of its action
    const char *success; // the last line that it prints
    const char *output;  // the file that it makes, or null
    bool replaces;       // one of that name is there before
    bool mayFindNothing; // MEANT: a file that can't be opened counts as an empty one
};

constexpr Job jobs[] = {
    {"upload over a file", End::paper, "-u --sec 0-3 --fn ./keep.bin", 4, "Upload successfully!", "keep.bin", true,
     false},
    {"upload as HEX", End::paper, "-u --sec 0-3 --fn ./new.hex", 4, "Upload successfully!", "new.hex", false, false},
    {"upload as S-records", End::paper, "-u --sec 0-3 --fn ./keep.s19", 4, "Upload successfully!", "keep.s19", true,
     false},
    {"option bytes into a file", End::paper, "-usd --get --fn ./options.bin", 7,
     "Get user system data to file succeed!", "options.bin", true, false},
    {"option bytes from a file", End::paper, "-usd --set --fn ./kept.bin", 6,
     "Set user system data to device successfully!", nullptr, false, false},
    {"download of HEX", End::paper, "-d --fn ./image.hex --v", 3, "Download successfully!", nullptr, false, false},
    {"download of S-records", End::paper, "-d --fn ./image.s19 --v", 3, "Download successfully!", nullptr, false,
     false},
    {"download of a binary", End::paper, "-d --fn ./image.bin --v", 3, "Download successfully!", nullptr, false, false},
    {"OTP data", End::paper, "-otp --fn ./lot.zvtp", 64, "set OTP data to device successfully!", nullptr, false, true},
    {"upload from a chip", End::chip, "-u --sec 0-3 --fn ./keep.bin", 4, "Upload successfully!", "keep.bin", true,
     false},
    {"download into a chip", End::chip, "-d --fn ./image.bin --v", 3, "Download successfully!", nullptr, false, false},
};

} // namespace host
