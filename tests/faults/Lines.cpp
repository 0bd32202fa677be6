#include "tests/faults/Lines.h"

#include <algorithm>
#include <sstream>

#include "foundation/Result.h"
#include "sim/chip/ChipTable.h"

namespace faults {

namespace {
constexpr const char *a = "ZV32F413_64K";
constexpr const char *b = "ZV32F415_64K";
constexpr const char *bLong = "ZV32WB415_128K";
constexpr const char *c = "ZV32L021_16K";
constexpr const char *cOtp = "ZV32M412_64K";
constexpr const char *d = "ZV32F402_64K";
constexpr const char *dOtp = "ZV32F455_256K";
constexpr const char *e = "ZV32F437_448K";
constexpr const char *f = "ZV32F422_32K";
constexpr const char *protection = "-p --efap";
} // namespace

// clang-format off
const std::vector<CommandLine> commandLines = {
    {a, usart, ""}, {a, dfu, ""}, {a, i2c, ""}, {a, can, ""}, {a, spi, ""},
    {a, usart, "-e --all"}, {b, can, "-e --all"}, {c, dfu, "-e --all"}, {d, i2c, "-e --all"}, {e, usart, "-e --all"}, {f, spi, "-e --all"},
    {a, usart, "-e --sec 1-2"}, {b, spi, "-e --sec 1-2"}, {c, usart, "-e --sec 1-2"}, {f, dfu, "-e --sec 1-2"},
    {a, usart, "-d --fn ./a.hex --v"}, {b, i2c, "-d --fn ./a.s19 --v"}, {c, usart, "-d --fn ./a.bin --addr 08000400"},
    {d, dfu, "-d --fn ./a.bin --v --o"}, {f, can, "-d --fn ./a.hex --v"},
    {e, usart, "-e --all -d --fn ./a.bin --addr 08001000 --v --o"}, {c, usart, "-e --all -d --fn ./a.bin --v -r"},
    {a, usart, "-u --sec 1-2 --fn ./back.bin"}, {b, dfu, "-u --sec 0-1 --fn ./back.hex"}, {c, usart, "-u --fn ./back.s19"},
    {d, spi, "-u --sec 0-0 --fn ./back.bin"}, {e, can, "-u --sec 3-4 --fn ./back.bin"}, {f, i2c, "-u --sec 0-1 --fn ./back.bin"},
    {a, usart, "-usd --get --fn ./back.bin"}, {b, spi, "-usd --get --fn ./back.bin"}, {c, usart, "-o --get --fn ./back.hex"},
    {d, i2c, "-usd --get --fn ./back.bin"}, {e, dfu, "-usd --get --fn ./back.bin"}, {f, can, "-o --get --fn ./back.bin"},
    {a, usart, "-usd --set --fn ./usd.bin"}, {b, usart, "-o --set --fn ./usd.bin"}, {bLong, can, "-usd --set --fn ./usd.bin"},
    {c, dfu, "-usd --set --fn ./usd.bin"}, {d, usart, "-usd --set --fn ./usd.bin"}, {e, usart, "-usd --set --fn ./usd.bin"},
    {f, usart, "-usd --set --fn ./usd.bin"},
    {a, usart, "-p --eepp 0-3"}, {b, i2c, "-p --ewp 4-7"}, {c, usart, "-p --eepp 0-3"}, {d, can, "-p --eepp 0-3"},
    {e, dfu, "-p --eepp 0-3"}, {f, usart, "-p --ewp 0-3"},
    {a, usart, "-p --depp", "-p --eepp 0-3"}, {b, usart, "-p --dwp", "-p --eepp 0-3"}, {c, spi, "-p --depp", "-p --eepp 0-3"},
    {d, usart, "-p --depp", "-p --eepp 0-3"}, {e, usart, "-p --depp", "-p --eepp 0-3"}, {f, dfu, "-p --dwp", "-p --eepp 0-3"},
    {a, usart, "-p --efap"}, {b, can, "-p --erp"}, {c, usart, "-p --efap1"}, {d, dfu, "-p --efap"}, {e, i2c, "-p --efap"}, {f, usart, "-p --efap"},
    {c, usart, "-p --efap2 --y"}, {d, spi, "-p --efap2 --y"}, {f, can, "-p --efap2 --y"},
    {a, usart, "-p --dfap", protection}, {b, usart, "-p --drp", protection}, {c, usart, "-p --dfap", protection},
    {d, usart, "-p --dfap", protection}, {e, usart, "-p --dfap", protection}, {f, spi, "-p --dfap", protection},
    {a, usart, "-r"}, {b, dfu, "-r --addr 08000000"}, {c, i2c, "-r"}, {d, can, "-r"}, {e, spi, "-r"}, {f, usart, "-r"},
    {a, usart, "-enspim --ft 1 --fs 1 --remap 1"}, {d, usart, "-enspim --ft 1 --fs 1"}, {e, dfu, "-enspim --ft 2 --fs 1 --fda 1000"},
    {a, usart, "-enspim --ft 1 --fs 1 -e --sec 32768-32769"}, {a, usart, "-enspim --ft 1 --fs 1 -d --fn ./a.bin --addr 08400000 --v"},
    {cOtp, usart, "-otp --fn ./otp.zvtp"}, {dOtp, can, "-otp --fn ./otp.zvtp"}, {f, usart, "-otp --fn ./otp.zvtp"},
};

const std::vector<CommandLine> adapterLines = {
    {a, slcan, ""}, {f, slcan, "-e --all"}, {b, slcan, "-e --sec 1-2"}, {d, slcan, "-d --fn ./a.bin --v"},
    {c, slcan, "-u --sec 0-0 --fn ./back.bin"}, {a, slcan, "-usd --get --fn ./back.bin"}, {f, slcan, "-usd --set --fn ./usd.bin"},
    {c, slcan, "-p --eepp 0-3"}, {a, slcan, "-p --depp", "-p --eepp 0-3"}, {d, slcan, "-p --efap"}, {e, slcan, "-p --dfap", protection},
    {a, slcan, "-r"}, {d, slcan, "-enspim --ft 1 --fs 1"}, {dOtp, slcan, "-otp --fn ./otp.zvtp"},
};
// clang-format on

namespace {

struct ActionRow {
    const char *word; // an option word, or one behind it
    std::vector<int> statuses;
    std::vector<std::string> texts;
};

const std::vector<ActionRow> actionRows = {
    {"-com",
     {2},
     {"Cannot open the com port, the port not exist or may be used by another application",
      "Unrecognized device...Please, reset your device then try again ", "Init Device Failed!"}},
    {"-dfu",
     {2},
     {"Unable to get DFU device", "Don't have DFU device!", "Open DFU device error!",
      "Unrecognized device...Please, reset your device then try again", "Init Device Failed!"}},
    {"--all", {48, 49}, {}},
    {"--sec", {51}, {}},
    {"-d", {3}, {"Error:  Download file open failed!"}},
    {"-u", {4}, {}},
    {"--get", {7}, {"Get user system data to file failed!"}},
    {"--set", {6}, {"Set user system data to device failed!"}},
    {"-r", {12}, {"Your code is running... (0x08000000)"}},
    {"-enspim", {8}, {}},
    {"-otp",
     {64},
     {"Write OTP data failed!", "Write OTP lock failed!", "Get OTP data from the configuration file failed!"}},
    {"--efap", {32}, {}},
    {"--efap2", {33}, {}},
    {"--dfap", {34}, {}},
    {"--depp", {35}, {}},
    {"--eepp", {36}, {}},
};

struct OtherName {
    const char *word;
    const char *known;
};

constexpr OtherName otherNames[] = {
    {"-i2c", "-com"},      {"-can", "-com"},    {"-spi", "-com"},    {"--erp", "--efap"},
    {"--efap1", "--efap"}, {"--drp", "--dfap"}, {"--dwp", "--depp"}, {"--ewp", "--eepp"},
};

const ActionRow *rowOf(std::string word) {
    for (const OtherName &other : otherNames)
        if (word == other.word)
            word = other.known;
    const auto found =
        std::find_if(actionRows.begin(), actionRows.end(), [&word](const ActionRow &row) { return word == row.word; });
    return found == actionRows.end() ? nullptr : &*found;
}

bool isOption(const std::string &word) {
    return word.size() > 1 && word[0] == '-' && word[1] != '-';
}

std::string image(std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<char>(i * 7 + i / 256);
    return bytes;
}

// One run of bytes as records of sixteen.
std::string hexFile(const std::string &bytes) {
    std::ostringstream text;
    char digits[8];
    const auto record = [&](unsigned address, unsigned type, const std::string &data) {
        unsigned sum = 0;
        text << ":";
        std::string all{static_cast<char>(data.size()), static_cast<char>(address >> 8U), static_cast<char>(address),
                        static_cast<char>(type)};
        for (const char byte : all += data) {
            sum += static_cast<unsigned char>(byte);
            std::snprintf(digits, sizeof digits, "%02X", static_cast<unsigned char>(byte));
            text << digits;
        }
        std::snprintf(digits, sizeof digits, "%02X", -sum & 0xFFU);
        text << digits << "\n";
    };
    record(0, 4, std::string("\x08\x00", 2));
    for (std::size_t at = 0; at < bytes.size(); at += 16)
        record(static_cast<unsigned>(at), 0, bytes.substr(at, 16));
    record(0, 1, "");
    return text.str();
}

std::string sRecordFile(const std::string &bytes) {
    std::ostringstream text;
    char digits[16];
    for (std::size_t at = 0; at < bytes.size(); at += 16) {
        const std::string data = bytes.substr(at, 16);
        const unsigned address = 0x08000000U + static_cast<unsigned>(at);
        unsigned sum =
            static_cast<unsigned>(data.size()) + 5 + (address >> 24U) + (address >> 8U & 0xFFU) + (address & 0xFFU);
        std::snprintf(digits, sizeof digits, "S3%02X%08X", static_cast<unsigned>(data.size()) + 5, address);
        text << digits;
        for (const char byte : data) {
            sum += static_cast<unsigned char>(byte);
            std::snprintf(digits, sizeof digits, "%02X", static_cast<unsigned char>(byte));
            text << digits;
        }
        std::snprintf(digits, sizeof digits, "%02X", ~sum & 0xFFU);
        text << digits << "\n";
    }
    return text.str() + "S70508000000F2\n";
}

// Open, with data of its own; the file holds a complement behind each byte, and is never shorter than 48 bytes.
std::string userSystemData(const std::string &chip) {
    std::string data(sim::findChip(chip)->userDataLength, '\xFF');
    data[0] = '\xA5';
    data[data.size() - 1] = '\x5A';
    data.resize(std::max<std::size_t>(data.size(), 24), '\xFF');
    std::string pairs;
    for (const char byte : data) {
        pairs += byte;
        pairs += static_cast<char>(~byte);
    }
    return pairs;
}

} // namespace

std::string nameOf(const CommandLine &line) {
    return std::string(links[line.link].name) + ", " + line.chip + ": " + line.words;
}

std::map<std::string, std::string> filesFor(const std::string &chip) {
    constexpr std::size_t imageSize = 1600; // a whole sector, and a part of the next
    const std::string bytes = image(imageSize);
    const std::string record = std::string("\0\0\0\x20", 4) + image(32) + std::string(2, '\0');
    std::map<std::string, std::string> files = {
        {"a.bin", bytes},
        {"a.hex", hexFile(bytes)},
        {"a.s19", sRecordFile(bytes)},
        {"usd.bin", userSystemData(chip)},
        {"otp.zvtp", record + std::string(2, '\1')},
    };
    for (const char *name : {"back.bin", "back.hex", "back.s19"})
        files[name] = "old";
    return files;
}

std::vector<Action> actionsOf(const std::string &words) {
    std::vector<Action> actions;
    std::istringstream stream(words);
    for (std::string word; stream >> word;) {
        if (isOption(word))
            actions.push_back({});
        actions.back().words += (actions.back().words.empty() ? "" : " ") + word;
        if (const ActionRow *row = actions.back().statuses.empty() ? rowOf(word) : nullptr) {
            actions.back().statuses = row->statuses;
            actions.back().texts = row->texts;
        }
    }
    return actions;
}

} // namespace faults
