#include "usersystemdata/OptionNames.h"

#include <algorithm>

namespace {

// In the order of OptionItem.
constexpr const char *itemNames[] = {"fap", "ssb", "ssb1", "data", "epp", "eopb0", "res1", "bank3key"};

} // namespace

const char *nameOf(OptionItem item) {
    return itemNames[static_cast<int>(item)];
}

std::vector<NamedOptionByte> namedOptionBytes(int family, int compactLength) {
    std::vector<NamedOptionByte> names;
    const OptionLayout layout = optionLayout(family);
    for (const LayoutRow *row = layout.first; row != layout.last; ++row) {
        const int end = row->count == toTheEnd ? compactLength : row->firstByte + row->count;
        const bool isOne = row->count == 1 && row->item != OptionItem::data;
        for (int byte = row->firstByte; byte < std::min(end, compactLength); ++byte) {
            const int index = row->firstIndex + byte - row->firstByte;
            const std::string name = nameOf(row->item);
            names.push_back({isOne ? name : name + std::to_string(index), row->item, byte, index, isOne});
        }
    }
    return names;
}

const NamedOptionByte *named(const std::vector<NamedOptionByte> &names, const std::string &name) {
    const auto found =
        std::find_if(names.begin(), names.end(), [&](const NamedOptionByte &one) { return one.name == name; });
    return found == names.end() ? nullptr : &*found;
}
