#include "sim/program/Options.h"

#include <charconv>
#include <cstring>
#include <filesystem>
#include <getopt.h>
#include <iterator>
#include <string_view>

#include "sim/program/FaultOption.h"

namespace sim {

const char helpText[] =
    R"(zv32-sim: a ZV32 chip with its resident bootloader, at a serial port that any client can open

  zv32-sim --chip NAME --usart PATH [options]
  zv32-sim --list
  zv32-sim --help

  --chip NAME         the chip, by a name of --list
  --usart PATH        make a serial port and a symbolic link to it at PATH; print "ready" and PATH in full
  --slcan PATH        the same, a serial-line CAN adapter with the chip at its bus
  --can [INTERFACE]   join the bus of a CAN interface (can0), print "ready INTERFACE"
  --i2c [NODE]        the chip on an I2C bus (i2c-1), a device node of a directory; print "ready NODE DIR"
  --spi [NODE]        the same on SPI (spidev0.0)
  --tty [NODE]        the same at a serial port that has DTR and RTS (ttyUSB0)
  --wiring PINS       what DTR and RTS do on the board, as reset=dtr:low,boot=rts:high
  --dfu               a chip on USB, its node in a directory of emulated devices, print "ready dfu DIR"
  --vhci-dfu          the same on the kernel's own USB (vhci-hcd, root), print "ready" and the device's node
  --vhci-acm          a USB serial adapter there, with the chip behind it
  --vhci-i2c          a USB I2C adapter there, with the chip on its bus
  --unit N            which of the chips of that kind it is: each has its own unique identifier (0)
  --beside N          N further chips of the same kind on its bus, new in every run (0)
  --state FILE        keep the chip's memory in FILE between runs
  --spim MB           size of the SPI flash on the board, 0 for none (16)
  --baud-pace         bytes take the time that they need at the rate that the client set; on I2C 400000
  --flash-time[=ERASE_MS,PROGRAM_US]
                      erasing takes ERASE_MS a sector (20), programming PROGRAM_US for 256 bytes (2500)
  --fault SPEC        something goes wrong, once; can be given several times:
        nack@N[:OPCODE[:ANSWER]]   the N-th command (of that opcode, or "any") is refused; ANSWER counts
                                   its answers, 0 for the one behind the opcode (0)
        silence@N                  from the N-th command on the chip is silent, until a reset
        rx-lost@N  tx-lost@N       the N-th byte from (rx) or to (tx) the host is lost
        rx-late@N:MS  tx-late@N:MS it comes late, and so do all that follow
        rx-double@N  tx-double@N   it comes twice
        rx-damage@N[:MASK]  tx-damage@N[:MASK]
                                   it comes with the bits of MASK turned over (10)
        hangup@N[:MS]  tx-hangup@N[:MS]
                                   in its place the port is unplugged, and plugged in again after MS;
                                   without MS the simulator ends
        powercut@N[:flash|options] the power fails behind the N-th programmed byte (flash, OTP, SPIM)
                                   or option byte pair; 0: before the first
        powercut@N:erase           it fails behind the N-th half of a sector that is erased
  --verbose           tell every command, not only refusals and faults
  --log FILE          tell it in FILE, not on standard error

SIGUSR1 is the reset button. SIGTERM and SIGINT end the simulator and remove the link.
Exit status: 0 ended, 1 the port or a file cannot be used, 2 a bad command line.
)";

