// The C interface: port and link.

#include <algorithm>
#include <cstring>

#include "libs/zvbl/Border.h"
#include "libs/zvbl/transport/UsbDevices.h"
#include "link/ZVBLLIB.h"

using namespace zvbl;

namespace {

void copyText(const std::string &text, char *to, std::size_t size) {
    const std::size_t length = std::min(text.size(), size - 1);
    std::memcpy(to, text.data(), length);
    std::memset(to + length, 0, size - length);
}

} // namespace

BYTE SetCOMSettings(HANDLE *link, int portNumber, const char *portName, int baud, int dataBits, int parity,
                    float stopBits) {
    return guarded([&] {
        if (link && *link && isDeviceNumber(*link))
            return findLink(*link) ? Status::ok : Status::badArgument; // a USB device has no line to be set
        std::shared_ptr<Session> session = link && *link ? findLink(*link) : nullptr;
        if (!link || (*link && !session))
            return Status::badArgument;
        if (!session) {
            session = std::make_shared<Session>();
            *link = addLink(session);
        }
        return session->configure(linkType(), {portNumber, portName ? portName : "", baud, dataBits, parity, stopBits});
    });
}

BYTE Interface_Open(HANDLE link) {
    // On USB DFU a word is a device's number, not a link.
    if (linkType() == linkUsbDfu && !findLink(link))
        return statusByte(Status::cantOpen);
    return withLink(link, [](Session &session) { return session.open(); });
}

BYTE Interface_Close(HANDLE link) {
    return withLink(link, [](Session &session) { return session.close(); });
}

int Interface_is_Open(HANDLE link) {
    const BYTE status = withOpenLink(link, true, [](Session &) { return Status::ok; });
    return status == statusByte(Status::ok) ? 1 : 0;
}

BYTE SetTimeOut(HANDLE link, unsigned int milliseconds) {
    return withLink(link,
                    [&](Session &session) { return session.setTimeout(std::chrono::milliseconds(milliseconds)); });
}

BYTE SetPaketSize(HANDLE link, BYTE bytes) {
    return withLink(link, [&](Session &session) {
        session.setPacketSize(bytes ? bytes : wire::maxPacket);
        return Status::ok;
    });
}

BYTE ZVBL_SetDtr(HANDLE link, BYTE level) {
    return withOpenLink(link, level <= 1, [&](Session &session) { return session.setLine(ControlLine::dtr, level); });
}

BYTE ZVBL_SetRts(HANDLE link, BYTE level) {
    return withOpenLink(link, level <= 1, [&](Session &session) { return session.setLine(ControlLine::rts, level); });
}

void TARGET_SetComIntType(BYTE interfaceType) {
    setLinkType(interfaceType);
}

BYTE ZVBL_GetZVDeviceList(signed char *count, unsigned short *vendorIds, unsigned short *productIds,
                          TDeviceInfo *info) {
    if (!count || !vendorIds || !productIds || !info)
        return statusByte(Status::badArgument);
    *count = 0;
    return guarded([&] {
        std::vector<UsbRow> rows;
        const Status status = listUsbDevices(rows);
        addDeviceLinks(rows.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            vendorIds[i] = rows[i].vendor;
            productIds[i] = rows[i].product;
            copyText(rows[i].text, info->deviceInfo[i], sizeof info->deviceInfo[i]);
        }
        *count = static_cast<signed char>(rows.size());
        return status;
    });
}
