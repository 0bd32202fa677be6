#include "look/line/Files.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <sys/stat.h>
#include <unistd.h>

#include "app/FileNames.h"
#include "foundation/ShareParameter.h"

namespace {

// Bits on the line for each byte of data, without what frames a packet.
double bitsPerByte(OptionId link) {
    switch (link) {
    case OptionId::usart: return 1 + 8 + (g_shareParameter.c_parity == 0 ? 0 : 1) + 1;
    case OptionId::can: return 111.0 / 8; // a frame of eight bytes with its head and gap, nothing stuffed
    case OptionId::spi: return 8;
    default: return 0;
    }
}

double rateOf(OptionId link) {
    switch (link) {
    case OptionId::usart: return g_shareParameter.c_BaudRate;
    case OptionId::can: return g_shareParameter.uiCANSpeed;
    case OptionId::spi: return static_cast<double>(g_shareParameter.ulSPISpeed);
    default: return 0;
    }
}

} // namespace

std::string refusedName(const std::string &name) {
    if (IsValidFileName("/" + name) && name.find('/') == std::string::npos)
        return "\"" + name + "\" has no slash, and \"./" + name + "\" has";
    return "\"" + name + "\" is no path that ends in bin, hex, s19 or srec";
}

bool canBeRead(Line &line, const std::string &path) {
    struct stat info;
    if (stat(path.c_str(), &info) != 0)
        line.error("no file", path + ": " + std::strerror(errno));
    else if (!S_ISREG(info.st_mode))
        line.error("no file", path + ": not a regular file");
    else if (access(path.c_str(), R_OK) != 0)
        line.error("no file", path + ": " + std::strerror(errno));
    else
        return true;
    return false;
}

void tellTime(Section &action, OptionId link, unsigned long long bytes) {
    const double rate = rateOf(link);
    if (rate <= 0 || bitsPerByte(link) <= 0)
        return;
    const double seconds = static_cast<double>(bytes) * bitsPerByte(link) / rate;
    char text[64];
    std::snprintf(text, sizeof text, "%.1f s at the least", seconds);
    action.fact("time on the link", {seconds, text});
}
