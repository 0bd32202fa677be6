#pragma once

#include "line/hooks/Hook.h"

// What hook.before says of a unit.
struct Permission {
    bool given;
    std::string why; // where it is not given; from outside in part
    Json supply;     // an object: values for the unit's data, texts and whole numbers; empty where it names none
};

// By the end of the hook. Only an answer that is right gives permission: {"ok":true}, with "supply" or without.
Permission permissionOf(const HookCall &call, const HookEnd &end);
