#include "line/channel/Told.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <stdexcept>

namespace {

constexpr std::size_t uidDigits = 24;
constexpr std::size_t longestText = 4096;

bool isText(const Json &value) {
    return value.is_string() && value.get_ref<const std::string &>().size() <= longestText;
}

bool isName(const Json &value) {
    return isText(value) && value != "";
}

bool isHex(const Json &value) {
    if (!value.is_string())
        return false;
    const auto &digits = value.get_ref<const std::string &>();
    return digits.size() % 2 == 0 && digits.find_first_not_of("0123456789abcdef") == digits.npos;
}

bool isUid(const Json &value) {
    return isHex(value) && value.get_ref<const std::string &>().size() == uidDigits;
}

bool isCode(const Json &value) {
    return value.is_number_integer() && value >= 0 && value <= INT32_MAX;
}

bool isStep(const Json &value) {
    static const Json steps = {"connect", "identify", "erase", "write",  "verify",
                               "options", "protect",  "otp",   "access", "run"};
    return std::find(steps.begin(), steps.end(), value) != steps.end();
}

bool isResult(const Json &value) {
    return value == "pass" || value == "fail" || value == "interrupted";
}

bool areTexts(const Json &value) {
    return value.is_array() && std::all_of(value.begin(), value.end(), isText);
}

bool areTimes(const Json &value) {
    if (!value.is_object())
        return false;
    for (const auto &one : value.items())
        if (!isStep(one.key()) || !one.value().is_number_integer() || one.value() < 0)
            return false;
    return true;
}

bool areOptions(const Json &value) {
    const auto isOne = [](const Json &bytes) { return bytes.is_null() || isHex(bytes); };
    return value.is_object() && value.size() == 2 && value.contains("before") && value.contains("after") &&
           isOne(value.at("before")) && isOne(value.at("after"));
}

struct Member {
    const char *event;
    const char *name;
    bool (*isRight)(const Json &value);
};

constexpr Member members[] = {
    {"step", "step", isStep},
    {"identified", "chip", isText},
    {"identified", "pid", isText},
    {"identified", "bootloader", isText},
    {"identified", "uid", isUid},
    {"irreversible", "what", areTexts},
    {"end", "result", isResult},
    {"end", "ms", areTimes},
    {"end", "verified", [](const Json &value) { return value.is_boolean(); }},
    {"end", "options", areOptions},
};

// Where the unit failed.
constexpr Member ofFailure[] = {
    {"end", "cause", isName},
    {"end", "code", isCode},
    {"end", "text", isText},
};

void check(const Json &message, const Member &member) {
    if (!message.contains(member.name) || !member.isRight(message.at(member.name)))
        throw std::runtime_error(std::string("it tells no ") + member.name);
}

} // namespace

void checkTold(const Json &message) {
    const auto told = message.find("event");
    const std::string event = told != message.end() && told->is_string() ? told->get<std::string>() : "";
    bool isKnown = false;
    for (const Member &member : members)
        if (event == member.event) {
            check(message, member);
            isKnown = true;
        }
    if (!isKnown)
        throw std::runtime_error("it tells what is no event");
    if (event == "end" && message.at("result") == "pass" && message.at("verified") == false)
        throw std::runtime_error("it passes what was not verified");
    if (event == "end" && message.at("result") == "fail")
        for (const Member &member : ofFailure)
            check(message, member);
}
