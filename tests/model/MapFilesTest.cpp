// The map files that ship beside the tool, through the descriptions and the file library itself.

#include <algorithm>
#include <filesystem>

#include <QDir>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include "device/Device.h"
#include "device/Families.h"
#include "device/MapText.h"

namespace {

struct Shipped {
    QString target; // the file's name without its suffix
    QString name;
    int kilobytes;
    QStringList pids;
    QString serial;
};

std::vector<Shipped> shippedMaps() {
    CZV32F4Device reader;
    std::vector<Shipped> maps;
    for (const QString &file : QDir("./Map/").entryList({"*.ZVmap"}, QDir::Files, QDir::Name)) {
        const QRegularExpressionMatch match = QRegularExpression("^((.+)_(\\d+)K)\\.ZVmap$").match(file);
        EXPECT_TRUE(match.hasMatch()) << file.toStdString();
        maps.push_back({match.captured(1), match.captured(2), match.captured(3).toInt(),
                        reader.ZVmapReadValue("Product", "PID", "./Map/" + file).split(' ', Qt::SkipEmptyParts),
                        reader.ZVmapReadValue("Product", "Serial", "./Map/" + file)});
    }
    delete reader.m_CMapping;
    return maps;
}

class MapFiles : public testing::Test {
protected:
    MapFiles() { std::filesystem::current_path(MAP_PARENT); }
};

TEST_F(MapFiles, AllAreReadAlikeWithAndWithoutQt) {
    for (const Shipped &map : shippedMaps()) {
        const std::optional<MapIdentity> plain = ReadPlainMap("./Map/" + map.target.toStdString() + ".ZVmap");
        ASSERT_TRUE(plain) << map.target.toStdString();
        EXPECT_EQ(plain->pid, map.pids.join(' ').toStdString());
        EXPECT_EQ(plain->serial, map.serial.toStdString());
    }
}

TEST_F(MapFiles, EveryPidFindsItsOwnFile) {
    CDeviceManager manager;
    const std::vector<Shipped> maps = shippedMaps();
    ASSERT_FALSE(maps.empty());
    for (const Shipped &map : maps) {
        ASSERT_FALSE(map.pids.isEmpty()) << map.target.toStdString();
        for (const QString &pid : map.pids) {
            const CDevice *device = manager.GetDevice(pid.toStdString(), map.serial.toStdString(), map.kilobytes);
            ASSERT_NE(device, nullptr) << map.target.toStdString();
            EXPECT_EQ(device->m_StrName, map.name.toStdString()) << pid.toStdString();
            EXPECT_EQ(device->m_StrTarget, map.target.toStdString());
        }
    }
}

TEST_F(MapFiles, EveryFamilyHasOneToFourAndNoOtherHasAny) {
    const std::vector<Shipped> maps = shippedMaps();
    std::size_t found = 0;
    for (const int series : knownSeries()) {
        const QString serial = QString("%1").arg(series, 2, 16, QChar('0')).toUpper();
        const auto count =
            std::count_if(maps.begin(), maps.end(), [&](const Shipped &map) { return map.serial == serial; });
        EXPECT_GE(count, 1) << serial.toStdString();
        EXPECT_LE(count, 4) << serial.toStdString();
        found += static_cast<std::size_t>(count);
    }
    EXPECT_EQ(found, maps.size());
}

// A chip is looked for by PID and series, both as a part of the map's text.
TEST_F(MapFiles, NoPidAndSeriesFitsTwoMaps) {
    const std::vector<Shipped> maps = shippedMaps();
    for (const Shipped &chip : maps)
        for (const QString &pid : chip.pids)
            EXPECT_EQ(std::count_if(maps.begin(), maps.end(),
                                    [&](const Shipped &map) {
                                        return map.pids.join(' ').contains(pid) && map.serial.contains(chip.serial);
                                    }),
                      1)
                << chip.target.toStdString();
}

TEST_F(MapFiles, NoPidIsPartOfAnother) {
    const std::vector<Shipped> maps = shippedMaps();
    for (const Shipped &one : maps) {
        for (const Shipped &other : maps)
            for (const QString &pid : one.pids)
                EXPECT_TRUE(one.target == other.target || !other.pids.join(' ').contains(pid))
                    << pid.toStdString() << " in " << other.target.toStdString();
    }
}

TEST_F(MapFiles, SectorsPerBitAreThoseOfAFamilyThatDoesNotAskTheMap) {
    CDeviceManager manager;
    for (const Shipped &map : shippedMaps()) {
        const CDevice *device =
            manager.GetDevice(map.pids.value(0).toStdString(), map.serial.toStdString(), map.kilobytes);
        ASSERT_NE(device, nullptr);
        const int fixed = familyOf(*device).sectorsPerBit;
        EXPECT_TRUE(fixed == 0 || fixed == device->m_BSectorsPerBit) << map.target.toStdString();
    }
}

TEST_F(MapFiles, TheSectorsAreTheFlash) {
    CDeviceManager manager;
    for (const Shipped &map : shippedMaps()) {
        const CDevice *device =
            manager.GetDevice(map.pids.value(0).toStdString(), map.serial.toStdString(), map.kilobytes);
        ASSERT_NE(device, nullptr);
        const CMapping &sectors = *device->m_CMapping;
        ASSERT_GT(sectors.GetSectorNums(), 0) << map.target.toStdString();
        DWORD address = 0x08000000;
        for (int i = 0; i < sectors.GetSectorNums(); ++i) {
            ASSERT_EQ(sectors.m_AMappingSector[i].dwStartAddress, address) << map.target.toStdString() << " " << i;
            ASSERT_EQ(sectors.m_AMappingSector[i].dwSectorSize, device->m_ISectorSize) << map.target.toStdString();
            address += sectors.m_AMappingSector[i].dwSectorSize;
        }
        EXPECT_EQ(address - 0x08000000, static_cast<DWORD>(map.kilobytes) * 1024) << map.target.toStdString();
        EXPECT_GT(device->m_BSectorsPerBit, 0) << map.target.toStdString();
    }
}

} // namespace
