#include "look/line/Walk.h"

#include "foundation/ShareParameter.h"
#include "look/line/Options.h"

namespace {

struct Row {
    OptionId id;
    int (*look)(Line &);
};

constexpr Row rows[] = {
    {OptionId::erase, lookAtErase},       {OptionId::protection, lookAtProtection},
    {OptionId::download, lookAtDownload}, {OptionId::upload, lookAtUpload},
    {OptionId::run, lookAtRun},           {OptionId::userSystemData, lookAtUserSystemData},
    {OptionId::spim, lookAtSpim},         {OptionId::otp, lookAtOtp},
};

std::string wordsFrom(const Line &line, int index) {
    std::string words;
    for (int i = index; i < line.argc; ++i)
        words += (words.empty() ? "" : " ") + std::string(line.argv[i]);
    return words;
}

int tellUsage(Line &line) {
    line.beginStep(line.argv[line.index]);
    line.note("usage text", "it is printed, and the line ends");
    if (line.index + 1 < line.argc)
        line.error("out of reach", "nothing behind it is looked at: " + wordsFrom(line, line.index + 1));
    return OP_SUCCESS;
}

int tellBadWord(Line &line) {
    line.beginStep(line.argv[line.index]);
    if (Is_SubOption(line.argv[line.index]) && line.index == line.argc - 1)
        line.error("missing value", "a sub-option without its value at the end of the line", "give it one");
    else
        line.error("bad word", "no option word: the line ends here");
    if (line.index == line.argc - 1)
        line.note("silence", "the console prints nothing about the last word");
    return OP_BAD_PARAM;
}

int lookAtOption(Line &line, const OptionWord &option) {
    line.beginStep();
    line.step().entitle(checkWords(line, option.id, line.step()));
    if (std::string(option.text) == "-o")
        line.warn("option word", "-o is the same as -usd", "to leave blanks out: --o, behind -d");
    if (isConnection(option.id))
        return lookAtConnection(line, option.id);
    if (!line.lost.empty() && option.id != OptionId::protection)
        line.error("out of reach", line.lost, "put it last, or on a line of its own");
    for (const Row &row : rows)
        if (row.id == option.id)
            return row.look(line);
    return OP_SUCCESS;
}

} // namespace

int lookAtWords(Line &line) {
    int status = OP_SUCCESS;
    while (status == OP_SUCCESS && line.index < line.argc) {
        const OptionWord *option = optionWord(line.argv[line.index]);
        if (option == nullptr)
            return tellBadWord(line);
        if (option->id == OptionId::usage)
            return tellUsage(line);
        status = lookAtOption(line, *option);
    }
    if (status != OP_SUCCESS && line.index < line.argc)
        line.note("out of reach", "nothing behind it is looked at");
    return status;
}
