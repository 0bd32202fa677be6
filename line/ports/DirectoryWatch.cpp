#include "line/ports/DirectoryWatch.h"

#include <algorithm>
#include <cstring>

#include <sys/inotify.h>
#include <unistd.h>

namespace {

constexpr std::uint32_t events =
    IN_CREATE | IN_MOVED_TO | IN_DELETE | IN_MOVED_FROM | IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

} // namespace

DirectoryWatch::DirectoryWatch(Entries entries)
    : m_entries(std::move(entries)), m_descriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    watch();
}

DirectoryWatch::~DirectoryWatch() {
    if (m_descriptor >= 0)
        close(m_descriptor);
}

void DirectoryWatch::watch() {
    for (const auto &entry : m_entries) {
        const std::string &directory = entry.first;
        const bool watched = std::any_of(m_watched.begin(), m_watched.end(),
                                         [&](const auto &known) { return known.second == directory; });
        if (watched || m_descriptor < 0)
            continue;
        const int watch = inotify_add_watch(m_descriptor, directory.c_str(), events);
        if (watch >= 0)
            m_watched[watch] = directory;
    }
}

// Of the directory itself no entry is named.
bool DirectoryWatch::matters(int watch, const std::string &entry) const {
    const auto directory = m_watched.find(watch);
    if (directory == m_watched.end() || entry.empty())
        return true;
    const std::set<std::string> &entries = m_entries.at(directory->second);
    return entries.empty() || entries.count(entry) != 0;
}

bool DirectoryWatch::happened() {
    alignas(inotify_event) char bytes[4096];
    bool any = false;
    for (ssize_t got; m_descriptor >= 0 && (got = read(m_descriptor, bytes, sizeof bytes)) > 0;)
        for (ssize_t at = 0; at < got;) {
            inotify_event event;
            std::memcpy(&event, bytes + at, sizeof event);
            // The name is filled up with zeros.
            any |= matters(event.wd, event.len == 0 ? "" : bytes + at + sizeof event);
            at += static_cast<ssize_t>(sizeof event + event.len);
            if ((event.mask & IN_MOVE_SELF) != 0)
                inotify_rm_watch(m_descriptor, event.wd); // its name is free for another
            if ((event.mask & (IN_IGNORED | IN_MOVE_SELF)) != 0)
                m_watched.erase(event.wd);
        }
    watch();
    return any;
}
