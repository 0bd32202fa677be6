#include "app/Usage.h"

#include "app/Report.h"

namespace {

// MEANT: the text promises defaults for the I2C values and "--ft" and a word "--a" that the options do not have,
// and leaves out "-can", "-spi", "-otp" and some twins of sub-options.
const char *const usageLines[] = {
    "Zelvor ISP Programmer V3.0.14",
    " Usage : ",
    "    ZV32_ISP_Console  [options] [Agrument][[options] [Agrument]...] ",
    "     -?                     Show this help.",
    "     -dfu                   Establish connection to the DFU port. ",
    "     -com                   Establish connection to the COM port. ",
    // NOLINTNEXTLINE(bugprone-suspicious-missing-comma): one line of the text, on two of the source
    "       --pn  port_number    If OS is Windows, this is port number, e.g 1, 2... default 1. Else this is port name, "
    "e.g ttyACM0, ttyS0... ",
    "       --br  baud_rate      E.g 256000, 128000, 115200, 57600 ..., default 115200 ",
    "       --db  data_bits      Value in {5,6,7,8} ..., default 8 ",
    "       --pr  parity         Value in {NONE,ODD,EVEN} ..., default EVEN ",
    "       --to  time_out       (s) e.g 1, 2, 3 ..., default 5.",
    "       --auto   option      Auto connect option,  e.g 0, 1, 2, 3 ..., default 0.",
    "                               0: Not use RTS and DTR.",
    "                               1: DTR low level to reset, not use RTS.",
    "                               2: DTR low level to reset, RTS low level to load bootloader.",
    "                               3: DTR low level to reset, RTS high level to load bootloader.",
    "                               4: DTR high level to reset, not use RTS.",
    "                               5: DTR high level to reset, RTS low level to load bootloader.",
    "                               6: DTR high level to reset, RTS high level to load bootloader.",
    "                               7: RTS low level to reset, not use DTR.",
    "                               8: RTS low level to reset, DTR low level to load bootloader.",
    "                               9: RTS low level to reset, DTR high level to load bootloader.",
    "                               10: RTS high level to reset, not use DTR.",
    "                               11: RTS high level to reset, DTR low level to load bootloader.",
    "                               12: RTS high level to reset, DTR high level to load bootloader.",
    "     -i2c                   Establish connection to the I2C port. ",
    "       --pn  port_number    If OS is Windows, this is port number, e.g 1, 2... default 1. Else this is port name, "
    "e.g ttyACM0, ttyS0... ",
    "       --addr  address      I2C address, default 0x3C ",
    "       --rate  rate\t\t I2C rate, default 400000Hz ",
    "       --dc  duty cycle     E.g 2:1, 16:9 default 2:1 ",
    "     -e                     Erase flash.",
    "       --all                Erase all sectors of flash,SPIM(SPIM enabled),boot memory(AP mode enabled).",
    "       --sec n-m            Erase selected sectors, begin_sector-end_sector, e.g 0-20.",
    "     -u                     Upload flash contents to the specified file.",
    "       --sec n-m            Upload selected sectors, begin_sector-end_sector, e.g 0-20.",
    "       --fn  file_name      Full path name (bin, hex file;the file type is recognized by its extension).",
    "     -d                     Download the conent of the specified file into flash. ",
    "       --a   address(hex)   Start address, default 0x08000000; ignored if the target file is not a binary file.",
    "       --fn  file_name      Full path name (bin, hex or s19 file; the file type is recognized by its extension).",
    "       --v                  Verify after download.",
    "       --o                  Optimize; removes FFs data.",
    "     -usd                   Set user system data to MCU.",
    "       --get --fn file_name Get user system data from the device and write it to the specified file, full path "
    "name (bin/hex file,the file type is recognized by its extension).",
    "       --set --fn file_name Load user system data from the specified file and write it to the device, full path "
    "name (bin/hex file,the file type is recognized by its extension).",
    "     -p                     Enable or disable protection.",
    "       --efap               Enable flash access protection, all options following this one will fail.",
    "       --dfap               Disable flash access protection.",
    "       --eepp n-m           Enable erase and program protection for sector codes, begin_sector-end_sector, e.g "
    "0-20.",
    "       --depp               Disable erase and program protection.",
    "       --efap1              Enable basic access protection, all options following this one will fail.",
    "       --efap2              Enable high level access protection, all options following this one will fail.",
    "          --y               If the MCU is "
    "ZV32F425/F423/A423/L021/F405/F402/F455/F456/F457/F490/M412/M416/G412/F422/F426, you must enter \"--y\" for "
    "confirmation.",
    "     -r                     Run the flash code at the specified address.",
    "       --a address(hex)     Address, default 0x08000000.",
    "     -enspim                Enable to access SPIM.",
    "       --ft type            SPIM flash type, value 1 or 2, default value 1.",
    "       --fs size            SPIM flash size (MB). ",
    "       --fda FA(hex)        SPIM FLASH_DA, hexadecimal.",
    "       --remap 0/1          Remap IO pin used by SPIM. ",
    "                               0: remap0(Use PA11/PA12 pins).",
    "                               1: remap1(Use PB10/PB11 pins).",
};

} // namespace

void man() {
    for (const char *line : usageLines)
        printLine(line);
}