namespace {

constexpr unsigned largestSpimMb = 64;
constexpr unsigned lastUnit = 65535;
constexpr unsigned mostBeside = 16;
constexpr unsigned longestTime = 60000000;
constexpr FlashTime usualFlashTime{20 * millisecond, 2500 * microsecond};

bool parseNumber(std::string_view text, unsigned limit, unsigned &number) {
    const char *end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    return result.ec == std::errc() && result.ptr == end && number <= limit;
}

bool setChip(Options &options, const char *value, std::string &error) {
    options.chip = findChip(value);
    error = std::string("no chip \"") + value + "\": see zv32-sim --list";
    return options.chip != nullptr;
}

bool setSpim(Options &options, const char *value, std::string &error) {
    error = std::string("--spim takes megabytes, 0 to 64, not \"") + value + "\"";
    return parseNumber(value, largestSpimMb, options.spimMb);
}

bool setUnit(Options &options, const char *value, std::string &error) {
    error = std::string("--unit takes a number, 0 to 65535, not \"") + value + "\"";
    return parseNumber(value, lastUnit, options.unit);
}

bool setBeside(Options &options, const char *value, std::string &error) {
    error = std::string("--beside takes a number of chips, 0 to 16, not \"") + value + "\"";
    return parseNumber(value, mostBeside, options.beside);
}

bool setFlashTime(Options &options, const char *value, std::string &error) {
    if (value == nullptr) {
        options.flashTime = usualFlashTime;
        return true;
    }
    const std::string_view text = value;
    const std::size_t comma = text.find(',');
    unsigned eraseMs = 0;
    unsigned programUs = 0;
    error = "--flash-time takes ERASE_MS,PROGRAM_US, not \"" + std::string(text) + "\"";
    if (comma == std::string_view::npos || !parseNumber(text.substr(0, comma), longestTime, eraseMs) ||
        !parseNumber(text.substr(comma + 1), longestTime, programUs))
        return false;
    options.flashTime = {eraseMs * millisecond, programUs * microsecond};
    return true;
}

bool setWiring(Options &options, const char *value, std::string &error) {
    return parseWiring(value, options.wiring, error);
}

bool setFault(Options &options, const char *value, std::string &error) {
    return addFault(options.faults, value, error);
}

template <std::string Options::*Member>
bool setText(Options &options, const char *value, std::string &error) {
    options.*Member = value;
    error = "an empty name";
    return *value != '\0';
}

template <bool Options::*Member>
bool setFlag(Options &options, const char *, std::string &) {
    return options.*Member = true;
}

template <Options::Task Value>
bool setTask(Options &options, const char *, std::string &) {
    options.task = Value;
    return true;
}

struct OptionRow {
    const char *name;
    int argument;
    bool (*set)(Options &options, const char *value, std::string &error);
};

constexpr OptionRow rows[] = {
    {"chip", required_argument, setChip},
    {"state", required_argument, setText<&Options::state>},
    {"spim", required_argument, setSpim},
    {"unit", required_argument, setUnit},
    {"beside", required_argument, setBeside},
    {"wiring", required_argument, setWiring},
    {"baud-pace", no_argument, setFlag<&Options::pace>},
    {"flash-time", optional_argument, setFlashTime},
    {"fault", required_argument, setFault},
    {"verbose", no_argument, setFlag<&Options::verbose>},
    {"log", required_argument, setText<&Options::log>},
    {"list", no_argument, setTask<Options::Task::list>},
    {"help", no_argument, setTask<Options::Task::help>},
};

// The words of the table, and after them those of the ports.
std::vector<struct option> longOptions(const PortKinds &kinds) {
    std::vector<struct option> list;
    for (const OptionRow &row : rows)
        list.push_back({row.name, row.argument, nullptr, 0});
    for (const PortKind &kind : kinds) {
        const int valued = kind.usual != nullptr ? optional_argument : required_argument;
        list.push_back({kind.option, kind.argument != nullptr ? valued : no_argument, nullptr, 0});
    }
    list.push_back({nullptr, 0, nullptr, 0});
    return list;
}

bool setPort(Options &options, const PortKind &kind, const char *value, std::string &error) {
    if (options.kind != nullptr) {
        error = std::string("a chip has one port: --") + options.kind->option + " or --" + kind.option;
        return false;
    }
    options.kind = &kind;
    options.port = value != nullptr ? value : kind.usual != nullptr ? kind.usual : "";
    error = "an empty name";
    if (kind.argument == nullptr)
        return true;
    if (options.port.empty())
        return false;
    // Whoever reads of it may be in another directory.
    if (std::string_view(kind.argument) == "PATH")
        options.port = std::filesystem::absolute(options.port.substr(options.port.rfind("./", 0) == 0 ? 2 : 0));
    return true;
}

// The value of a port's word. One that may be left out stands after a = or, if no other word follows, alone.
const char *valueOf(const PortKind &kind, int argc, char **argv) {
    const bool alone = kind.usual != nullptr && optarg == nullptr && optind < argc && argv[optind][0] != '-';
    return alone ? argv[optind++] : optarg;
}

std::string namesOf(const PortKinds &kinds) {
    std::string names;
    for (const PortKind &kind : kinds)
        names += std::string(names.empty() ? "--" : ", --") + kind.option;
    return names;
}

bool complete(const Options &options, const PortKinds &kinds, std::string &error) {
    if (options.task != Options::Task::serve)
        return true;
    if (options.chip == nullptr)
        error = "--chip is missing";
    else if (options.kind == nullptr)
        error = "the port is missing: " + namesOf(kinds);
    else if (options.beside != 0 && !options.kind->several)
        error = std::string("--beside is not for --") + options.kind->option;
    else if (!options.kind->lines && (options.wiring.reset || options.wiring.boot))
        error = std::string("--") + options.kind->option + " has no control lines for --wiring";
    return error.empty();
}

} // namespace

bool parseOptions(int argc, char **argv, const PortKinds &kinds, Options &options, std::string &error) {
    const std::vector<struct option> list = longOptions(kinds);
    opterr = 0;
    optind = 1;
    for (;;) {
        int index = -1;
        const int at = optind;
        const int found = getopt_long(argc, argv, ":", list.data(), &index);
        if (found == -1)
            break;
        if (found != 0 || index < 0) {
            error = std::string(found == ':' ? "a value is missing behind " : "unknown option ") + argv[at];
            return false;
        }
        const auto known = static_cast<int>(std::size(rows));
        const PortKind *kind = index < known ? nullptr : &kinds[static_cast<std::size_t>(index - known)];
        if (!(kind == nullptr ? rows[index].set(options, optarg, error)
                              : setPort(options, *kind, valueOf(*kind, argc, argv), error)))
            return false;
        error.clear();
    }
    if (optind < argc) {
        error = std::string("what is \"") + argv[optind] + "\"?";
        return false;
    }
    return complete(options, kinds, error);
}

} // namespace sim
