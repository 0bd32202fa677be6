#pragma once

// What the link tests stand on: the recording double in place of the library, a directory of map files of
// their own, and links that are opened already.

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include <QString>

#include <gtest/gtest.h>

#include "foundation/Result.h"
#include "foundation/ShareParameter.h"
#include "link/BootLoader.h"
#include "link/CCom.h"
#include "tests/doubles/zvbl/ZvblDouble.h"

enum LinkType : char { USART = 0, USBDFU = 1, I2C = 2, CAN = 3, SPI = 4 };

class LinkTest : public testing::Test {
protected:
    LinkTest() : previous(std::filesystem::current_path()) {
        char pattern[] = "/tmp/link-test-XXXXXX";
        directory = mkdtemp(pattern);
        std::filesystem::create_directory(directory / "Map");
        std::filesystem::current_path(directory);
        g_shareParameter = ShareParameter();
    }
    ~LinkTest() override {
        std::filesystem::current_path(previous);
        std::filesystem::remove_all(directory);
    }

    // A uniform flash; name is that of the file, such as "ZV32F415_128K".
    void writeMap(const std::string &name, const std::string &pid, const std::string &series, int sectorSize,
                  int sectors, int sectorsPerBit, int packetSize = 0) {
        std::ofstream("Map/" + name + ".ZVmap")
            << "[Product]\nName=" << name.substr(0, name.rfind('_')) << "\nPID=" << pid << "\nSerial=" << series
            << "\nSectorsPerSector=" << sectorsPerBit << "\nPacketSize=" << packetSize
            << "\n\n[Sector0]\nSize=" << QString::number(sectorSize, 16).toStdString() << "\nCount=" << sectors << "\n";
    }

    // That of the chip that the double answers for.
    void writeUsualMap(int packetSize = 0) { writeMap("ZV32F403A_1024K", "70050347", "07", 2048, 512, 2, packetSize); }

    // An open link of the type, with the log empty.
    CCom &open(LinkType type) {
        g_shareParameter.m_InterfaceType = type == SPI ? char(CAN) : char(type);
        com = std::make_unique<CCom>(1, type, "port");
        EXPECT_EQ(com->Open(), CResult::SUCCESS);
        library.clearLog();
        return *com;
    }
    CBootLoader &bootLoader() { return *com->m_ObBootLoader; }

    // An open USART link to an identified chip, with the log empty. The script starts its counts after it.
    CBootLoader &identified(const std::string &scriptForIdentification = "") {
        open(USART);
        library.script(scriptForIdentification);
        EXPECT_EQ(bootLoader().InitDevice(), CResult::SUCCESS);
        library.script("");
        library.clearLog();
        return bootLoader();
    }

    ZvblDouble library;
    std::unique_ptr<CCom> com;
    std::filesystem::path directory;

private:
    std::filesystem::path previous;
};

// A job that says when it is freed; the bootloader control owns it like any other.
extern int freedJobs;
void giveJob(CBootLoader &bootLoader);
