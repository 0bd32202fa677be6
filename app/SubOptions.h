#pragma once

#include <cstddef>
#include <string>

#include "app/Words.h"

// The word at the index. The null entry that closes argv raises std::logic_error, as does everything beyond it.
std::string wordAt(int argc, char **argv, int index);

// Walks over the sub-options after one option word. It moves the running index of the command line: while a
// sub-option is looked at, the index rests on its value, which for the last word of the line is no word at all.
class SubOptionWalk {
public:
    enum LastWord {
        runsLastWord,  // a trailing sub-option runs with an empty value
        leavesLastWord // it is left to main, which calls it a bad parameter
    };

    SubOptionWalk(int argc, char **argv, int &argIndex, LastWord lastWord = runsLastWord);

    // True at a sub-option. False at the end: of the line, at the next option, or at a word that is neither.
    bool next();
    // After the end: whether it was a word that is neither option nor sub-option. The index rests on it.
    bool atBadWord() const { return m_badWord; }

    // The sub-option as it was written.
    std::string word() const;
    bool hasValue() const { return argIndex < argc; }
    // The value, empty if there is none.
    std::string value() const;
    // For a sub-option without a value: gives the word back that the walk took for it.
    void takeBack() { --argIndex; }
    // Takes one more word.
    void advance() { ++argIndex; }

    const int argc;
    char **const argv;
    int &argIndex;

private:
    const LastWord m_lastWord;
    bool m_badWord = false;
};

// What a handler does at one of its option's sub-options: 0, or the exit status of its failure.
template <typename Context>
struct SubOption {
    SubId id;
    int (*run)(SubOptionWalk &, Context &);
};

// Runs the sub-options of an option as the walk reaches them, each at once; a word that the option doesn't know does
// nothing and its value stays swallowed. Returns 0 or the first status that is not.
template <typename Context, std::size_t count>
int runSubOptions(SubOptionWalk &walk, OptionId option, const SubOption<Context> (&table)[count], Context &context) {
    while (walk.next()) {
        const SubWord *sub = subWord(option, walk.word());
        if (sub == nullptr)
            continue;
        if (sub->takes == Takes::nothing)
            walk.takeBack();
        for (const SubOption<Context> &row : table)
            if (row.id == sub->id)
                if (const int status = row.run(walk, context))
                    return status;
    }
    return 0;
}
