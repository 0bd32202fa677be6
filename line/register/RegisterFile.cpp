#include "line/register/RegisterFile.h"

#include <cerrno>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include "programs/Status.h"

namespace {

constexpr mode_t groups = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP;

struct FileSystem {
    unsigned int number;
    const char *name;
};
constexpr FileSystem networked[] = {
    {0x00006969, "NFS"},    {0x0000517B, "SMB"},      {0xFE534D42, "SMB"},    {0xFF534D42, "CIFS"},
    {0x65735546, "FUSE"},   {0x01021997, "9P"},       {0x5346414F, "AFS"},    {0x6B414653, "AFS"},
    {0x73757245, "Coda"},   {0x0000564C, "NCP"},      {0x00C36400, "Ceph"},   {0x01161970, "GFS2"},
    {0x7461636F, "OCFS2"},  {0x0BD00BD0, "Lustre"},   {0x786F4256, "vboxsf"}, {0xBACBACBC, "vmhgfs"},
    {0x19830326, "BeeGFS"}, {0x20030528, "OrangeFS"}, {0x47504653, "GPFS"},
};

[[noreturn]] void refuse(const std::string &path, const std::string &why) {
    throw Refusal(registerUnusable, path + ": " + why);
}

// A file's mode does not depend on whoever happens to start the line first.
bool makeEmpty(const std::string &path) {
    const int file = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, groups);
    if (file < 0)
        return errno == EEXIST;
    const bool done = fchmod(file, groups) == 0;
    close(file);
    return done;
}

} // namespace

std::string directoryOf(const std::string &path) {
    const std::string parent = std::filesystem::path(path).parent_path();
    return parent.empty() ? "." : parent;
}

const char *networkFileSystem(long number) {
    for (const FileSystem &one : networked)
        if (one.number == static_cast<unsigned int>(number))
            return one.name;
    return nullptr;
}

void makeRegisterFile(const std::string &path) {
    struct statfs where;
    struct stat info;
    const bool there = stat(path.c_str(), &info) == 0;
    if (there && !S_ISREG(info.st_mode))
        refuse(path, "not a regular file");
    if (statfs((there ? path : directoryOf(path)).c_str(), &where) != 0)
        refuse(path, std::strerror(errno));
    if (const char *name = networkFileSystem(static_cast<long>(where.f_type)))
        refuse(path, std::string("is on a file system that is shared over a network, ") + name);
    if (!makeEmpty(path))
        refuse(path, std::strerror(errno));
}
