#pragma once

// What the recording double of libZVBLLIB.so.1 is made of: a log that it writes and a script that it obeys.
//
// The log, environment variable ZVBL_DOUBLE_LOG: one line per library call, in the order of the calls, with
// every argument that goes in. Numbers that are addresses, selectors or bytes are hexadecimal without 0x,
// the others decimal. Data is its length, its first 16 bytes and, when there are more, the CRC-32 of the whole.
// A made link is h=1001, 1002 and so on; a USB DFU link is its index. Sleeps of the process are lines too, in
// milliseconds, and take no time:
//
//     SetCOMSettings h=0 port=3 name="ttyUSB3" baud=115200 bits=8 parity=2 stop=1.0
//     ZVBL_DNLOAD h=1001 addr=08000000 len=4 data=DEADBEEF optimise=1
//     sleep 2000
//
// The script, environment variable ZVBL_DOUBLE_SCRIPT: a text file with one rule per line, a function name and
// keys, and comments from '#' on. Every rule that fits a call sets its keys for it, in the order of the file:
//
//     ZVBL_ERASE status=5 nth=2                # the second call only
//     Interface_Open status=3 from=2 to=6      # calls 2 to 6, counted from 1
//     ZVBL_UPLOAD at=1FFFB100 data=000000000000470F
//
//   Every function: status=N (decimal, or 0x..), delay=MS (real time), signal=N (raised in the process before
//   the answer), throw=TEXT (as an exception, which a library never does: for what the process makes of one); the
//   conditions nth=N, from=N, to=N and, where there is an address or an erase selector, at=HEX.
//   Its own keys, data in hexadecimal digits:
//     Interface_is_Open          open=0|1           (default: as opened and closed)
//     ZVBL_GetZVDeviceList       count=N            (1)
//     ZVBL_GET                   caps=LIST          (all) comma-separated: all, none, NAME, -NAME
//     ZVBL_GET_VER_ROPS          version=HEX bid=HEX res=HEX  (21 12 34)
//     ZVBL_GET_ID                id=HEX             (0347700507) as on the wire; its length is the length
//     ZVBL_UPLOAD                data=HEX fill=HEX  (fill FF) fill goes on after the data
//     TARGET_GetUserSystemData   data=HEX fill=HEX  (data A5, fill FF)
//     TARGET_GetFlashSize        kb=N               (1024)
//     ZVBL_GetFirmwareCRC        crc=HEX            (12345678)
//     ZVBL_GetSlibStatus         enabled=N          (0)
//     ZVBL_GetSlibStatus_Ex      enabled=N start=N datastart=N end=N  (all 0)
//   A nonzero status writes no output. An unknown function or key, or a file that is not there, ends the
//   process with a line on standard error: a script with a slip proves nothing.
//
// A change of either variable counts from the next call on. A new script starts the call counts over.

#include <cstdint>
#include <map>
#include <string>

namespace zvbldouble {

// What the script says about one call.
class Answer {
public:
    unsigned char status = 0;
    std::map<std::string, std::string> keys;

    bool ok() const { return status == 0; }
    bool has(const char *key) const { return keys.count(key) != 0; }
    std::string text(const char *key, const char *otherwise) const;
    unsigned long number(const char *key, unsigned long otherwise) const; // C notation
    unsigned long hex(const char *key, unsigned long otherwise) const;
    // Fills the buffer with the bytes of "data", and after them with "fill".
    void fillBuffer(unsigned char *buffer, unsigned int length, const char *data) const;
};

// Logs the call and tells what it is to answer. `at` is the address or selector that a rule may ask for.
Answer called(const char *function, const std::string &arguments, uint32_t at = 0);

// Appends one line to the log, if there is one.
void logLine(const std::string &line);

std::string format(const char *pattern, ...) __attribute__((format(printf, 1, 2)));
std::string bytesText(const unsigned char *data, unsigned int length); // "len=.. data=.."
std::string bytesOf(const std::string &hexDigits);

// Which links are open. Any thread.
void *makeLink();
void setOpen(void *link, bool open);
bool isOpen(void *link);

// Forgets links and call counts.
void reset();

} // namespace zvbldouble
