#include "device/MapText.h"

#include <sys/stat.h>

#include "ModelTest.h"
#include "device/Device.h"

namespace {

const std::string goodMap = "[Product]\nPID=12345678\nSerial=07\nName=Good\nSectorsPerSector=2\n[Sector0]\nSize=800\n";

bool isHarmless(const std::string &text) {
    const Workplace workplace;
    workplace.write("Map/a.ZVmap", text);
    return IsHarmlessMap("Map/a.ZVmap");
}

TEST(MapText, ValuesThatMapsHave) {
    for (const char *text : {"", "[Product]\nPID=12345678 9ABCDEF0\nName=\"A, B\"\n", "PID=foo@bar\n", "Name=a=@b\n",
                             "Name=\"a, @b\"\n", "; me@x.org\n;x=@y\nPID=1 ; a, @b\n", "Size=0x800\r\nCount=\r\n[@x]\n",
                             "@PID=1\n", "Name=a\\,b\n", "PID= 12345678 ,\t9ABCDEF0\n"})
        EXPECT_TRUE(isHarmless(text)) << text;
}

TEST(MapText, ValuesThatBecomeObjects) {
    for (const char *text :
         {"PID=@Variant(\\0)\n", "PID= @Variant(\\0)\n", "PID=\t\"@Variant(\\0)\"\n", "PID=\"\" \"@Variant(\\0)\"\n",
          "PID=1, @Variant(\\0)\n", "PID=1,\"@\"\n", "PID=@@\n", "PID=\\x40Variant(\\0)\n", "PID=\\\n@Variant(\\0)\n",
          "PID=\"a\n;\",@Variant(\\0)\n", "PID=\"\n@Variant(\\0)\"\n", "[Product]\r\nName=x\rPID=@ByteArray()\r\n",
          "x\"=\"=@Invalid()\n"})
        EXPECT_FALSE(isHarmless(text)) << text;
}

// What is read without Qt is what Qt reads, and whatever Qt might read in a way of its own is left to it.
TEST(MapText, PlainMapsReadAsQtReadsThem) {
    for (const char *text :
         {"", "[Product]\nPID=12345678\nSerial=07\n", "[Product]\nSerial=\n\n\n[Sector0]\nPID=99\n", "PID=1\n",
          "[product]\nPID=1\n[Product]\npid=2\nSerial=3", "[Sector0]\nPID=1\nPID=2\n[Product]\nPID=3\nName=x_y.z\n",
          "[General]\nPID=4\n[Product]\nSerial=5\n"}) {
        const Workplace workplace;
        workplace.write("Map/a.ZVmap", text);
        const std::optional<MapIdentity> plain = ReadPlainMap("Map/a.ZVmap");
        ASSERT_TRUE(plain) << text;
        const QString file = QStringLiteral("./Map/a.ZVmap");
        Described reader;
        EXPECT_EQ(plain->pid, reader.ZVmapReadValue("Product", "PID", file).toStdString()) << text;
        EXPECT_EQ(plain->serial, reader.ZVmapReadValue("Product", "Serial", file).toStdString()) << text;
    }
}

TEST(MapText, OddMapsAreLeftToQt) {
    for (const char *text : {"[Product]\nPID=1, 2\n",
                             "[Product]\nPID=1 2\n",
                             "[Product]\nPID=1;2\n",
                             "[Product]\nPID=\"1\"\n",
                             "[Product]\nPID=\\x31\n",
                             "[Product]\r\nPID=1\r\n",
                             "[Product]\nPID = 1\n",
                             "[Product]\nPI%44=1\n",
                             "[Product]\nPID=1\nPID=2\n",
                             "[Product]\nPID=1\n[Product]\nSerial=2\n",
                             "[ Product]\nPID=1\n",
                             "[Product\nPID=1\n",
                             "[Product]\nPID\n",
                             "[Product]\n=1\n",
                             "[Product]\nPID=@1\n",
                             "[Product] \nPID=1\n",
                             "\xEF\xBB\xBF[Product]\nPID=1\n",
                             "[Product]\nName=\xC3\xA4\n",
                             "# PID=1\n",
                             "[]\nPID=1\n"}) {
        const Workplace workplace;
        workplace.write("Map/a.ZVmap", text);
        EXPECT_FALSE(ReadPlainMap("Map/a.ZVmap")) << text;
    }
}

// Each of them stands before the good map by name, and matches every chip as far as it is read.
TEST(MapText, AHostileMapIsPassedOver) {
    for (const char *value : {"@String(12345678)", "@Variant(\\0\\0\\0\\x7f\\0\\0\\0\\fNoSuchType\\0)",
                              "12345678, @Variant(\\0\\0\\0\\t\\x7f\\xff\\xff\\xff)"}) {
        const Workplace workplace;
        workplace.write("Map/A_64K.ZVmap", "[Product]\nPID=" + std::string(value) + "\nSerial=07\nName=Bad\n");
        workplace.write("Map/Good_64K.ZVmap", goodMap);
        const FilesDouble files(workplace);
        CDeviceManager manager;
        const CDevice *device = manager.GetDevice("12345678", "07", 64);
        ASSERT_NE(device, nullptr);
        EXPECT_EQ(device->m_StrName, "Good");
    }
}

TEST(MapText, WhatIsNoSmallFileIsPassedOver) {
    const Workplace workplace;
    workplace.write("Map/A.ZVmap", "[Product]\nPID=12345678\nSerial=07\nName=Large\n");
    std::filesystem::resize_file("Map/A.ZVmap", (1 << 20) + 1);
    std::filesystem::create_directory("Map/B.ZVmap");
    ASSERT_EQ(::mkfifo("Map/C.ZVmap", 0600), 0);
    std::filesystem::create_symlink("C.ZVmap", "Map/D.ZVmap");
    std::filesystem::create_symlink("/dev/zero", "Map/E.ZVmap");
    workplace.write("Map/F.ZVmap", goodMap);
    std::filesystem::resize_file("Map/F.ZVmap", goodMap.size());
    for (const char *name : {"A", "B", "C", "D", "E", "nothing"})
        EXPECT_FALSE(IsHarmlessMap(std::string("Map/") + name + ".ZVmap")) << name;
    EXPECT_TRUE(IsHarmlessMap("Map/F.ZVmap"));
    const FilesDouble files(workplace);
    CDeviceManager manager;
    const CDevice *device = manager.GetDevice("12345678", "07", 64);
    ASSERT_NE(device, nullptr);
    EXPECT_EQ(device->m_StrName, "Good");
}

TEST(MapText, AValueBeyondTheLettersIsNotPlain) {
    const Workplace workplace;
    workplace.write("Map/A.ZVmap", "[Product]\nPID=z\nSerial=07\n");
    workplace.write("Map/B.ZVmap", "[Product]\nPID={\nSerial=07\n");
    EXPECT_TRUE(ReadPlainMap("Map/A.ZVmap"));
    EXPECT_FALSE(ReadPlainMap("Map/B.ZVmap"));
}

} // namespace
