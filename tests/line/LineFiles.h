#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdlib.h>
#include <string>

#include <gtest/gtest.h>
#include <unistd.h>

// A job that is right, with its image, in a directory of its own. It is taken away at the end.
class LineFiles : public testing::Test {
protected:
    LineFiles() {
        char name[] = "/tmp/zv32-line.XXXXXX";
        dir = mkdtemp(name);
        setenv("ZV32_MAP_DIR", MAPS, 1);
        write("fw.hex", ":020000040800F2\n:0400000001020304F2\n:00000001FF\n");
        write("job.toml", job);
    }
    ~LineFiles() override { std::filesystem::remove_all(dir); }

    std::string path(const std::string &name) const { return dir + '/' + name; }
    void write(const std::string &name, const std::string &text) const { std::ofstream(path(name)) << text; }
    // Whether these bytes stand in a file, one after the other.
    bool holds(const std::string &name, const std::string &bytes) const {
        std::stringstream content;
        content << std::ifstream(path(name)).rdbuf();
        return content.str().find(bytes) != std::string::npos;
    }

    // The job with another text in the place of one that stands in it once.
    std::string with(const std::string &old, const std::string &other) const {
        std::string text = job;
        const std::size_t at = text.find(old);
        EXPECT_NE(at, text.npos) << old;
        return text.replace(at, old.size(), other);
    }

    std::string dir;
    const std::string job = R"(format = 1
name = "ZX100"
quantity = 1000
[chip]
name = "ZV32F403A_1024K"
[image]
file = "fw.hex"
verify = "crc"
[[unit]]
at = 0x080FF800
value = "number"
series = "ZX100"
as = "u32le"
[[unit]]
at = 0x080FF810
value = "text"
text = "ZX-{number:06}"
series = "ZX100"
as = "ascii"
size = 16
[finish]
access = "on"
run = false
)";
};
