#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <sys/stat.h>

#include "libs/files/Status.h"

namespace files {

// A file that appears under its name complete and flushed to disk, or not at all: until commit()
// succeeds, the old file stays as it was and nothing lies beside it.
//
// The bytes go into a file without a name (O_TMPFILE), which the kernel itself drops when the
// process ends, however it ends. Only a target that exists already needs a second name, for the
// moment between linkat and rename. A file system without O_TMPFILE gets a named temporary file,
// removed on every failure that the process survives.
class AtomicFile {
public:
    AtomicFile();
    ~AtomicFile();
    AtomicFile(const AtomicFile &) = delete;
    AtomicFile &operator=(const AtomicFile &) = delete;

    // A symbolic link is followed; an existing target lends its permissions and owner.
    Status create(const char *path);

    // Buffered; once a write has failed, so does every later call.
    Status write(const void *bytes, std::size_t length);

    // The same byte `length` times.
    Status fill(unsigned char byte, std::size_t length);

    // Flushes to disk and puts the file in place.
    Status commit();

private:
    Status locate(const char *path);
    Status openTemporary();
    void keepPermissions();
    Status flush();
    Status link();
    Status syncDirectory() const;

    std::string m_target;    // with symbolic links resolved
    std::string m_directory; // of the target, "." if it names none
    std::string m_temporary; // the temporary name, empty while there is none
    struct stat m_old;
    bool m_replaces = false; // the target exists; m_old is valid
    int m_fd = -1;
    Status m_failure = Status::Ok;
    std::vector<unsigned char> m_buffer;
};

} // namespace files
