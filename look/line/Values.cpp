#include "look/line/Values.h"

#include "app/Requests.h"
#include "foundation/ShareParameter.h"

namespace {

constexpr char digits[] = "0123456789";
constexpr char hexDigits[] = "0123456789abcdefABCDEF";

bool isAll(const std::string &text, const char *characters) {
    return !text.empty() && text.find_first_not_of(characters) == std::string::npos;
}

} // namespace

bool isDecimal(const std::string &text) {
    return isAll(text, digits) && text.size() <= 10;
}

bool isHex(const std::string &text) {
    const bool prefixed = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    const std::string number = prefixed ? text.substr(2) : text;
    return isAll(number, hexDigits) && number.size() <= 8;
}

bool isSectorRange(const std::string &text) {
    const std::size_t hyphen = text.find('-');
    return hyphen != std::string::npos && isDecimal(text.substr(0, hyphen)) && isDecimal(text.substr(hyphen + 1));
}

bool isConfirmed(SubOptionWalk &walk, const CDevice *device) {
    if (device == nullptr && ShareParameter::ToLower(walk.value()) == "--y")
        return true;
    return readConfirmation(walk, device);
}
