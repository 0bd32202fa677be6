#pragma once

#include <string>
#include <vector>

#include <sys/stat.h>

#include "look/doctor/Cause.h"

// Who we are to the kernel, and to the list of groups.
struct Person {
    std::string name;
    unsigned int user;
    std::vector<unsigned int> groups;     // of this process
    std::vector<unsigned int> registered; // that the next login has

    static Person self();
};

// The name of a group, its number if it has none.
std::string groupName(unsigned int group);

// Why the person may not open a node of that owner, group and mode: noGroup, notInGroup or oldLogin.
Cause whyDenied(const struct stat &node, const Person &person);
