// Each call of the library over each link, with the line ending or a unit lost at some places of it. A call whose line
// has ended says so, in its time, and one that is done did what it does on a good line. Two exceptions: where the clock
// is the host's, silence reads as the idle level, and some answers have no check; a USB device that leaves in a reset
// has done what it was told.

#include "tests/zvbl/Calls.h"

#include <cstdlib>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "sim/chip/ChipTable.h"
#include "tests/damage/Job.h"
#include "tests/damage/VirtualTime.h"

namespace damage {
namespace {

constexpr unsigned flash = 0x08000000;
constexpr unsigned spim = 0x08400000;
constexpr unsigned ram = 0x20001000;
constexpr unsigned options = 0x1FFFF800;
constexpr unsigned sectorSize = 2048;
constexpr std::size_t most = 4096; // bytes that a call reads
constexpr std::size_t places = 10; // of a call, in each direction
constexpr sim::Nanoseconds longestCall = 300 * sim::second;
constexpr unsigned timeoutMs = 1000;
constexpr std::size_t nowhere = SIZE_MAX;
constexpr BYTE usbDfu = 1;
constexpr BYTE i2c = 2;
constexpr BYTE spi = 4;

using Room = std::vector<BYTE>;

int download(HANDLE h, Room &) {
    BYTE bytes[40];
    std::fill(std::begin(bytes), std::end(bytes), BYTE{0x3C});
    return ZVBL_DNLOAD(h, flash + sectorSize, bytes, sizeof bytes, 0);
}

int writeRam(HANDLE h, Room &) {
    BYTE bytes[] = {1, 2, 3, 4};
    return ZVBL_DNLOAD(h, ram, bytes, sizeof bytes, 0);
}

// Sectors that are not blank, but for those that a download may have: the idle level is blank too.
zvbl::Bytes content(std::size_t size) {
    zvbl::Bytes bytes(size, 0x5A);
    std::fill_n(bytes.begin() + sectorSize, sectorSize, std::uint8_t{0xFF});
    return bytes;
}

int verifySectors(HANDLE h, Room &) {
    Room bytes = content(2 * sectorSize + 20);
    return ZVBL_VERIFY(h, flash, bytes.data(), static_cast<unsigned>(bytes.size()), 0);
}

int uploadSectors(HANDLE h, Room &room) {
    return ZVBL_UPLOAD(h, flash, room.data(), sectorSize + 300);
}

int uploadPart(HANDLE h, Room &room) {
    return ZVBL_UPLOAD(h, flash + 8, room.data(), 600);
}

int verifySpim(HANDLE h, Room &) {
    Room bytes(4096, 0xFF);
    return ZVBL_VERIFY(h, spim, bytes.data(), static_cast<unsigned>(bytes.size()), 0);
}

int uploadSpim(HANDLE h, Room &room) {
    const int status = ZVBL_EnableBank3(h, 0, 0x100000, 0);
    return status ? status : ZVBL_UPLOAD(h, spim, room.data(), most);
}

int tellCommands(HANDLE h, Room &room) {
    Commands known{};
    return ZVBL_GET(h, room.data(), &known);
}

int tellVersion(HANDLE h, Room &room) {
    return ZVBL_GET_VER_ROPS(h, &room[0], &room[1], &room[2]);
}

int tellIdentity(HANDLE h, Room &room) {
    return ZVBL_GET_ID(h, &room[most - 1], room.data());
}

int tellChecksum(HANDLE h, Room &room) {
    return ZVBL_GetFirmwareCRC(h, flash, 2, room.data());
}

int readOptions(HANDLE h, Room &room) {
    return TARGET_GetUserSystemData(h, options, room.data(), 16);
}

int writeOptions(HANDLE h, Room &) {
    BYTE bytes[] = {0xA5, 0xFF, 0x01, 0x02};
    return TARGET_SetUserSystemData(h, options, bytes, sizeof bytes);
}

int tellSlib(HANDLE h, Room &room) {
    unsigned short sectors[3] = {};
    return ZVBL_GetSlibStatus_Ex(h, room.data(), &sectors[0], &sectors[1], &sectors[2]);
}

int eraseSector(HANDLE h, Room &) {
    BYTE sector[] = {1, 0};
    return ZVBL_ERASE(h, 1, sector, sectorSize);
}

template <int (*call)(HANDLE)>
int plain(HANDLE h, Room &) {
    return call(h);
}

enum class Trait { none, unchecked, restarts };

struct Call {
    const char *name;
    int (*make)(HANDLE, Room &);
    Trait trait = Trait::none;
};

constexpr Call calls[] = {
    {"start", plain<calls::start>},
    {"commands", tellCommands, Trait::unchecked},
    {"version", tellVersion, Trait::unchecked},
    {"identity", tellIdentity, Trait::unchecked},
    {"download", download},
    {"write to RAM", writeRam},
    {"verify", verifySectors},
    {"upload of sectors", uploadSectors, Trait::unchecked},
    {"upload of a part", uploadPart, Trait::unchecked},
    {"verify of external flash", verifySpim},
    {"upload of external flash", uploadSpim, Trait::unchecked},
    {"checksum", tellChecksum},
    {"erase of a sector", eraseSector},
    {"erase of a bank", plain<calls::eraseBank1>},
    {"option bytes", readOptions, Trait::unchecked},
    {"new option bytes", writeOptions, Trait::restarts},
    {"sLib", tellSlib, Trait::unchecked},
    {"sLib on", plain<calls::enableSlib>, Trait::restarts},
    {"Bank 3", plain<calls::enableBank3>},
    {"remap", plain<calls::remapTo1>},
    {"tool exchange", plain<calls::exchangeToolVersion>},
    {"access protection on", plain<calls::protectAccess>, Trait::restarts},
    {"access protection off", plain<calls::unprotectAccess>, Trait::restarts},
    {"sector protection on", plain<calls::protectSectors0And3And31>, Trait::restarts},
    {"sector protection off", plain<calls::unprotectSectors>, Trait::restarts},
    {"run", plain<calls::runFlash>},
    {"reset", plain<calls::reset>, Trait::restarts},
};

constexpr LinkRow lines[] = {
    {"USART", 0, "tty", makeUsartLine, false},  {"I2C", i2c, "i2c", makeI2cLine, false},
    {"SPI", spi, "spi", makeSpiLine, false},    {"CAN", 3, "can0", makeCanLine, true},
    {"USB DFU", usbDfu, "", makeDfuLine, true},
};

constexpr const char *chips[] = {"ZV32F421_16K", "ZV32F415_72K", "ZV32F403_2_64K"};

struct Made {
    int status = 0;
    sim::Nanoseconds took = 0;
    Room told;
    zvbl::Bytes cells;
    std::size_t toChip = 0; // units of the call
    std::size_t toHost = 0;
};

// What is to go wrong: place 0 is the first unit of the call.
struct Fate {
    Kind kind = Kind::lost;
    std::size_t toChip = nowhere;
    std::size_t toHost = nowhere;
};

int open(HANDLE link) {
    const int status = Interface_Open(link);
    return status ? status : SetTimeOut(link, timeoutMs);
}

int getReady(HANDLE link, const Call &call) {
    BYTE scratch = 0;
    Commands known{};
    int status = open(link);
    if (&call == calls)
        return status;
    status = status ? status : ZVBL_Init_BL(link, 0, 0, 0);
    return status ? status : ZVBL_GET(link, &scratch, &known);
}

void harm(Lane &lane, Kind kind, std::size_t place) {
    if (place != nowhere)
        lane.harm(kind, {lane.passed() + place}, 1);
}

Made make(const LinkRow &row, const char *chip, const Call &call, const Fate &fate) {
    const std::unique_ptr<Line> line = row.make(*sim::findChip(chip));
    const zvbl::Bytes before = content(line->flash().size());
    std::copy(before.begin(), before.end(), line->flash().raw());
    static HANDLE handles[std::size(lines)] = {};
    HANDLE &link = handles[&row - lines];
    TARGET_SetComIntType(row.type);
    if (!link)
        SetCOMSettings(&link, 0, row.port, 115200, 8, 2, 1.0F);
    EXPECT_EQ(getReady(link, call), 0) << row.name;
    Made made;
    made.told.resize(most);
    const std::size_t toChip = line->toChip.passed(), toHost = line->toHost.passed();
    harm(line->toChip, fate.kind, fate.toChip);
    harm(line->toHost, fate.kind, fate.toHost);
    const sim::Nanoseconds begun = now();
    made.status = call.make(link, made.told);
    made.took = now() - begun;
    made.toChip = line->toChip.passed() - toChip;
    made.toHost = line->toHost.passed() - toHost;
    made.cells.assign(line->flash().data(), line->flash().data() + line->flash().size());
    Interface_Close(link);
    return made;
}

bool isClockedByHost(const LinkRow &row) {
    return row.type == i2c || row.type == spi;
}

bool mayBeDone(const LinkRow &row, const Call &call, Kind kind) {
    if (kind == Kind::lost || (call.trait == Trait::restarts && row.type == usbDfu))
        return true;
    return kind == Kind::silent && call.trait == Trait::unchecked && isClockedByHost(row);
}

void look(const LinkRow &row, const char *chip, const Call &call, const Made &good, const Fate &fate) {
    const Made made = make(row, chip, call, fate);
    EXPECT_LT(made.took, longestCall);
    if (made.status != 0)
        return;
    EXPECT_TRUE(mayBeDone(row, call, fate.kind)) << "the line has ended, and the call is done";
    EXPECT_EQ(made.cells, good.cells);
    if (call.trait != Trait::unchecked || !isClockedByHost(row))
        EXPECT_EQ(made.told, good.told);
}

// At some places among so many.
template <class Work>
void atPlaces(std::size_t count, const std::string &where, Work work) {
    for (std::size_t at = 0; at < count; at += count / places + 1) {
        SCOPED_TRACE(where + std::to_string(at));
        work(at);
    }
}

void sweep(const LinkRow &row, const char *chip, const Call &call) {
    const Made good = make(row, chip, call, {});
    EXPECT_LT(good.took, longestCall);
    for (const Kind kind : {Kind::lost, Kind::silent, Kind::gone}) {
        SCOPED_TRACE(kind == Kind::lost ? "lost" : kind == Kind::silent ? "silent" : "gone");
        atPlaces(good.toChip, "to the chip, at ", [&](std::size_t at) {
            look(row, chip, call, good, {kind, at, nowhere});
        });
        atPlaces(good.toHost, "to the host, at ", [&](std::size_t at) {
            look(row, chip, call, good, {kind, nowhere, at});
        });
    }
}

void sweepAll(const LinkRow &row) {
    for (const char *chip : chips)
        for (const Call &call : calls) {
            SCOPED_TRACE(std::string(chip) + ", " + call.name);
            sweep(row, chip, call);
        }
}

TEST(CallsTest, overUsart) {
    sweepAll(lines[0]);
}

TEST(CallsTest, overI2c) {
    sweepAll(lines[1]);
}

TEST(CallsTest, overSpi) {
    sweepAll(lines[2]);
}

TEST(CallsTest, overCan) {
    sweepAll(lines[3]);
}

TEST(CallsTest, overUsbDfu) {
    sweepAll(lines[4]);
}

} // namespace
} // namespace damage
