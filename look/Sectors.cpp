#include "look/Sectors.h"

#include <vector>

namespace {

struct Range {
    int first;
    int last;
};

std::vector<Range> rangesOf(const QList<int> &sectors) {
    std::vector<Range> ranges;
    for (const int sector : sectors)
        if (!ranges.empty() && sector - 1 == ranges.back().last)
            ranges.back().last = sector;
        else
            ranges.push_back({sector, sector});
    return ranges;
}

} // namespace

std::string rangesText(const QList<int> &sectors) {
    std::string text;
    for (const Range &range : rangesOf(sectors)) {
        text += (text.empty() ? "" : ", ") + std::to_string(range.first);
        if (range.last != range.first)
            text += "-" + std::to_string(range.last);
    }
    return text;
}

Value sectorsValue(const QList<int> &sectors) {
    Json json = Json::array();
    for (const Range &range : rangesOf(sectors))
        json.push_back({range.first, range.last});
    const int count = sectors.size();
    return {json, rangesText(sectors) + " (" + std::to_string(count) + (count == 1 ? " sector)" : " sectors)")};
}
