#include "line/hooks/HookFile.h"

#include <cerrno>
#include <climits>
#include <cstring>
#include <deque>

#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t othersWrite = S_IWGRP | S_IWOTH;
constexpr int mostLinks = 40;

struct Wrong {
    std::string what;
    std::string why;
};

// The parts of a path that are still to be gone.
class Way {
public:
    explicit Way(const std::string &path) { goFirst(path); }

    bool isGone() const { return m_ahead.empty(); }

    // The next place on the way.
    std::string next() {
        std::string path = m_here + '/' + m_ahead.front();
        m_ahead.pop_front();
        return path;
    }
    void enter(const std::string &directory) { m_here = directory; }
    void goUp() { m_here.erase(m_here.rfind('/') == m_here.npos ? 0 : m_here.rfind('/')); }

    void follow(const std::string &link) {
        if (++m_links > mostLinks)
            throw Wrong{link, std::strerror(ELOOP)};
        char target[PATH_MAX];
        const ssize_t length = readlink(link.c_str(), target, sizeof target);
        if (length < 0)
            throw Wrong{link, std::strerror(errno)};
        goFirst({target, static_cast<std::size_t>(length)});
    }

private:
    void goFirst(const std::string &path) {
        if (path.front() == '/')
            m_here.clear();
        std::deque<std::string> parts;
        for (std::size_t at = 0; at < path.size();) {
            const std::size_t end = std::min(path.find('/', at), path.size());
            if (end > at && path.substr(at, end - at) != ".")
                parts.push_back(path.substr(at, end - at));
            at = end + 1;
        }
        m_ahead.insert(m_ahead.begin(), parts.begin(), parts.end());
    }

    std::string m_here; // without the last slash
    std::deque<std::string> m_ahead;
    int m_links = 0;
};

struct stat safe(const std::string &path) {
    struct stat info;
    if (lstat(path.c_str(), &info) != 0)
        throw Wrong{path, std::strerror(errno)};
    if (info.st_uid != 0 && info.st_uid != geteuid())
        throw Wrong{path, "belongs to another user"};
    const bool eachHisOwn = S_ISDIR(info.st_mode) && (info.st_mode & S_ISVTX) != 0;
    if (!S_ISLNK(info.st_mode) && (info.st_mode & othersWrite) != 0 && !eachHisOwn)
        throw Wrong{path, "others may write to it"};
    return info;
}

void walk(const std::string &path) {
    Way way(path);
    struct stat last = safe("/");
    while (!way.isGone()) {
        const std::string here = way.next();
        if (here.size() > 2 && here.compare(here.size() - 3, 3, "/..") == 0) {
            way.goUp();
            continue;
        }
        last = safe(here);
        if (S_ISLNK(last.st_mode))
            way.follow(here);
        else
            way.enter(here);
    }
    if (!S_ISREG(last.st_mode) || access(path.c_str(), X_OK) != 0)
        throw Wrong{path, "is no program that can be run"};
}

} // namespace

void checkHook(const HookCall &hook) {
    try {
        walk(hook.run.front());
    } catch (const Wrong &wrong) {
        hook.place.refuse(wrong.what + ": " + wrong.why);
    }
}
