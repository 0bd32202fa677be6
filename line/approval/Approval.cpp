#include "line/approval/Approval.h"

#include <cerrno>
#include <cstring>

#include <sys/stat.h>

#include "libs/files/AtomicFile.h"
#include "programs/FileBytes.h"
#include "programs/Status.h"

namespace {

constexpr mode_t othersWrite = S_IWGRP | S_IWOTH;
constexpr std::size_t longestPlan = 16 * 1024 * 1024;

[[noreturn]] void refuse(const std::string &what, const std::string &why) {
    throw Refusal(notApproved, what + ": " + why);
}

bool isRootsAlone(const struct stat &info) {
    return info.st_uid == 0 && (info.st_mode & othersWrite) == 0;
}

bool isRootsFile(const std::string &path) {
    struct stat info;
    return lstat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) && isRootsAlone(info);
}

bool isRootsDirectory(const std::string &path) {
    struct stat info;
    return lstat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode) && isRootsAlone(info);
}

void write(const std::string &path, const std::string &text) {
    using files::Status;
    umask(othersWrite); // all may read it
    files::AtomicFile file;
    const bool written = file.create(path.c_str()) == Status::ok &&
                         file.write(text.data(), text.size()) == Status::ok && file.commit() == Status::ok;
    if (!written)
        refuse(path, "can't be written");
}

} // namespace

bool needsApproval(const Station &station, const Plan &plan) {
    return plan.irreversible || station.approval == ApprovalRule::always;
}

bool isApproved(const std::string &directory, const Plan &plan) {
    const std::string path = directory + '/' + plan.hash;
    if (!isRootsDirectory(directory) || !isRootsFile(path))
        return false;
    try {
        return bytesOfFile(path, longestPlan) == plan.text;
    } catch (const Refusal &) {
        return false;
    }
}

void approve(const std::string &directory, const Plan &plan, const std::string &hash) {
    if (hash != plan.hash)
        refuse(hash, "is not the hash of this plan, which is " + plan.hash);
    struct stat info;
    if (lstat(directory.c_str(), &info) != 0)
        refuse(directory, std::strerror(errno));
    if (!isRootsDirectory(directory))
        refuse(directory, "is no directory that belongs to root and that nobody else may write");
    write(directory + '/' + plan.hash, plan.text);
    if (!isApproved(directory, plan))
        refuse(directory, "only what root has put there is an approval");
}
