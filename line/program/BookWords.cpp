#include "line/program/BookWords.h"

#include <regex>

#include "line/job/UnitText.h"

namespace {

// "2026-11-21", and from the left as much of a time as somebody cares for. The texts of the register are compared.
std::string sinceOf(std::string &text) {
    static const std::regex form(R"((\d{4}-\d\d-\d\d)(?:[T ](\d\d:\d\d(?::\d\d(?:\.\d{1,3})?)?)Z?)?)");
    std::smatch found;
    if (!std::regex_match(text, found, form))
        return "is no time in UTC as 2026-11-21 or 2026-11-21T18:04";
    const std::string time = found[2].matched ? 'T' + found[2].str() : "";
    text = found[1].str() + time;
    return "";
}

std::string uidOf(std::string &text) {
    static const std::regex form("[0-9a-fA-F]{" + std::to_string(uidDigits) + '}');
    if (!std::regex_match(text, form))
        return "is no identifier of " + std::to_string(uidDigits) + " hexadecimal digits";
    for (char &c : text)
        c = c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c;
    return "";
}

} // namespace

void declareOrder(CLI::App &words, Wanted &wanted) {
    words.add_option("--order", wanted.order, "only units of this order");
}

void declareSince(CLI::App &words, Wanted &wanted) {
    words.add_option("--since", wanted.since, "only units that were begun then or later: a day, or a time, in UTC")
        ->transform(CLI::Validator(sinceOf, ""));
}

void declareUid(CLI::App &words, Wanted &wanted) {
    words.add_option("--uid", wanted.uid, "only the chip with this identifier")->transform(CLI::Validator(uidOf, ""));
}
