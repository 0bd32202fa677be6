#include "line/hooks/Permission.h"

namespace {

Permission refused(const std::string &why) {
    return {false, why, Json::object()};
}

bool isSupply(const Json &supply) {
    if (!supply.is_object())
        return false;
    for (const Json &value : supply)
        if (!value.is_string() && !value.is_number_integer())
            return false;
    return true;
}

} // namespace

Permission permissionOf(const HookCall &call, const HookEnd &end) {
    if (!end.failure.empty())
        return refused(end.failure);
    const std::string &name = call.run.front();
    const Json answer = Json::parse(end.output, nullptr, false);
    if (!answer.is_object())
        return refused(name + ": its answer is no JSON object");
    const Json ok = answer.value("ok", Json());
    if (!ok.is_boolean())
        return refused(name + ": its answer has no \"ok\" that is true or false");
    const Json why = answer.value("why", Json("says no"));
    if (!ok.get<bool>())
        return refused(why.is_string() ? why.get<std::string>() : name + ": its \"why\" is no text");
    const Json supply = answer.value("supply", Json::object());
    return isSupply(supply) ? Permission{true, "", supply}
                            : refused(name + ": its \"supply\" is no object of texts and whole numbers");
}
