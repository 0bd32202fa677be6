#include "look/doctor/Person.h"

#include <algorithm>
#include <grp.h>
#include <pwd.h>

#include <unistd.h>

namespace {

constexpr mode_t groupMay = S_IRGRP | S_IWGRP;
constexpr int mostGroups = 65536;

bool contains(const std::vector<unsigned int> &groups, unsigned int group) {
    return std::find(groups.begin(), groups.end(), group) != groups.end();
}

std::vector<unsigned int> groupsOfProcess() {
    std::vector<gid_t> groups(mostGroups);
    groups.resize(static_cast<std::size_t>(std::max(getgroups(mostGroups, groups.data()), 0)));
    groups.push_back(getegid());
    return {groups.begin(), groups.end()};
}

std::vector<unsigned int> groupsOfLogin(const passwd &user) {
    int count = 64;
    std::vector<gid_t> groups(static_cast<std::size_t>(count));
    while (getgrouplist(user.pw_name, user.pw_gid, groups.data(), &count) < 0 && count <= mostGroups)
        groups.resize(static_cast<std::size_t>(count));
    groups.resize(static_cast<std::size_t>(std::min<int>(count, static_cast<int>(groups.size()))));
    return {groups.begin(), groups.end()};
}

} // namespace

Person Person::self() {
    Person person{std::to_string(geteuid()), geteuid(), groupsOfProcess(), {}};
    if (const passwd *user = getpwuid(geteuid())) {
        person.name = user->pw_name;
        person.registered = groupsOfLogin(*user);
    }
    return person;
}

std::string groupName(unsigned int group) {
    const struct group *row = getgrgid(group);
    return row != nullptr ? row->gr_name : std::to_string(group);
}

Cause whyDenied(const struct stat &node, const Person &person) {
    // The group of root is no group to put somebody into.
    if ((node.st_mode & groupMay) != groupMay || node.st_gid == 0 || contains(person.groups, node.st_gid))
        return Cause::noGroup;
    return contains(person.registered, node.st_gid) ? Cause::oldLogin : Cause::notInGroup;
}
