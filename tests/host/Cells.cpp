#include "tests/host/Cells.h"

#include <sstream>

namespace host {

std::string textOf(const Count &count) {
    std::ostringstream text;
    text << count.cases << ' ' << count.right << ' ' << count.left << ' ' << count.lies << ' ' << count.seconds;
    return text.str();
}

Count countOf(const std::string &text) {
    Count count;
    std::istringstream(text) >> count.cases >> count.right >> count.left >> count.lies >> count.seconds;
    return count;
}

} // namespace host
