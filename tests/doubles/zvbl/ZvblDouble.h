#pragma once

// For tests that run with the double in the place of the library: a fresh log and, where wanted, a script, for the life
// of the object.

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

#include <dlfcn.h>

class ZvblDouble {
public:
    ZvblDouble() {
        char pattern[] = "/tmp/zvbl-double-XXXXXX";
        if (mkdtemp(pattern) == nullptr)
            throw std::runtime_error("no directory for the double");
        directory = pattern;
        setenv("ZVBL_DOUBLE_LOG", logPath().c_str(), 1);
        unsetenv("ZVBL_DOUBLE_SCRIPT");
        reset();
    }
    ~ZvblDouble() {
        unsetenv("ZVBL_DOUBLE_LOG");
        unsetenv("ZVBL_DOUBLE_SCRIPT");
        std::filesystem::remove_all(directory);
    }
    ZvblDouble(const ZvblDouble &) = delete;
    ZvblDouble &operator=(const ZvblDouble &) = delete;

    // Replaces the script (see Script.h); calls are counted from here on.
    void script(const std::string &text) {
        const std::string path = directory + "/script" + std::to_string(++scripts);
        std::ofstream(path) << text << "\n";
        setenv("ZVBL_DOUBLE_SCRIPT", path.c_str(), 1);
    }
    // The calls since the last clearLog, one line each.
    std::string log() const {
        std::ostringstream text;
        text << std::ifstream(logPath()).rdbuf();
        return text.str();
    }
    void clearLog() { std::filesystem::remove(logPath()); }

    // Starts the double anew: scripts count from their first call, and the first link is the next.
    // Found at run time: a program can't be linked to the library and to its double at once.
    static void reset() {
        const auto function = reinterpret_cast<void (*)()>(dlsym(RTLD_DEFAULT, "zvbl_double_reset"));
        if (function == nullptr)
            throw std::runtime_error("the double does not stand in front of the library");
        function();
    }

private:
    std::string logPath() const { return directory + "/log"; }

    std::string directory;
    int scripts = 0;
};
