#include <cctype>
#include <iterator>

#include "foundation/ShareParameter.h"
#include "look/line/Options.h"
#include "look/line/Values.h"

namespace {

enum class Kind { text, decimal, hex, sectors };

struct ValueRow {
    SubId id;
    Kind kind;
};

// What is not here is a text.
constexpr ValueRow valueRows[] = {
    {SubId::baudRate, Kind::decimal},   {SubId::dataBits, Kind::decimal},  {SubId::timeLimit, Kind::decimal},
    {SubId::bootSwitch, Kind::decimal}, {SubId::busAddress, Kind::hex},    {SubId::busRate, Kind::decimal},
    {SubId::dutyCycle, Kind::decimal},  {SubId::speed, Kind::decimal},     {SubId::sectors, Kind::sectors},
    {SubId::address, Kind::hex},        {SubId::flashType, Kind::decimal}, {SubId::flashSize, Kind::decimal},
    {SubId::flashKeys, Kind::hex},      {SubId::remap, Kind::decimal},     {SubId::protectSectors, Kind::sectors},
};

// What becomes of a sub-option whose value is missing.
struct WithoutRow {
    OptionId option;
    SubId id;
    const char *becomes;
};

constexpr WithoutRow withoutRows[] = {
    {OptionId::erase, SubId::sectors, "sector 0 is erased"},
    {OptionId::upload, SubId::sectors, "sector 0 is read"},
    {OptionId::protection, SubId::protectSectors, "sector 0 is protected"},
    {OptionId::download, SubId::address, "the address stays what it was, 08000000 at first"},
    {OptionId::run, SubId::address, "the address is 08000000"},
    {OptionId::download, SubId::file, "it is refused"},
    {OptionId::upload, SubId::file, "it is refused"},
    {OptionId::otp, SubId::file, "nothing is written"},
    {OptionId::spim, SubId::flashKeys, "it is refused"},
};

Kind kindOf(SubId id) {
    for (const ValueRow &row : valueRows)
        if (row.id == id)
            return row.kind;
    return Kind::text;
}

std::string withoutValue(OptionId option, SubId id) {
    for (const WithoutRow &row : withoutRows)
        if (row.option == option && row.id == id)
            return row.becomes;
    return "it counts as 0";
}

bool isOf(Kind kind, const std::string &value) {
    switch (kind) {
    case Kind::decimal: return isDecimal(value);
    case Kind::hex: return isHex(value);
    case Kind::sectors: return isSectorRange(value);
    case Kind::text: break;
    }
    return true;
}

const char *wanted(Kind kind) {
    switch (kind) {
    case Kind::decimal: return "a decimal number";
    case Kind::hex: return "a hexadecimal number";
    case Kind::sectors: return "a range of sectors such as 0-3; one sector is 5-5";
    case Kind::text: break;
    }
    return "a text";
}

class Checker {
public:
    Checker(const Line &line, OptionId option, Section &findings)
        : m_line(line), m_option(option), m_findings(findings), m_index(line.index),
          m_walk(line.argc, line.argv, m_index,
                 isConnection(option) ? SubOptionWalk::leavesLastWord : SubOptionWalk::runsLastWord) {}

    std::string check() {
        // A connection over USB takes no words.
        if (m_option == OptionId::dfu)
            ++m_index;
        else
            while (m_walk.next())
                checkSub();
        std::string words;
        for (int i = m_line.index; i < m_index && i < m_line.argc; ++i)
            words += (i == m_line.index ? "" : " ") + std::string(m_line.argv[i]);
        return words;
    }

private:
    void error(const std::string &name, const std::string &text, const std::string &cure = {}) {
        m_findings.finding(Mark::error, name, text, cure);
    }

    void checkSub() {
        const SubWord *sub = subWord(m_option, m_walk.word());
        if (sub == nullptr) {
            tellSwallowed();
            return;
        }
        switch (sub->takes) {
        case Takes::nothing: m_walk.takeBack(); break;
        case Takes::confirmation: isConfirmed(m_walk, m_line.device); break;
        case Takes::namedFile: checkNamedFile(); break;
        case Takes::value: checkValue(*sub); break;
        }
    }

    void tellSwallowed() {
        const std::string word = m_walk.word();
        const std::string value = m_walk.hasValue() ? " and its value \"" + m_walk.value() + "\" do" : " does";
        const std::string lower = ShareParameter::ToLower(word);
        std::string cure = "take it out";
        if (lower == "--a")
            cure = "write --addr";
        else if (subWord(m_option, lower) != nullptr)
            cure = "write " + lower;
        error("swallowed word", "\"" + word + "\"" + value + " nothing here", cure);
    }

    void checkValue(const SubWord &sub) {
        const std::string word = m_walk.word();
        if (!m_walk.hasValue()) {
            error("missing value", word + " has no value: " + withoutValue(m_option, sub.id), "give it one");
            return;
        }
        const std::string value = m_walk.value();
        const Kind kind = kindOf(sub.id);
        if (Is_Option(value) || Is_SubOption(value))
            error("missing value", "the value of " + word + " is the next word, \"" + value + "\"", "give it one");
        else if (!isOf(kind, value))
            error("odd value", word + " \"" + value + "\" is not " + wanted(kind));
    }

    void checkNamedFile() {
        const std::string word = m_walk.word();
        if (!m_walk.hasValue())
            error("missing value", word + " has no file: nothing is done", "write " + word + " --fn PATH");
        else if (m_walk.value() != "--fn")
            error("missing value", word + " needs --fn and a path, not \"" + m_walk.value() + "\"",
                  "write " + word + " --fn PATH");
        if (m_walk.hasValue())
            m_walk.advance();
    }

    const Line &m_line;
    const OptionId m_option;
    Section &m_findings;
    int m_index;
    SubOptionWalk m_walk;
};

} // namespace

std::string checkWords(const Line &line, OptionId option, Section &findings) {
    return Checker(line, option, findings).check();
}
