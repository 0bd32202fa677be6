#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "device/FilesInc.h"

// A directory with files of all kinds, in which both run.
class LineDirectory {
public:
    LineDirectory() {
        char pattern[] = "/tmp/zv32-line-XXXXXX";
        m_path = mkdtemp(pattern);
        std::filesystem::current_path(m_path);
        std::filesystem::create_directory_symlink(MAP_DIR, "Map");
        std::filesystem::create_directory("x.bin");
        image("./x.bin/a.hex", {{0x08000000, 3000, 0x11}});
        image("./a.hex", {{0x08000000, 3000, 0x11}, {0x08004000, 100, 0x22}});
        image("./far.hex", {{0x09000000, 16, 0x33}});
        image("./low.hex", {{0x07FFF000, 16, 0x33}});
        image("./b.bin", {{0x08000000, 5000, 0x44}});
        image("./blank.s19", {{0x08000000, 0x2000, 0xFF}, {0x08002000, 0x900, 0x55}});
        image("./options.bin", {{0, 4096, 0xA5}});
        image("./few.bin", {{0, 20, 0xA5}});
        std::ofstream("./bad.hex") << ":00\n";
        std::ofstream("./otp.ZVTP") << std::string("\0\0\0\0", 4) << std::string(32, 'x') << std::string("\1\0....", 6)
                                    << std::string("\0\0\0\40", 4) << std::string(32, 'y')
                                    << std::string("\0\0....", 6);
        std::ofstream("./short.ZVTP") << std::string(38, '\0');
    }
    ~LineDirectory() {
        std::filesystem::current_path("/");
        std::filesystem::remove_all(m_path);
    }
    LineDirectory(const LineDirectory &) = delete;
    LineDirectory &operator=(const LineDirectory &) = delete;

private:
    struct Range {
        unsigned int first;
        unsigned int length;
        int byte;
    };

    static void image(const char *path, const std::vector<Range> &ranges) {
        HANDLE handle = nullptr;
        FILES_CreateImage(&handle, 1);
        unsigned int index = 0;
        for (const Range &range : ranges) {
            std::vector<BYTE> bytes(range.length, static_cast<BYTE>(range.byte));
            FILES_SetImageElement(handle, index++, 1, {range.first, range.length, bytes.data()});
        }
        FILES_ImageToFile(path, handle);
        FILES_DestroyImage(&handle);
    }

    std::string m_path;
};
