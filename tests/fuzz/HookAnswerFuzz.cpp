#include "line/hooks/Permission.h"
#include "tests/fuzz/Target.h"

// Anything as the answer of a hook: permission is given by {"ok":true} alone.
int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const HookCall call{{"/usr/local/lib/line/may-i"}, 5, {}};
    const std::string output(data, data + size);
    const Permission permission = permissionOf(call, {"", output});
    fuzz::require(permission.supply.is_object(), "what is supplied has names");
    fuzz::require(permission.given || permission.supply.empty(), "nothing is supplied for a unit that may not be made");
    if (permission.given) {
        const Json answer = Json::parse(output, nullptr, false);
        fuzz::require(answer.is_object() && answer.at("ok") == true, "permission is given in so many words");
    }
    for (const Json &value : permission.supply)
        fuzz::require(value.is_string() || value.is_number_integer(), "texts and whole numbers are supplied");
    fuzz::require(!permissionOf(call, {"it failed", output}).given, "a hook that failed gives no permission");
    return 0;
}
