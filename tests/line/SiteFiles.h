#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "line/station/Station.h"

// Programs of a site, in a directory of their own. It is taken away at the end.
class SiteFiles : public testing::Test {
protected:
    SiteFiles() {
        char name[] = "/tmp/zv32-site.XXXXXX";
        dir = mkdtemp(name);
        umask(022);
    }
    ~SiteFiles() override { std::filesystem::remove_all(dir); }

    // Of a shell script.
    HookCall call(const std::string &script, int seconds = 20) const {
        const std::string path = dir + "/hook";
        std::ofstream(path) << "#!/bin/sh\n" << script << '\n';
        chmod(path.c_str(), 0755);
        return {{path}, seconds, {"station.toml", 12, "hook.before.run"}};
    }

    std::string dir;
};
