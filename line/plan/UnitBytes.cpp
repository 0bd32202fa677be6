#include "line/plan/UnitBytes.h"

#include <cstdint>

#include "programs/Status.h"
#include "programs/Text.h"

namespace {

constexpr int bitsOfByte = 8;

std::string wordBytes(std::uint32_t word, bool lowestFirst) {
    std::string bytes;
    for (int i = 0; i < 4; ++i)
        bytes += static_cast<char>(word >> bitsOfByte * (lowestFirst ? i : 3 - i));
    return bytes;
}

std::string textOf(const UnitDatum &datum, const UnitFacts &facts) {
    switch (datum.value) {
    case UnitValue::number: return std::to_string(facts.number);
    case UnitValue::uid: return uidText(facts);
    case UnitValue::time: return timeText(facts);
    case UnitValue::order: return facts.order;
    case UnitValue::text: break;
    }
    return UnitText(datum.text).of(facts);
}

} // namespace

std::string unitBytes(const UnitDatum &datum, const UnitFacts &facts) {
    if (datum.form == UnitForm::u32le || datum.form == UnitForm::u32be) {
        const auto seconds = static_cast<std::uint32_t>(facts.time);
        return wordBytes(datum.value == UnitValue::time ? seconds : facts.number, datum.form == UnitForm::u32le);
    }
    if (datum.form == UnitForm::hex)
        return datum.value == UnitValue::uid ? facts.uid : bytesOfHex(datum.text);
    std::string text = textOf(datum, facts);
    if (text.size() > datum.size)
        throw Refusal(notMade,
                      datum.place.key + ": \"" + text + "\" has no room in " + std::to_string(datum.size) + " bytes");
    text.resize(datum.size, '\0');
    return text;
}
