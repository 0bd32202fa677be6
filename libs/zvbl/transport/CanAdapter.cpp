#include "libs/zvbl/transport/CanAdapter.h"

#include <algorithm>
#include <thread>

#include "libs/zvbl/wire/Wire.h"

namespace zvbl {
namespace {

constexpr char carriageReturn = '\r';
constexpr int mostOnTheWay = 8; // frames
constexpr char bell = '\a';
constexpr auto answerLimit = std::chrono::milliseconds(500);
constexpr auto openingLimit = std::chrono::milliseconds(1000);
constexpr auto closingLimit = std::chrono::milliseconds(100);
constexpr auto firstAnswer = std::chrono::milliseconds(100); // most adapters say something to C
constexpr auto quiet = std::chrono::milliseconds(20);        // no line is under way after it
constexpr auto refusalPause = std::chrono::milliseconds(1);
constexpr std::size_t longestLine = 64;

struct RateRow {
    unsigned bitsPerSecond;
    const char *command;
};

constexpr RateRow rates[] = {
    {10000, "S0"},  {20000, "S1"},  {50000, "S2"},  {100000, "S3"},  {125000, "S4"},
    {250000, "S5"}, {500000, "S6"}, {800000, "S7"}, {1000000, "S8"},
};

struct StateRow {
    unsigned bit;
    const char *text;
};

constexpr StateRow stateRows[] = {
    {0, "its receive queue is full"},
    {1, "its transmit queue is full"},
    {2, "error warning"},
    {3, "it lost frames"},
    {5, "error passive"},
    {6, "arbitration lost"},
    {7, "bus error"},
};

int digit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

// The number in some digits of a line; -1: not all of them are digits.
int number(const std::string &line, std::size_t from, std::size_t digits) {
    int value = 0;
    for (std::size_t i = from; i < from + digits; ++i) {
        const int next = i < line.size() ? digit(line[i]) : -1;
        if (next < 0)
            return -1;
        value = value * 16 + next;
    }
    return value;
}

std::string lineOf(const CanFrame &frame) {
    static const char digits[] = "0123456789ABCDEF";
    std::string line = {'t', digits[frame.id >> 8 & 7], digits[frame.id >> 4 & 0xF], digits[frame.id & 0xF],
                        digits[frame.size]};
    for (std::size_t i = 0; i < frame.size; ++i)
        line += {digits[frame.data[i] >> 4], digits[frame.data[i] & 0xF]};
    return line + carriageReturn;
}

// False: it is no whole frame. A time stamp after the data is passed over.
bool isFrame(const std::string &line, CanFrame &frame) {
    const int id = number(line, 1, 3);
    const int size = number(line, 4, 1);
    if (id < 0 || id > 0x7FF || size < 0 || size > 8)
        return false;
    frame.id = static_cast<std::uint16_t>(id);
    frame.size = static_cast<std::uint8_t>(size);
    const std::size_t end = 5 + 2 * static_cast<std::size_t>(size);
    if (line.size() != end && line.size() != end + 4)
        return false;
    for (std::size_t i = 0; i < frame.size; ++i) {
        const int byte = number(line, 5 + 2 * i, 2);
        if (byte < 0)
            return false;
        frame.data[i] = static_cast<std::uint8_t>(byte);
    }
    return true;
}

LinkSettings adapterLine(const LinkSettings &settings) {
    LinkSettings line = settings;
    line.dataBits = 8;
    line.parity = 0;
    line.stopBits = 1.0F;
    return line;
}

} // namespace

CanAdapter::~CanAdapter() {
    if (!m_opened)
        return;
    try {
        Answer answer = Answer::none;
        m_unanswered = 0;
        const TimePoint bound = Clock::now() + closingLimit;
        while (hear(TimePoint{}) == Status::ok && Clock::now() < bound) { // what is old is no answer
        }
        // It is waited for, or the port would throw it away at its close; the device may be gone as well.
        [[maybe_unused]] const Status status = tell("C", answer, Clock::now() + closingLimit);
    } catch (...) {
        m_trace.remark("the channel stays open");
    }
}

Status CanAdapter::open(const LinkSettings &settings) {
    if (const Status status = m_port.open(adapterLine(settings)); status != Status::ok)
        return status;
    m_bitRate = wire::canStartSpeed;
    if (bringUp(Clock::now() + openingLimit) != Status::ok) {
        m_trace.remark("cannot open: no CAN adapter answers");
        return Status::cantOpen;
    }
    m_opened = true;
    Answer answer = Answer::none;
    return tell("V", answer, Clock::now() + answerLimit) == Status::gone ? Status::cantOpen
                                                                         : Status::ok; // for the trace
}

Status CanAdapter::reconfigure(const LinkSettings &settings) {
    return m_port.reconfigure(adapterLine(settings));
}

Status CanAdapter::setLine(ControlLine, bool) {
    m_trace.remark("a CAN bus has no control lines");
    return Status::gone;
}

Status CanAdapter::setBitRate(unsigned bitsPerSecond) {
    m_bitRate = bitsPerSecond;
    return bringUp(Clock::now() + openingLimit);
}

Duration CanAdapter::frameTime(std::size_t dataBytes) const {
    const auto characters = static_cast<Duration::rep>(6 + 2 * dataBytes);
    return CanBus::frameTime(dataBytes) + characters * m_port.characterTime();
}

// Brings the adapter, whatever it was doing, to an open channel at the rate, with nothing under way.
Status CanAdapter::bringUp(TimePoint deadline) {
    const auto row = std::find_if(std::begin(rates), std::end(rates),
                                  [this](const RateRow &rate) { return rate.bitsPerSecond == m_bitRate; });
    if (row == std::end(rates))
        return Status::badArgument;
    Status status = silence(deadline);
    if (status == Status::ok)
        status = insist(row->command, deadline);
    if (status == Status::ok)
        status = insist("O", deadline);
    m_countLost = status != Status::ok;
    return status;
}

// Ends a line that was begun, closes the channel, and forgets what comes.
Status CanAdapter::silence(TimePoint deadline) {
    m_unanswered = 0; // what it says from here on is about nothing of before
    Status status = write("\r\r\rC\r", deadline);
    if (status == Status::ok)
        status = hear(std::min<TimePoint>(deadline, Clock::now() + firstAnswer));
    while (status == Status::ok && Clock::now() < deadline)
        status = hear(Clock::now() + quiet);
    m_heard.clear();
    m_frames.clear();
    m_sendAgain = m_orderBroken = false;
    return status == Status::noAnswer ? Status::ok : status;
}

Status CanAdapter::insist(const std::string &command, TimePoint deadline) {
    Answer answer = Answer::none;
    const Status status = tell(command, answer, deadline);
    if (status != Status::ok || answer == Answer::yes)
        return status;
    m_trace.remark("the adapter " + std::string(answer == Answer::no ? "refuses " : "does not answer ") + command);
    return answer == Answer::no ? Status::gone : Status::noAnswer;
}

// One command that is no frame. No answer in time is an answer too.
Status CanAdapter::tell(const std::string &command, Answer &answer, TimePoint deadline) {
    m_asking = true;
    m_answer = Answer::none;
    m_text.clear();
    Status status = write(command + carriageReturn, deadline);
    while (status == Status::ok && m_answer == Answer::none)
        status = Clock::now() < deadline ? hear(deadline) : Status::noAnswer;
    m_asking = false;
    answer = m_answer;
    const std::string yes = m_text.empty() ? "yes" : m_text;
    m_trace.remark("adapter: " + command + " " + (answer == Answer::yes ? yes : answer == Answer::no ? "no" : "-"));
    return status == Status::noAnswer ? Status::ok : status;
}

// What the adapter itself says about its bus.
void CanAdapter::explain() {
    Answer answer = Answer::none;
    if (!m_trace.on() || m_unanswered > 0 || tell("F", answer, Clock::now() + closingLimit) != Status::ok ||
        m_text.size() < 3)
        return;
    const int state = number(m_text, 1, 2);
    for (const StateRow &row : stateRows)
        if (state > 0 && (state >> row.bit & 1))
            m_trace.remark(std::string("the adapter says: ") + row.text);
}

Status CanAdapter::write(const std::string &line, TimePoint deadline) {
    m_lastSent = Clock::now();
    return m_port.send(Bytes(line.begin(), line.end()), deadline);
}

Status CanAdapter::send(const CanFrame &frame, TimePoint deadline) {
    Status status = Status::ok;
    if (m_countLost)
        status = bringUp(std::min<TimePoint>(deadline, Clock::now() + openingLimit));
    if (status == Status::ok)
        status = awaitRoom(deadline);
    if (status == Status::ok)
        status = awaitBus(deadline);
    if (status != Status::ok)
        return status;
    m_busFree = std::max<TimePoint>(Clock::now(), m_busFree) + CanBus::frameTime(frame.size);
    m_lastLine = lineOf(frame);
    ++m_unanswered;
    return write(m_lastLine, deadline);
}

// Waits until the adapter has acknowledged enough of what it was given.
Status CanAdapter::awaitRoom(TimePoint deadline) {
    Status status = hear(TimePoint{});
    while ((status == Status::ok || status == Status::noAnswer) && m_unanswered >= m_window && !m_orderBroken) {
        status = Clock::now() < deadline ? hear(deadline) : Status::noAnswer;
        if (status == Status::noAnswer)
            return loseCount("the adapter does not take the frames");
    }
    if (m_orderBroken)
        return breakOrder();
    if (m_unanswered > 0 && Clock::now() - m_lastSent > answerLimit)
        return loseCount("an acknowledge of the adapter is lost");
    return status == Status::noAnswer ? Status::ok : status;
}

// Many adapters acknowledge a frame when they have taken it, long before the bus has, and a serial line can
// be faster than the bus: what they hold is kept well below the sixteen frames that small ones have room for.
Status CanAdapter::awaitBus(TimePoint deadline) {
    const TimePoint room = m_busFree - mostOnTheWay * CanBus::frameTime(8);
    Status status = Status::ok;
    while ((status == Status::ok || status == Status::noAnswer) && !m_orderBroken && Clock::now() < room) {
        if (Clock::now() >= deadline)
            return Status::noAnswer;
        status = hear(std::min(room, deadline));
    }
    if (m_orderBroken)
        return breakOrder();
    return status == Status::noAnswer ? Status::ok : status;
}

Status CanAdapter::loseCount(const std::string &why) {
    m_trace.remark(why);
    m_countLost = true;
    return Status::noAnswer;
}

// From here on one frame at a time, which can be sent again.
Status CanAdapter::breakOrder() {
    m_orderBroken = false;
    m_window = 1;
    return loseCount("the adapter refused a frame within others");
}

Status CanAdapter::receive(CanFrame &frame, TimePoint deadline) {
    const TimePoint bound = std::max<TimePoint>(deadline, Clock::now() + quiet); // of bytes that are no frame
    while (m_frames.empty()) {
        if (m_orderBroken)
            return breakOrder();
        if (const Status status = hear(deadline); status != Status::ok)
            return status;
        if (m_frames.empty() && Clock::now() >= bound)
            return Status::noAnswer;
    }
    frame = m_frames.front();
    m_frames.pop_front();
    m_busFree = std::min<TimePoint>(m_busFree, Clock::now()); // the chip has all: the longest times don't pile up
    return Status::ok;
}

// Hears something, and takes the lines that are complete.
Status CanAdapter::hear(TimePoint deadline) {
    Bytes bytes;
    if (const Status status = m_port.receive(bytes, deadline); status != Status::ok)
        return status;
    for (const std::uint8_t byte : bytes) {
        const char c = static_cast<char>(byte);
        if (c == bell) {
            m_heard.clear();
            takeRefusal();
        } else if (c == carriageReturn) {
            takeLine(m_heard);
            m_heard.clear();
        } else if (m_heard.size() < longestLine) {
            m_heard += c;
        }
    }
    if (!m_sendAgain)
        return Status::ok;
    m_sendAgain = false;
    std::this_thread::sleep_for(refusalPause);
    return write(m_lastLine, Clock::now() + answerLimit);
}

// A frame that nothing has followed yet can be sent once more in its place: the queue was full.
void CanAdapter::takeRefusal() {
    if (m_asking)
        m_answer = Answer::no;
    else if (m_unanswered == 1)
        m_sendAgain = true;
    else if (m_unanswered > 0)
        m_orderBroken = true;
}

void CanAdapter::takeLine(const std::string &line) {
    CanFrame frame;
    if (!line.empty() && line.front() == 't') {
        if (!isFrame(line, frame))
            m_trace.discarded("not a frame: " + line);
        else if ((frame.id & 0x700) == wire::canFromChip)
            m_frames.push_back(frame);
    } else if (m_asking) {
        m_answer = Answer::yes;
        m_text = line;
    } else if ((line.empty() || line == "z" || line == "Z") && m_unanswered > 0) {
        --m_unanswered;
    }
}

} // namespace zvbl
