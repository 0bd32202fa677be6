#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "libs/files/SaveTarget.h"
#include "libs/files/Status.h"

namespace files {

// A file that appears under its name complete and flushed to disk, or not at all: until commit()
// succeeds, the old file stays as it was and nothing lies beside it.
//
// The bytes go into a file without a name (O_TMPFILE), which the kernel itself drops when the
// process ends, however it ends. Only a target that exists already needs a second name, for the
// moment between linkat and rename. A file system without O_TMPFILE gets a named temporary file,
// removed on every failure that the process survives. Whatever has a name or takes the place of
// another file is for its owner alone until it is given the permissions that it keeps.
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

    // Room in the buffer for a line of at most maxLine characters, for writing it in place;
    // addLine() then takes in the first `length` of them.
    static constexpr std::size_t maxLine = 256;
    char *line() {
        if (m_used + maxLine > bufferSize)
            (void)flush(); // a failure is kept, and addLine() tells it
        return reinterpret_cast<char *>(m_buffer.get()) + m_used;
    }
    Status addLine(std::size_t length) {
        m_used += length;
        return m_failure;
    }

    // The same byte `length` times.
    Status fill(unsigned char byte, std::size_t length);

    // Flushes to disk and puts the file in place.
    Status commit();

private:
    static constexpr std::size_t bufferSize = 256 * 1024;

    Status openTemporary();
    void keepPermissions();
    Status flush();
    void put(const unsigned char *bytes, std::size_t length);
    bool takesName(const std::string &name) const;
    Status link();
    Status syncDirectory() const;

    SaveTarget m_target;
    std::string m_temporary; // the temporary name, empty while there is none
    int m_fd = -1;
    Status m_failure = Status::ok;
    std::unique_ptr<unsigned char[]> m_buffer;
    std::size_t m_used = 0;    // bytes in m_buffer
    std::size_t m_written = 0; // bytes given to the file
    std::size_t m_started = 0; // of them, those that the disk was told about
};

} // namespace files
