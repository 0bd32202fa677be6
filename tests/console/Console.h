#pragma once

// Runs the real program against the recording doubles of its two libraries.

#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

// What one run left behind. The run's directory is written as "@".
struct Outcome {
    int status = -1;                // exit status; 128 and the number for a signal
    std::string text;               // standard output after the banner
    std::vector<std::string> calls; // of the bootloader library, without the link's handle, and sleeps
    std::vector<std::string> files; // of the file library
    std::string errors;             // standard error

    // The calls of one function, in order.
    std::vector<std::string> callsOf(const std::string &function) const;
    // Those that change the chip's memory or its protection, and jumps.
    std::vector<std::string> changes() const;
};

// A chip to connect to: its identifier as the library hands it over, and what goes into its map file.
struct Chip {
    std::string name;
    std::string id;
    std::string pid;
    std::string series;
    int flashKb;
    int sectorSize; // bytes
};

extern const Chip f403a;  // without confirmation, takes SPIM sectors
extern const Chip f403_2; // short identifier
extern const Chip f415;   // refuses SPIM sectors
extern const Chip f425;   // asks for "--y"
extern const Chip f457;   // large OTP area
extern const Chip m412;   // small OTP area

// A directory of its own for the runs of one test, with the map file of the chip at the other end.
class Console {
public:
    Console();
    ~Console();
    Console(const Console &) = delete;
    Console &operator=(const Console &) = delete;

    // Puts another chip at the other end of the link.
    void connectTo(const Chip &chip);
    const Chip &chip() const { return connected; }
    // Rules for the doubles, added to those before.
    void script(const std::string &rules);
    void filesScript(const std::string &rules);

    // Writes a file into the directory.
    void file(const std::string &name, const std::string &content);
    std::string path(const std::string &name) const;

    // Runs the words of the line, in which "@" is the directory, and checks what holds for every run: the
    // banner, and nothing on standard error.
    Outcome run(const std::string &line);
    // The same without a look at standard error.
    Outcome runToAnUnexpectedEnd(const std::string &line);
    // The same as run for words that hold blanks or are empty.
    Outcome runWords(const std::vector<std::string> &words);
    // Runs the line with standard output on the given descriptor and tells the status alone.
    int statusOf(const std::string &line, int output);
    // Runs the line without some of the descriptors 0 to 2 up to where it stops itself, and tells what they are then;
    // "" for one that is closed. Afterwards the process is gone.
    std::vector<std::string> descriptorsWithout(const std::set<int> &closed, const std::string &line);

private:
    Outcome runAndListen(const std::vector<std::string> &words);
    std::string resolve(std::string text) const;
    std::vector<std::string> split(const std::string &line) const;
    std::string abbreviate(std::string text) const;

    std::string directory;
    Chip connected;
    std::string rules;
    std::string filesRules;
};

// A test with a console.
class ConsoleTest : public testing::Test {
protected:
    Console console;
};

// A test of words after a connection.
class ConnectedTest : public ConsoleTest {
protected:
    // Runs them; the text is what they print, after that of the connection, which is checked.
    Outcome connected(const std::string &line);
};

// What a successful connection command prints.
std::string connectText(const std::string &link, const Chip &chip = f403a);

std::vector<std::string> lines(const std::string &text);
