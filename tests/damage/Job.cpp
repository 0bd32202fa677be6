#include "tests/damage/Job.h"

#include <cstdlib>

namespace damage {

const LinkRow links[4] = {
    {"USART", 0, "tty", makeUsartLine, false},
    {"I2C", 2, "i2c", makeI2cLine, false},
    {"SPI", 4, "spi", makeSpiLine, false},
    {"CAN", 3, "can0", makeCanLine, true},
};

namespace {

constexpr const char *chipName = "ZV32F421_16K";
constexpr unsigned base = 0x08000000;
constexpr std::size_t imageSize = 1300; // a whole sector, and a part of the next one
constexpr std::size_t uploadSize = 2048;
constexpr unsigned timeoutMs = 1000;

zvbl::Bytes randomBytes(std::size_t count, std::mt19937 &random) {
    zvbl::Bytes bytes(count);
    for (std::uint8_t &byte : bytes)
        byte = static_cast<std::uint8_t>(random());
    return bytes;
}

int connect(HANDLE link) {
    BYTE scratch = 0;
    Commands commands;
    int status = Interface_Open(link);
    status = status ? status : SetTimeOut(link, timeoutMs);
    status = status ? status : ZVBL_Init_BL(link, 0, 0, 0);
    return status ? status : ZVBL_GET(link, &scratch, &commands);
}

int download(HANDLE link, zvbl::Bytes image, unsigned sectorSize, bool verified) {
    const auto size = static_cast<unsigned>(image.size());
    int status = connect(link);
    for (unsigned sector = 0; status == 0 && sector * sectorSize < size; ++sector) {
        BYTE number[2] = {static_cast<BYTE>(sector), 0};
        status = ZVBL_ERASE(link, 1, number, sectorSize);
    }
    status = status ? status : ZVBL_DNLOAD(link, base, image.data(), size, 0);
    return status || !verified ? status : ZVBL_VERIFY(link, base, image.data(), size, 0);
}

int upload(HANDLE link, zvbl::Bytes &bytes) {
    const int status = connect(link);
    return status ? status : ZVBL_UPLOAD(link, base, bytes.data(), static_cast<unsigned>(bytes.size()));
}

// The cells after a download: whole sectors are erased before it.
zvbl::Bytes wanted(zvbl::Bytes content, const zvbl::Bytes &image, std::size_t sectorSize) {
    const std::size_t erased = (image.size() + sectorSize - 1) / sectorSize * sectorSize;
    std::fill_n(content.begin(), erased, std::uint8_t{0xFF});
    std::copy(image.begin(), image.end(), content.begin());
    return content;
}

HANDLE linkTo(const LinkRow &row) {
    static HANDLE handles[std::size(links)] = {};
    HANDLE &handle = handles[&row - links];
    TARGET_SetComIntType(row.type);
    if (!handle)
        SetCOMSettings(&handle, 0, row.port, 115200, 8, 2, 1.0F);
    return handle;
}

} // namespace

Result runJob(const LinkRow &row, Action action, const Harm &harm, std::uint32_t seed) {
    std::mt19937 random(seed);
    const sim::ChipFacts &facts = *sim::findChip(chipName);
    const std::unique_ptr<Line> line = row.make(facts);
    sim::Cells &flash = line->flash();
    const zvbl::Bytes content = randomBytes(flash.size(), random), image = randomBytes(imageSize, random);
    std::copy(content.begin(), content.end(), flash.raw());
    line->toChip.harm(harm.kind, harm.toChip, harm.seed);
    line->toHost.harm(harm.kind, harm.toHost, harm.seed + 1);
    setenv("ZVBL_VERIFY_BY", action == Action::verifiedByReading ? "read" : "crc", 1);

    const HANDLE link = linkTo(row);
    zvbl::Bytes uploaded(uploadSize);
    const int status = action == Action::upload ? upload(link, uploaded)
                                                : download(link, image, facts.sectorSize, action != Action::download);
    Interface_Close(link);
    const zvbl::Bytes cells(flash.data(), flash.data() + flash.size());
    const bool right = action == Action::upload
                           ? cells == content && std::equal(uploaded.begin(), uploaded.end(), content.begin())
                           : cells == wanted(content, image, facts.sectorSize);
    const Outcome outcome = status != 0 ? Outcome::reported : right ? Outcome::repaired : Outcome::lied;
    return {outcome, status, line->toChip.passed(), line->toHost.passed()};
}

} // namespace damage
