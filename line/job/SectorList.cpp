#include "line/job/SectorList.h"

#include <regex>
#include <set>
#include <stdexcept>

namespace {

constexpr int lastSector = 32767;
constexpr char pattern[] = " *([0-9]{1,5}) *(?:- *([0-9]{1,5}) *)?";

} // namespace

std::vector<int> readSectors(const std::string &text) {
    static const std::regex range(pattern);
    std::set<int> sectors;
    for (std::size_t at = 0, comma = 0; at <= text.size(); at = comma + 1) {
        comma = std::min(text.find(',', at), text.size());
        const std::string part = text.substr(at, comma - at);
        std::smatch ends;
        if (!std::regex_match(part, ends, range))
            throw std::invalid_argument("must be numbers of sectors, such as \"0-15, 20\"");
        const int first = std::stoi(ends[1]);
        const int last = ends[2].matched ? std::stoi(ends[2]) : first;
        if (last < first || last > lastSector)
            throw std::invalid_argument("names no sectors: \"" + part + '"');
        for (int sector = first; sector <= last; ++sector)
            sectors.insert(sector);
    }
    return {sectors.begin(), sectors.end()};
}

std::string sectorsText(const std::vector<int> &sectors) {
    std::string text;
    for (std::size_t i = 0; i < sectors.size();) {
        std::size_t last = i;
        while (last + 1 < sectors.size() && sectors[last + 1] == sectors[last] + 1)
            ++last;
        text += (i > 0 ? ", " : "") + std::to_string(sectors[i]);
        text += last > i ? '-' + std::to_string(sectors[last]) : "";
        i = last + 1;
    }
    return text;
}
