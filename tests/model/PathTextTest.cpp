#include "foundation/PathText.h"

#include <gtest/gtest.h>

namespace {

TEST(PathText, EveryPathComesBackAsItWas) {
    const std::string paths[] = {"",
                                 "/x/up.bin",
                                 "/x/m\xC3\xBC"
                                 "ller.bin",                // UTF-8
                                 "/x/\xF0\x9F\x98\x80.bin", // a pair of halves in a text
                                 "/x/m\xFCller.bin",        // no UTF-8
                                 "/x/\xFF\xC3\xBC\x80.bin", // both
                                 "/x/\xED\xB2\x80.bin",     // a half written as UTF-8
                                 "/x/\xEF\xBF\xBD.bin"};    // what a lost byte becomes
    for (const std::string &path : paths)
        EXPECT_EQ(pathOf(textOf(path)), path);
    for (int byte = 1; byte < 256; ++byte)
        EXPECT_EQ(pathOf(textOf(std::string("/x/") + static_cast<char>(byte))),
                  std::string("/x/") + static_cast<char>(byte));
}

TEST(PathText, AUsualPathIsItsOwnText) {
    EXPECT_EQ(textOf("/x/m\xC3\xBC"
                     "ller.bin"),
              QString::fromUtf8("/x/m\xC3\xBC"
                                "ller.bin"));
    EXPECT_EQ(pathOf(QString::fromUtf8("/x/\xF0\x9F\x98\x80.bin")), "/x/\xF0\x9F\x98\x80.bin");
}

} // namespace
