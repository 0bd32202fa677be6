#include "line/plan/UnitBytes.h"

#include <cstdint>

#include "programs/Status.h"
#include "programs/Text.h"

namespace {

constexpr int bitsOfByte = 8;
constexpr std::size_t mostDigits = 10; // of 32 bits
constexpr char hexDigits[] = "0123456789abcdefABCDEF";

std::string wordBytes(std::uint32_t word, bool lowestFirst) {
    std::string bytes;
    for (int i = 0; i < 4; ++i)
        bytes += static_cast<char>(word >> bitsOfByte * (lowestFirst ? i : 3 - i));
    return bytes;
}

[[noreturn]] void refuse(const UnitDatum &datum, const std::string &why) {
    throw Refusal(notMade, datum.place.key + ": " + why);
}

// A text with 00 behind it.
std::string filled(const UnitDatum &datum, std::string text) {
    if (text.size() > datum.size)
        refuse(datum, '"' + text + "\" has no room in " + std::to_string(datum.size) + " bytes");
    text.resize(datum.size, '\0');
    return text;
}

std::string suppliedText(const UnitDatum &datum, const std::string &text) {
    if (text.empty() || !isPrintable(text))
        refuse(datum, "what the hook supplies is empty, or no printable ASCII");
    return filled(datum, text);
}

std::string suppliedHex(const UnitDatum &datum, const std::string &digits) {
    if (digits.size() != 2 * datum.size || digits.find_first_not_of(hexDigits) != digits.npos)
        refuse(datum, "what the hook supplies are not the digits of " + std::to_string(datum.size) + " bytes");
    return bytesOfHex(digits);
}

// Decimal digits.
std::string suppliedWord(const UnitDatum &datum, const std::string &digits) {
    const bool isNumber = !digits.empty() && digits.size() <= mostDigits &&
                          digits.find_first_not_of("0123456789") == digits.npos && std::stoull(digits) <= UINT32_MAX;
    if (!isNumber)
        refuse(datum, "what the hook supplies is no number up to 4294967295");
    return wordBytes(static_cast<std::uint32_t>(std::stoul(digits)), datum.form == UnitForm::u32le);
}

std::string suppliedBytes(const UnitDatum &datum, const UnitFacts &facts) {
    const auto found = facts.supply.find(datum.supply);
    if (found == facts.supply.end())
        refuse(datum, "the hook supplies no \"" + datum.supply + '"');
    if (datum.form == UnitForm::ascii)
        return suppliedText(datum, found->second);
    return datum.form == UnitForm::hex ? suppliedHex(datum, found->second) : suppliedWord(datum, found->second);
}

std::string textOf(const UnitDatum &datum, const UnitFacts &facts) {
    switch (datum.value) {
    case UnitValue::number: return std::to_string(facts.number);
    case UnitValue::uid: return uidText(facts);
    case UnitValue::time: return timeText(facts);
    case UnitValue::order: return facts.order;
    case UnitValue::text:
    case UnitValue::supply: break;
    }
    return UnitText(datum.text).of(facts);
}

bool holdsOrder(const UnitDatum &datum) {
    return datum.form == UnitForm::ascii &&
           (datum.value == UnitValue::order || (datum.value == UnitValue::text && UnitText(datum.text).has("order")));
}

} // namespace

void checkOrder(const std::vector<UnitDatum> &units, const std::string &order) {
    if (!isHarmless(order))
        throw Refusal(badWords, "--order: holds control characters");
    for (const UnitDatum &datum : units)
        if (holdsOrder(datum) && !isPrintable(order))
            throw Refusal(badWords, "--order: " + datum.place.file + ':' + std::to_string(datum.place.line) + ": " +
                                        datum.place.key + ": the chip gets it, and it is no printable ASCII");
}

std::string unitBytes(const UnitDatum &datum, const UnitFacts &facts) {
    if (datum.value == UnitValue::supply)
        return suppliedBytes(datum, facts);
    if (datum.form == UnitForm::u32le || datum.form == UnitForm::u32be) {
        const auto seconds = static_cast<std::uint32_t>(facts.time);
        return wordBytes(datum.value == UnitValue::time ? seconds : facts.number, datum.form == UnitForm::u32le);
    }
    if (datum.form == UnitForm::hex)
        return datum.value == UnitValue::uid ? facts.uid : bytesOfHex(datum.text);
    return filled(datum, textOf(datum, facts));
}
