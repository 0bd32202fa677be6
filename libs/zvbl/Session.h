#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "libs/zvbl/Links.h"
#include "libs/zvbl/Packets.h"

namespace zvbl {

struct Version {
    std::uint8_t version = 0;
    std::uint8_t bidReserve = 0;
    std::uint8_t bid = 0;
};

struct Capabilities {
    std::uint8_t version = 0;
    Bytes opcodes;
};

struct SlibRange {
    std::uint16_t start = 0;
    std::uint16_t dataStart = 0;
    std::uint16_t end = 0;
};

struct SlibStatus {
    bool enabled = false;
    SlibRange range;
};

// The chip's own checksum of its sectors: what is known of it while the link is open.
struct SectorCrc {
    bool listed = false;                    // by GET
    Bytes doubtful;                         // a reply of GET that did not list it, and may have been damaged
    bool trusted = true;                    // false: another checksum than ours, or none came
    bool foreign = false;                   // another checksum than ours
    bool toldUnvouched = false;             // in the trace
    std::optional<std::size_t> flashSector; // bytes of a sector; 0: the chip does not tell
    std::optional<std::size_t> spimSector;
    bool ofEach = true; // it answers for several sectors one by one, until it has shown that it does not
};

// Whoever compares sector after sector, a call for each, goes on: the checksums of the next sectors come in one
// answer. They are forgotten with whatever could change a cell, and after a moment.
struct CrcsAhead {
    std::uint32_t next = 0;          // the end of what was compared in a row
    std::size_t compared = 0;        // sectors of that
    bool goesOn = false;             // this call begins there
    std::vector<std::uint32_t> crcs; // from next on
    TimePoint heard{};
};

// Whoever reads the user system data for one check reads them again for the next: what came last answers once more,
// unless anything could have changed it since, or a moment has passed.
struct UserDataRead {
    std::uint32_t address = 0;
    Bytes data; // empty: not known
    TimePoint heard{};
};

// One link: its settings, and the commands of the bootloader on it. Nothing here knows which kind of
// link it is. Every command answers notOpen while the link is closed.
class Session {
public:
    // Port. Settings that the link can't take are kept all the same, so that the next open tells of them
    // too, and no port is opened with the settings of before.
    Status configure(std::uint8_t linkType, const LinkSettings &settings);
    Status open(); // an open link is closed and opened afresh
    Status close();
    bool isOpen() const { return m_parts.transport != nullptr; }
    Status setTimeout(std::chrono::milliseconds timeout);           // 0: the one that holds until another is set
    void setPacketSize(std::size_t bytes) { m_packetSize = bytes; } // 1 to 256
    Status setLine(ControlLine line, bool high);

    // Start and identity.
    Status start(const StartSettings &settings);
    Status setSpeed(unsigned long speed);
    Status getCapabilities(Capabilities &capabilities);
    Status getVersion(Version &version);
    Status getId(Bytes &id);
    Status exchangeToolVersion();

    // Memory. Data are held by the caller; an address with its length stays within 32 bits.
    Status upload(std::uint32_t address, std::uint8_t *data, std::size_t length);
    Status download(std::uint32_t address, const std::uint8_t *data, std::size_t length, bool optimise);
    Status verify(std::uint32_t address, const std::uint8_t *data, std::size_t length, bool optimise);
    Status eraseSector(std::uint16_t sector);
    Status eraseBank(std::uint16_t code); // one of the special codes of ERASE_EXT
    Status eraseBlock(std::uint32_t address);
    Status firmwareCrc(std::uint32_t address, std::uint16_t sectors, std::array<std::uint8_t, 4> &crc);
    Status readUserData(std::uint32_t address, std::size_t length, Bytes &data);
    Status writeUserData(std::uint32_t address, const std::uint8_t *data, std::size_t length);
    Status remapSpim(std::uint8_t remap);
    Status enableBank3(std::uint8_t flashType, std::uint32_t size, std::uint32_t flashAddress);

