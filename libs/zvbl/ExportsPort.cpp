// The C interface: port and link.

#include "libs/zvbl/Border.h"
#include "link/ZVBLLIB.h"

using namespace zvbl;

BYTE SetCOMSettings(HANDLE *link, int portNumber, const char *portName, int baud, int dataBits, int parity,
                    float stopBits) {
    return guarded([&] {
        std::shared_ptr<Session> session = link && *link ? findLink(*link) : nullptr;
        if (!link || (*link && !session))
            return Status::badArgument;
        if (!session) {
            session = std::make_shared<Session>();
            *link = addLink(session);
        }
        return session->configure(linkType(),
                                  {portNumber, portName ? portName : "", baud, dataBits, parity, stopBits});
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
    return withLink(link, [&](Session &session) { return session.setTimeout(std::chrono::milliseconds(milliseconds)); });
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
    return statusByte(Status::cantOpen); // there is no row for USB DFU in the table of links
}
