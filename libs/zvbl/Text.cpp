#include "libs/zvbl/Text.h"

#include <cstring>

namespace zvbl {

std::string printable(const std::string &text) {
    static const char digits[] = "0123456789ABCDEF";
    std::string shown;
    for (const char letter : text) {
        const auto code = static_cast<unsigned char>(letter);
        if (letter >= ' ' && letter <= '~')
            shown += letter;
        else
            shown += {'\\', 'x', digits[code >> 4], digits[code & 0xF]};
    }
    return shown;
}

std::string errorText(int error) {
    const char *text = strerrordesc_np(error);
    return text ? text : "error " + std::to_string(error);
}

} // namespace zvbl
