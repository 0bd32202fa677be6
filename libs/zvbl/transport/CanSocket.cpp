#include "libs/zvbl/transport/CanSocket.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <linux/can/error.h>
#include <linux/can/raw.h>
#include <net/if.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include "libs/zvbl/Polling.h"
#include "libs/zvbl/Text.h"
#include "libs/zvbl/transport/CanNetlink.h"
#include "libs/zvbl/wire/Wire.h"

namespace zvbl {
namespace {

constexpr auto longestPoll = std::chrono::hours(1);
constexpr auto errorPatience = std::chrono::milliseconds(20); // how long a look without waiting reads errors

// Answers of chips: 100 to 1FF, 11 bits, with data.
constexpr can_filter chipsOnly = {wire::canFromChip, 0x700 | CAN_EFF_FLAG | CAN_RTR_FLAG};
constexpr can_err_mask_t errorsOfUse =
    CAN_ERR_TX_TIMEOUT | CAN_ERR_LOSTARB | CAN_ERR_CRTL | CAN_ERR_ACK | CAN_ERR_BUSOFF | CAN_ERR_RESTARTED;

// As small as it gets, six frames or so: the socket is full before the interface's queue of ten overruns.
constexpr int sendBuffer = 0;

struct ErrorRow {
    canid_t flag; // of the identifier
    __u8 detail;  // of the controller's state, in data[1]; 0: none
    const char *text;
};

// None of these ends a link: the controller goes on by itself.
constexpr ErrorRow errorRows[] = {
    {CAN_ERR_TX_TIMEOUT, 0, "the controller could not send in time"},
    {CAN_ERR_LOSTARB, 0, "arbitration lost"},
    {CAN_ERR_ACK, 0, "nobody acknowledges"},
    {CAN_ERR_RESTARTED, 0, "the controller was restarted"},
    {CAN_ERR_CRTL, CAN_ERR_CRTL_RX_OVERFLOW | CAN_ERR_CRTL_TX_OVERFLOW, "the controller lost frames"},
    {CAN_ERR_CRTL, CAN_ERR_CRTL_RX_WARNING | CAN_ERR_CRTL_TX_WARNING, "error warning"},
    {CAN_ERR_CRTL, CAN_ERR_CRTL_RX_PASSIVE | CAN_ERR_CRTL_TX_PASSIVE, "error passive"},
    {CAN_ERR_CRTL, CAN_ERR_CRTL_ACTIVE, "error active again"},
};

std::string describe(unsigned bitRate) {
    return bitRate ? std::to_string(bitRate) + " bit/s" : "a bus without a bit rate";
}

can_frame toKernel(const CanFrame &frame) {
    can_frame out{};
    out.can_id = frame.id;
    out.can_dlc = frame.size;
    std::copy(frame.data.begin(), frame.data.end(), out.data);
    return out;
}

CanFrame fromKernel(const can_frame &frame) {
    CanFrame in;
    in.id = static_cast<std::uint16_t>(frame.can_id & CAN_SFF_MASK);
    in.size = std::min<std::uint8_t>(frame.can_dlc, CAN_MAX_DLEN);
    std::copy(frame.data, frame.data + in.size, in.data.begin());
    return in;
}

bool isUp(int fd, int index) {
    ifreq interface {};
    return if_indextoname(static_cast<unsigned>(index), interface.ifr_name) != nullptr &&
           ioctl(fd, SIOCGIFFLAGS, &interface) == 0 && (interface.ifr_flags & IFF_UP) != 0;
}

} // namespace

CanSocket::~CanSocket() {
    if (!m_opened)
        return;
    closeSocket();
    if (m_bitRate != m_foundRate)
        setCanBitRate(m_index, m_foundRate);
    m_trace.remark("closed");
}

bool CanSocket::isInterface(const std::string &name) {
    return if_nametoindex(name.c_str()) != 0;
}

Status CanSocket::open(const LinkSettings &settings) {
    m_index = static_cast<int>(if_nametoindex(settings.portName.c_str()));
    const int error = m_index == 0 ? ENODEV : bindSocket();
    if (error != 0) {
        m_trace.remark("cannot open: " + errorText(error));
        return Status::cantOpen;
    }
    readCanBitRate(m_index, m_bitRate); // without an answer it is a bus whose rate nobody can tell
    m_foundRate = m_bitRate;
    m_opened = true;
    m_trace.remark("open, " + describe(m_bitRate));
    return Status::ok;
}

// Makes a socket of the interface, with nothing in it. An errno, 0 for done.
int CanSocket::bindSocket() {
    m_fd = socket(AF_CAN, SOCK_RAW | SOCK_NONBLOCK | SOCK_CLOEXEC, CAN_RAW);
    if (m_fd < 0)
        return errno;
    setsockopt(m_fd, SOL_SOCKET, SO_SNDBUF, &sendBuffer, sizeof sendBuffer);
    sockaddr_can address{};
    address.can_family = AF_CAN;
    address.can_ifindex = m_index;
    // Filters first, so that nothing else gets in. A bound socket of an interface that is down hears nothing.
    int error = 0;
    if (setsockopt(m_fd, SOL_CAN_RAW, CAN_RAW_FILTER, &chipsOnly, sizeof chipsOnly) != 0 ||
        setsockopt(m_fd, SOL_CAN_RAW, CAN_RAW_ERR_FILTER, &errorsOfUse, sizeof errorsOfUse) != 0 ||
        bind(m_fd, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0)
        error = errno;
    else if (!isUp(m_fd, m_index))
        error = ENETDOWN;
    if (error != 0)
        closeSocket();
    return error;
}

void CanSocket::closeSocket() {
    if (m_fd >= 0)
        ::close(m_fd);
    m_fd = -1;
}

Status CanSocket::setLine(ControlLine, bool) {
    m_trace.remark("a CAN bus has no control lines");
    return Status::gone;
}

// A full queue is no event that could be waited for, so it is looked at again and again.
Status CanSocket::send(const CanFrame &frame, TimePoint deadline) {
    const can_frame out = toKernel(frame);
    Polling polling(deadline);
    while (!m_gone) {
        if (::write(m_fd, &out, sizeof out) == sizeof out)
            return Status::ok;
        if (errno != ENOBUFS && errno != EAGAIN && errno != EINTR)
            return fail("cannot send: " + errorText(errno));
        if (!polling.again()) {
            m_trace.remark("cannot send in time: nobody takes the frames off the queue");
            return Status::noAnswer;
        }
    }
    return Status::gone;
}

Status CanSocket::receive(CanFrame &frame, TimePoint deadline) {
    const TimePoint bound = std::max<TimePoint>(deadline, Clock::now() + errorPatience);
    while (!m_gone) {
        can_frame in{};
        const ssize_t count = ::recv(m_fd, &in, sizeof in, 0);
        Status status = Status::ok;
        if (count == static_cast<ssize_t>(sizeof in) && !(in.can_id & CAN_ERR_FLAG)) {
            frame = fromKernel(in);
            return Status::ok;
        }
        if (count == static_cast<ssize_t>(sizeof in))
            status = Clock::now() < bound ? judge(in) : Status::noAnswer;
        else if (count < 0 && errno == EAGAIN)
            status = await(deadline);
        else if (count < 0 && errno != EINTR)
            status = fail("the bus is gone: " + errorText(errno));
        if (status != Status::ok)
            return status;
    }
    return Status::gone;
}

Status CanSocket::await(TimePoint deadline) {
    const Duration left = deadline - Clock::now();
    if (left <= Duration::zero())
        return Status::noAnswer;
    const Duration wait = std::min<Duration>(left, longestPoll);
    const timespec time{wait.count() / 1000000000, wait.count() % 1000000000};
    pollfd port{m_fd, POLLIN, 0};
    if (ppoll(&port, 1, &time, nullptr) < 0 && errno != EINTR)
        return fail("cannot wait");
    return Status::ok; // the next look tells
}

// Ends the link at bus-off. All else the controller copes with, and frames that are missing show.
Status CanSocket::judge(const can_frame &error) {
    if (error.can_id & CAN_ERR_BUSOFF)
        return fail("bus-off");
    for (const ErrorRow &row : errorRows)
        if ((error.can_id & row.flag) && (row.detail == 0 || (error.data[1] & row.detail)))
            m_trace.remark(row.text);
    return Status::ok;
}

Status CanSocket::mayChangeBitRate() {
    const int error = mayChangeCanInterface(m_index);
    if (error == 0)
        return Status::ok;
    m_trace.remark("the bus stays at " + describe(m_bitRate) + ": " + errorText(error));
    return Status::gone;
}

// A new socket after it: what was under way is lost, and what the old one has to tell of it is of no use.
Status CanSocket::setBitRate(unsigned bitsPerSecond) {
    const int error = setCanBitRate(m_index, bitsPerSecond);
    if (error != 0)
        return fail("the bus does not take " + describe(bitsPerSecond) + ": " + errorText(error));
    closeSocket();
    m_bitRate = bitsPerSecond;
    if (const int failure = bindSocket(); failure != 0)
        return fail("cannot open again: " + errorText(failure));
    m_gone = false;
    m_trace.remark("the bus is at " + describe(bitsPerSecond));
    return Status::ok;
}

Status CanSocket::fail(const std::string &what) {
    m_trace.remark(what);
    m_gone = true;
    return Status::gone;
}

} // namespace zvbl
