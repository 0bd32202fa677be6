// Other programs write what we read and read what we write. Needs objcopy (binutils) and srec_cat
// (srecord).

#include <ostream>

#include <gtest/gtest.h>

#include "tests/libfiles/LibFiles.h"

using namespace libfiles;

namespace {

// Two areas, the second one across a 64 KB border and of an odd length.
const std::uint32_t firstAddress = 0x08000000;
const std::uint32_t secondAddress = 0x0803F123;

Pieces areas() {
    return {{firstAddress, pattern(200001, 1)}, {secondAddress, pattern(70000, 2)}};
}

Bytes flat() {
    Bytes bytes = areas()[0].bytes;
    bytes.resize(secondAddress - firstAddress, 0xFF);
    const Bytes second = areas()[1].bytes;
    bytes.insert(bytes.end(), second.begin(), second.end());
    return bytes;
}

struct Witness {
    const char *name;   // of the file
    const char *writes; // $1 and $2: the areas; $3: the file
    const char *reads;  // $1: the file; $2: the binary
};

void PrintTo(const Witness &witness, std::ostream *out) {
    *out << witness.name;
}

const Witness witnesses[] = {
    {"srec_cat.hex", "srec_cat $1 -binary -offset 0x08000000 $2 -binary -offset 0x0803F123 -o $3 -intel",
     "srec_cat $1 -intel -offset -0x08000000 -fill 0xFF 0 0x50293 -o $2 -binary"},
    {"short.hex",
     "srec_cat $1 -binary -offset 0x08000000 $2 -binary -offset 0x0803F123 -o $3 -intel -line-length=24 "
     "-line_termination crlf",
     "objcopy -I ihex -O binary --gap-fill 0xFF $1 $2"},
    {"long.hex",
     "srec_cat $1 -binary -offset 0x08000000 $2 -binary -offset 0x0803F123 -o $3 -intel -output_block_size=255",
     "objcopy -I ihex -O binary --gap-fill 0xFF $1 $2"},
    {"srec_cat.s19", "srec_cat $1 -binary -offset 0x08000000 $2 -binary -offset 0x0803F123 -o $3 -motorola",
     "srec_cat $1 -motorola -offset -0x08000000 -fill 0xFF 0 0x50293 -o $2 -binary"},
    {"objcopy.srec",
     "srec_cat $1 -binary -offset 0x08000000 $2 -binary -offset 0x0803F123 -o $3.hex -intel && "
     "objcopy -I ihex -O srec --srec-forceS3 $3.hex $3 && rm $3.hex",
     "objcopy -I srec -O binary --gap-fill 0xFF $1 $2"},
    {"objcopy.hex",
     "srec_cat $1 -binary -offset 0x08000000 $2 -binary -offset 0x0803F123 -o $3.s19 -motorola && "
     "objcopy -I srec -O ihex $3.s19 $3 && rm $3.s19",
     "objcopy -I ihex -O binary --gap-fill 0xFF $1 $2"},
};

int shell(const std::string &command, const std::vector<std::string> &arguments) {
    std::string line = "sh -c '" + command + "' sh";
    for (const std::string &argument : arguments)
        line += " '" + argument + "'";
    return run(line);
}

class Witnessed : public testing::TestWithParam<Witness> {
protected:
    void SetUp() override {
        writeFile(dir / "1.bin", areas()[0].bytes);
        writeFile(dir / "2.bin", areas()[1].bytes);
    }
    const TempDir dir;
};

TEST_P(Witnessed, WeReadWhatItWrites) {
    const std::string file = dir / GetParam().name;
    ASSERT_EQ(shell(GetParam().writes, {dir / "1.bin", dir / "2.bin", file}), 0);
    Handle image;
    ASSERT_EQ(FILES_ImageFromFile(file.c_str(), image.out(), programImage), noError);
    EXPECT_EQ(image.pieces(), areas());
    ASSERT_EQ(FILES_ImageToFile((dir / "o.bin").c_str(), image.get()), noError);
    EXPECT_EQ(readBytes(dir / "o.bin"), flat());
}

TEST_P(Witnessed, ItReadsWhatWeWrite) {
    Handle image;
    ASSERT_EQ(FILES_CreateImage(image.out(), 1), noError);
    ASSERT_EQ(image.insert(0, firstAddress, areas()[0].bytes), noError);
    ASSERT_EQ(image.insert(1, secondAddress, areas()[1].bytes), noError);
    const std::string file = dir / GetParam().name;
    ASSERT_EQ(FILES_ImageToFile(file.c_str(), image.get()), noError);
    ASSERT_EQ(shell(GetParam().reads, {file, dir / "o.bin"}), 0);
    const Bytes bytes = readBytes(dir / "o.bin");
    EXPECT_EQ(bytes, flat());
}

INSTANTIATE_TEST_SUITE_P(Files, Witnessed, testing::ValuesIn(witnesses), [](const auto &one) {
    std::string name = one.param.name;
    name[name.find('.')] = '_';
    return name;
});

// The three widths of an address, as srec_cat writes them.
TEST(Witness, AddressWidths) {
    struct {
        const char *name;
        const char *options;
        std::uint32_t address;
    } const widths[] = {
        {"a.s19", "-motorola -address-length=2", 0x8000},     {"b.s19", "-motorola -address-length=3", 0x123456},
        {"c.s19", "-motorola -address-length=4", 0x12345678}, {"d.hex", "-intel -address-length=2", 0x8000},
        {"e.hex", "-intel -address-length=3", 0xAFFF8},       {"f.hex", "-intel -address-length=4", 0xFFFF8000}};
    const TempDir dir;
    writeFile(dir / "1.bin", pattern(300));
    for (const auto &width : widths) {
        SCOPED_TRACE(width.name);
        const std::string file = dir / width.name;
        const std::string offset = std::to_string(width.address);
        ASSERT_EQ(shell("srec_cat $1 -binary -offset " + offset + " -o $2 " + width.options, {dir / "1.bin", file}), 0);
        Handle image;
        ASSERT_EQ(FILES_ImageFromFile(file.c_str(), image.out(), programImage), noError);
        EXPECT_EQ(image.pieces(), (Pieces{{width.address, pattern(300)}}));
    }
}

} // namespace
