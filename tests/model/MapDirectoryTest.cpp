#include "device/MapDirectory.h"

#include "ModelTest.h"
#include "device/Device.h"

namespace {

// Until it goes out of scope, the environment names a directory of maps.
class NamedMaps {
public:
    explicit NamedMaps(const std::string &directory) { setenv("ZV32_MAP_DIR", directory.c_str(), 1); }
    ~NamedMaps() { unsetenv("ZV32_MAP_DIR"); }
};

const char *const oneChip = "[Product]\nName=X\nPID=70050000\nSerial=02\n[Sector0]\nSize=800\n";

TEST(MapDirectory, IsBesideUsUnlessSomethingIsNamed) {
    const Workplace workplace;
    EXPECT_EQ(mapDirectory(), "./Map/");
    {
        const NamedMaps nothing("");
        EXPECT_EQ(mapDirectory(), "./Map/");
    }
    const NamedMaps named("/a/b");
    EXPECT_EQ(mapDirectory(), "/a/b/");
    EXPECT_EQ(mapDirectoryOr("/c"), "/a/b/");
    const NamedMaps closed("other/");
    EXPECT_EQ(mapDirectory(), "other/");
}

TEST(MapDirectory, TheOneOfTheBuildIsForWhereThereIsNone) {
    const Workplace workplace;
    EXPECT_EQ(mapDirectoryOr("/c"), "./Map/");
    std::filesystem::remove("Map");
    EXPECT_EQ(mapDirectoryOr("/c"), "/c/");
    EXPECT_EQ(mapDirectoryOr(""), "./Map/");
}

TEST(MapDirectory, ADescriptionTakesFileAndSectorsFromThere) {
    const Workplace workplace;
    std::filesystem::create_directory("maps");
    workplace.write("maps/any.ZVmap", oneChip);
    workplace.write("maps/X_8K.ZVmap", "");
    FilesDouble files(workplace, "map sectors=4 size=2048 packet=250\n");
    const NamedMaps named(workplace.path("maps"));
    const Described device("70050000", "02", 8);
    EXPECT_EQ(device.m_StrName, "X");
    const std::string call = "FILES_GetMemoryMapping path=" + workplace.path("maps/X_8K.ZVmap") + " mapping=";
    EXPECT_EQ(files.calls(), (std::vector<std::string>{call + "null -> 0", call + "set -> 0"}));
}

} // namespace
