#include "programs/Json.h"

#include "programs/Text.h"

std::string printed(const Json &json, int indentation) {
    return harmlessJson(json.dump(indentation, ' ', false, Json::error_handler_t::replace));
}
