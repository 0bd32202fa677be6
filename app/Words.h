#pragma once

#include <string>

// The words of the command line, as data: what acts on them, and what only looks at a line, both go by these tables.

enum class OptionId {
    usage,
    dfu,
    usart,
    i2c,
    can,
    spi,
    erase,
    protection,
    download,
    upload,
    userSystemData,
    run,
    spim,
    otp
};

enum class SubId {
    port,
    baudRate,
    dataBits,
    parity,
    timeLimit,
    bootSwitch,
    busAddress,
    busRate,
    dutyCycle,
    speed,
    all,
    sectors,
    protectAccess,
    protectAccessHigh,
    unprotectAccess,
    protectSectors,
    unprotectSectors,
    address,
    verify,
    optimize,
    file,
    get,
    set,
    remap,
    flashType,
    flashSize,
    flashKeys
};

// Whether the word after a sub-option is its value.
enum class Takes {
    value,
    nothing,
    confirmation, // where the family asks for one
    namedFile     // two words, "--fn" and a path
};

struct SubWord {
    const char *text; // exact, but of a connection in lower case for any case
    SubId id;
    Takes takes;
};

struct OptionWord {
    const char *text; // exact
    OptionId id;
    const SubWord *first;
    const SubWord *last; // one after
};

// The option of a word, null if it is none.
const OptionWord *optionWord(const std::string &word);

// The sub-option that a word stands for behind an option; null for one that the option doesn't know.
const SubWord *subWord(OptionId option, const std::string &word);

// True for exactly the option words, case-sensitive.
bool Is_Option(const std::string &option);

// True for the 32 sub-option words in any case, whether or not an option knows them. "--y" is none of them: it only
// ever stands as a value.
bool Is_SubOption(const std::string &suboption);

// Whether an option makes a link.
bool isConnection(OptionId option);

// Parity for the link, 0 none, 1 odd, 2 even and everything else. Unlike ShareParameter::ParityToInt it takes
// any case.
int ParityToInt(const std::string &parity);
