#include "libs/files/ImageReader.h"

#include <string>

#include <gtest/gtest.h>

namespace {

struct Case {
    const char *name;
    std::string text;
    files::Status status;
    std::uint64_t stoppedAt;
};

const std::string base = ":020000040800F2\n";
const std::string record = ":0400000001020304F2\n";
const std::string end = ":00000001FF\n";

const Case cases[] = {
    {"a.hex", base + record + end, files::Status::ok, 48},
    {"a.HEX", base + record + ":04000400010G0304EE\n" + end, files::Status::badFormat, 36}, // a digit
    {"a.hex", base + ":0400000001020304F3\n" + end, files::Status::badFormat, 16},          // a sum
    {"a.hex", base + "\n\n" + record + "rest\n", files::Status::badFormat, 38},
    {"a.hex", base + record, files::Status::badFormat, 36}, // no end
    {"a.s19", "S107080000000102030\n", files::Status::badFormat, 0},
    {"a.elf", base + end, files::Status::badSuffix, 0},
    {"a.bin", "abcd", files::Status::ok, 0},
};

} // namespace

TEST(ImageReaderTest, ReadsBytesInMemoryAndTellsWhereItStopped) {
    for (const Case &one : cases) {
        SCOPED_TRACE(one.text);
        files::InputFile file;
        file.open(one.text.data(), one.text.size());
        files::Image image;
        EXPECT_EQ(files::readImage(one.name, file, 0x08000000, image), one.status);
        EXPECT_EQ(file.stoppedAt(), one.stoppedAt);
        if (one.status != files::Status::ok)
            continue;
        ASSERT_EQ(image.elements.size(), 1u);
        EXPECT_EQ(image.elements[0].address, 0x08000000u);
        EXPECT_EQ(image.elements[0].length, 4u);
    }
}
