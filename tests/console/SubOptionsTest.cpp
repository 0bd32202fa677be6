#include "app/SubOptions.h"

#include <sstream>
#include <stdexcept>

#include <gtest/gtest.h>

#include "FakeLink.h"

namespace {

// Walks from the first word on and tells what it saw: sub-option and value, "!" for a bad word, and where the
// index rests at the end. "--v" and "--all" take no value.
std::string walkOver(const std::string &text, SubOptionWalk::LastWord last) {
    Line line(text);
    int index = 0;
    std::ostringstream seen;
    SubOptionWalk walk(line.argc(), line.argv(), index, last);
    while (walk.next()) {
        const std::string word = walk.word();
        seen << word << "=" << walk.value() << " ";
        if (word == "--v" || word == "--all")
            walk.takeBack();
    }
    seen << (walk.atBadWord() ? "!" : "") << index;
    return seen.str();
}

TEST(SubOptionWalk, OfActions) {
    const struct {
        const char *line;
        const char *seen;
    } table[] = {
        {"-e", "1"},
        {"-e -d", "1"},
        {"-e --all", "--all= 2"},
        {"-e --sec", "--sec= 2"},
        {"-e --sec 0-1", "--sec=0-1 3"},
        {"-e --all --sec 0-1 -d --v", "--all=--sec --sec=0-1 4"},
        {"-d --fn -e", "--fn=-e 3"},
        {"-d --v --fn x", "--v=--fn --fn=x 4"},
        {"-d --fn x --v", "--fn=x --v= 4"},
        {"-d --a 8004000 --v", "--a=8004000 --v= 4"},
        {"-e --bogus", "!1"},
        {"-e --all bogus --sec", "--all=bogus !2"},
        {"-e --ALL 7 --sec 1-2", "--ALL=7 --sec=1-2 5"},
    };
    for (const auto &row : table)
        EXPECT_EQ(walkOver(row.line, SubOptionWalk::runsLastWord), row.seen) << row.line;
}

TEST(SubOptionWalk, OfConnectionCommands) {
    const struct {
        const char *line;
        const char *seen;
    } table[] = {
        {"-com", "1"},
        {"-com --pn", "1"},
        {"-com --pn ttyS0", "--pn=ttyS0 3"},
        {"-com --pn ttyS0 --br", "--pn=ttyS0 3"},
        {"-com --pn ttyS0 -e --all", "--pn=ttyS0 3"},
        {"-com --pn ttyS0 --xyz 1", "--pn=ttyS0 !3"},
        {"-com --pn ttyS0 --xyz", "--pn=ttyS0 !3"},
    };
    for (const auto &row : table)
        EXPECT_EQ(walkOver(row.line, SubOptionWalk::leavesLastWord), row.seen) << row.line;
}

TEST(SubOptionWalk, WordAt) {
    Line line("a b");
    EXPECT_EQ(wordAt(line.argc(), line.argv(), 1), "b");
    EXPECT_THROW(wordAt(line.argc(), line.argv(), 2), std::logic_error);
    EXPECT_THROW(wordAt(line.argc(), line.argv(), 3), std::logic_error);
}

TEST(SubOptions, AWordThatIsNotThereIsNoWord) {
    Line line("-e");
    EXPECT_EQ(wordAt(1, line.argv(), 0), "-e");
    EXPECT_THROW(wordAt(1, line.argv(), 1), std::logic_error);
    EXPECT_THROW(wordAt(2, line.argv(), 1), std::logic_error); // the null entry at the end
}

} // namespace
