#include "line/view/EventLines.h"

#include "line/view/Cell.h"
#include "line/view/Screen.h"

std::vector<std::string> eventLines(const State *before, const State &now, const Glyphs &glyphs) {
    std::vector<std::string> lines;
    if (before == nullptr)
        lines.push_back(headOf(now, glyphs));
    if (!now.notice.empty() && (before == nullptr || now.notice != before->notice))
        lines.push_back(shown(now.notice, glyphs));
    for (std::size_t i = 0; i < now.nests.size(); ++i) {
        const NestState &nest = now.nests[i];
        const NestState &earlier = before != nullptr && i < before->nests.size() ? before->nests[i] : NestState();
        // MEANT: a percent is not among the words: a step is one line.
        if (wordsOf(nest, glyphs) != wordsOf(earlier, glyphs))
            lines.push_back(shown(nest.name, glyphs) + ' ' + wordsOf(nest, glyphs));
    }
    if (now.undelivered != (before == nullptr ? 0 : before->undelivered))
        lines.push_back("not delivered: " + std::to_string(now.undelivered));
    return lines;
}