    // Running, protection, sLib.
    Status go(std::uint32_t address);
    Status reset();
    Status protectAccess();
    Status protectAccess(std::uint8_t level);
    Status unprotectAccess();
    Status protectSectors(const std::uint8_t *bits, std::size_t count);
    Status unprotectSectors();
    Status enableSlib(std::uint32_t password, const SlibRange &range);
    Status disableSlib(std::uint32_t password);
    Status getSlibStatus(SlibStatus &status);

private:
    static constexpr std::chrono::milliseconds defaultTimeout{5000};

    // One try for what must not happen twice, three for the rest.
    enum class Tries { once = 1, thrice = 3 };
    static bool isWorthAnotherTry(Status status);

    void letGo();
    Status exchange(const Command &command, Bytes &reply, Tries tries);
    Status askId(Bytes &id);
    Status askUserData(const Command &read, Bytes &data);
    Status command(const Command &command, Tries tries);
    Status transfer(const Command &command, Bytes &reply);
    void forgetCells();
    std::size_t packetSize() const { return m_parts.framing->packetSize(m_packetSize); }
    Status writePacket(Block block, bool more);
    Status compareRun(const std::vector<Packet> &run, const std::uint8_t *data);
    Status compareByReading(const std::uint8_t *data, const std::vector<Packet> &packets);
    Status read(std::uint32_t address, std::uint8_t *data, std::size_t length);

    // Reading packet by packet; `take` is given each packet and its bytes, and says whether it goes on. A run is as
    // many packets as are read without a pause; `count` is how many of it were asked for.
    std::vector<std::vector<Packet>> runsOf(const std::vector<Packet> &packets) const;
    Status readPacket(const Packet &packet, bool more, Tries tries, Bytes &bytes);
    template <class Take>
    Status readRun(const std::vector<Packet> &run, Take take, std::size_t &count);
    template <class Take>
    Status readAlone(const Packet &packet, Take take);

    // Whole sectors against the checksum of the chip. Of an unknown fit nobody can tell by it.
    enum class Fit { equal, differs, unknown };
    struct Sectors {
        std::uint32_t address;
        std::size_t size; // of one
        std::size_t count;
        std::size_t bytes() const { return size * count; }
        Sectors one(std::size_t number) const;
    };
    bool listsCrc();
    std::size_t sectorSize(std::uint32_t address, std::size_t length);
    std::size_t askSectorSize(std::uint32_t address);
    static Sectors nextSectors(std::uint32_t address, std::size_t left, std::size_t size);
    Fit askCrc(const Sectors &sectors, const std::uint8_t *data);
    void distrustCrc(const char *why);
    Status compareSectors(const Sectors &sectors, const std::uint8_t *data, bool optimise);
    Status compareSector(const Sectors &sector, const std::uint8_t *data, bool optimise);
    bool fitAhead(const Sectors &sector, const std::uint8_t *data);
    void askAhead();
    Status crcOfEach(std::uint32_t address, std::size_t count, std::vector<std::uint32_t> &crcs);
    void noteCompared(const Sectors &sectors);
    Status vouchForSectors(const Sectors &sectors, std::uint8_t *data);
    Status vouchForSector(const Sectors &sector, std::uint8_t *data, Fit fit);
    Status settleUnvouched(std::uint32_t address, const std::uint8_t *data, std::size_t length);
    void tellUnvouched();

    const LinkKind *m_kind = nullptr;
    LinkSettings m_settings;
    std::chrono::milliseconds m_timeout = defaultTimeout;
    std::size_t m_packetSize = wire::maxPacket;

    std::unique_ptr<Trace> m_trace;
    LinkParts m_parts;
    bool m_hasEraseExt = true; // until GET says otherwise
    std::optional<Bytes> m_id; // the last that was answered
    SectorCrc m_crc;
    CrcsAhead m_ahead;
    UserDataRead m_userData;
};

} // namespace zvbl
