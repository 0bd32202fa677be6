// One fault at every byte of a write and of a read, either way, on lines with and without their own pace:
// the data must be right in the end, no cell programmed twice, and the next answer not an old one.

#include <atomic>
#include <functional>
#include <mutex>

#include "tests/zvbl/LinkFixture.h"

namespace {

using Milliseconds = std::chrono::milliseconds;
// Long enough for a machine under load.
constexpr Milliseconds frameLimit(200);
constexpr unsigned timeoutMs = 300;
constexpr std::size_t memorySize = 64;

enum class Fault { none, lost, late, doubled, damaged, refusal };

struct Plan {
    Fault fault = Fault::none;
    bool onAnswers = true;    // else on what the host sends
    int position = -1;        // counted from the first byte after GET
    int paceMicroseconds = 0; // of each byte, either way
    bool hearsAtOnce = false; // the pace is only that of its own bytes
    bool spoiled = false;     // the last byte of the memory is not erased
};

// Knows GET, GET_VER_ROPS, READ and WRITE of 64 bytes of flash. Runs until its line is unplugged.
class FaultyChip {
public:
    FaultyChip(Pty &pty, const Plan &plan)
        : m_pty(pty), m_plan(plan), m_memory(memorySize, 0xFF), m_thread([this] { serve(); }) {
        if (plan.spoiled)
            m_memory.back() = 0;
    }
    ~FaultyChip() {
        m_stop = true;
        m_thread.join();
    }
    void arm() { m_armed = true; }
    int openingBytes() const { return m_openingBytes; }
    zvbl::Bytes memory() {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_memory;
    }

private:
    struct Silence {};

    // One byte from the host; within a command a long silence drops it.
    std::uint8_t next(bool inCommand) {
        const auto until = std::chrono::steady_clock::now() + frameLimit;
        while (m_in.empty()) {
            if (m_stop || (inCommand && std::chrono::steady_clock::now() > until))
                throw Silence{};
            for (const std::uint8_t byte : m_pty.read(2))
                receive(byte);
        }
        const std::uint8_t byte = m_in.front();
        m_in.erase(m_in.begin());
        if (!m_plan.hearsAtOnce)
            pace();
        return byte;
    }
    void receive(std::uint8_t byte) {
        const bool hit = m_armed && !m_plan.onAnswers && m_received++ == m_plan.position;
        if (hit && m_plan.fault == Fault::lost)
            return;
        m_in.push_back(hit && m_plan.fault == Fault::damaged ? byte ^ 0x04 : byte);
        if (hit && m_plan.fault == Fault::doubled)
            m_in.push_back(byte);
    }
    void pace() const {
        if (m_plan.paceMicroseconds)
            std::this_thread::sleep_for(std::chrono::microseconds(m_plan.paceMicroseconds));
    }
    void send(zvbl::Bytes bytes) {
        zvbl::Bytes out;
        for (std::uint8_t byte : bytes) {
            const bool hit = m_armed && m_plan.onAnswers && m_sent++ == m_plan.position;
            if (hit && m_plan.fault == Fault::lost)
                continue;
            if (hit && m_plan.fault == Fault::late)
                std::this_thread::sleep_for(Milliseconds(timeoutMs) + frameLimit / 2);
            if (hit && m_plan.fault == Fault::damaged)
                byte ^= 0x01;
            if (hit && m_plan.fault == Fault::refusal)
                byte = 0x1F;
            out.insert(out.end(), hit && m_plan.fault == Fault::doubled ? 2 : 1, byte);
            while (m_plan.paceMicroseconds && !out.empty()) {
                pace();
                m_pty.write({out.front()});
                out.erase(out.begin());
            }
        }
        m_pty.write(out);
    }
    bool refuse(bool when) {
        if (when)
            send({0x1F});
        return when;
    }
    bool address(std::size_t &offset) {
        std::uint8_t bytes[5], sum = 0;
        for (std::uint8_t &byte : bytes)
            sum ^= byte = next(true);
        offset = bytes[3];
        return !refuse(sum != 0 || bytes[0] != 0x08 || bytes[1] || bytes[2] || offset >= memorySize);
    }
    void serve() {
        while (!m_stop) {
            try {
                command();
            } catch (Silence) {
            }
        }
    }
    void command() {
        const std::uint8_t opcode = next(false);
        m_openingBytes += opcode == 0x7F;
        if (refuse(opcode == 0x7F) || refuse((opcode ^ next(true)) != 0xFF))
            return;
        if (opcode == 0x00) {
            zvbl::Bytes reply = {0x79, 31, 0x31};
            reply.resize(34, 0x11);
            reply.push_back(0x79);
            send(reply);
        } else if (opcode == 0x01) {
            send({0x79, 0x21, 0xFF, 0x12, 0x79});
        } else if (opcode == 0x11 || opcode == 0x31) {
            send({0x79});
            std::size_t offset = 0;
            if (address(offset)) {
                send({0x79});
                opcode == 0x11 ? read(offset) : write(offset);
            }
        } else {
            refuse(true);
        }
    }
    void read(std::size_t offset) {
        const std::size_t length = next(true) + 1U;
        if (refuse(((length - 1) ^ next(true)) != 0xFF || offset + length > memorySize))
            return;
        zvbl::Bytes reply{0x79};
        reply.insert(reply.end(), &m_memory[offset], &m_memory[offset] + length);
        send(reply);
    }
    void write(std::size_t offset) {
        zvbl::Bytes group{next(true)};
        const std::size_t length = group[0] + 1U;
        std::uint8_t sum = group[0];
        for (std::size_t i = 0; i <= length; ++i) {
            group.push_back(next(true));
            sum ^= group.back();
        }
        bool clean = sum == 0 && length % 4 == 0 && offset % 4 == 0 && offset + length <= memorySize;
        for (std::size_t i = 0; clean && i < length; ++i)
            clean = group[i + 1] == 0xFF || m_memory[offset + i] == 0xFF;
        if (refuse(!clean))
            return;
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            for (std::size_t i = 0; i < length; ++i)
                m_memory[offset + i] &= group[i + 1];
        }
        send({0x79});
    }

    Pty &m_pty;
    const Plan m_plan;
    zvbl::Bytes m_memory, m_in;
    std::mutex m_mutex;
    int m_received = 0, m_sent = 0;
    std::atomic<int> m_openingBytes{0};
    std::atomic<bool> m_armed{false}, m_stop{false};
    std::thread m_thread;
};

constexpr int rate = 57600; // 191 us a byte
constexpr int pace = 191;
constexpr int slowRate = 9600; // a machine under load wakes up later than the bytes above take
constexpr int slowPace = 1146;

zvbl::Bytes pattern() {
    zvbl::Bytes bytes(memorySize);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<std::uint8_t>(0x40 + 3 * i);
    return bytes;
}

// Writes, reads and asks for the version with one fault at the plan's position.
void run(const Plan &plan, bool faultInWrite, int expected) {
    SCOPED_TRACE("position " + std::to_string(plan.position) + (plan.paceMicroseconds ? ", paced" : ""));
    Pty pty;
    HANDLE link = nullptr;
    ASSERT_EQ(SetCOMSettings(&link, 0, pty.path().c_str(), rate, 8, 2, 1.0F), 0);
    ASSERT_EQ(Interface_Open(link), 0);
    ASSERT_EQ(SetTimeOut(link, timeoutMs), 0);
    FaultyChip chip(pty, plan);
    BYTE scratch = 0, version[3] = {};
    Commands commands;
    zvbl::Bytes data = pattern(), back(memorySize);
    ASSERT_EQ(SetPaketSize(link, memorySize / 2), 0);
    ASSERT_EQ(ZVBL_GET(link, &scratch, &commands), 0);
    if (faultInWrite)
        chip.arm();
    EXPECT_EQ(ZVBL_DNLOAD(link, 0x08000000, data.data(), memorySize, 0), expected);
    if (!faultInWrite)
        chip.arm();
    if (expected == 0) {
        EXPECT_EQ(ZVBL_VERIFY(link, 0x08000000, data.data(), memorySize, 0), 0);
        EXPECT_EQ(hex(chip.memory()), hex(data));
    }
    EXPECT_EQ(ZVBL_GET_VER_ROPS(link, &version[0], &version[1], &version[2]), 0);
    EXPECT_EQ(version[0], 0x21);
    EXPECT_EQ(version[2], 0x12);
    EXPECT_EQ(Interface_Close(link), 0);
}

// All positions of one fault at once: nearly all of their time is waiting.
void sweep(Fault fault, bool onAnswers, bool inWrite, int positions, const std::function<int(int)> &expected) {
    zvbl::setTiming({frameLimit, Milliseconds(8)});
    TARGET_SetComIntType(0);
    std::vector<std::thread> runs;
    for (int paced = 0; paced < 2; ++paced) {
        for (int position = 0; position < positions; ++position) {
            const Plan plan{fault, onAnswers, position, paced ? pace : 0};
            runs.emplace_back([=] { run(plan, inWrite, expected(position)); });
        }
    }
    for (std::thread &thread : runs)
        thread.join();
}

struct SlowLine : ::testing::Test {
    void SetUp() override {
        zvbl::setTiming({frameLimit, Milliseconds(8)});
        TARGET_SetComIntType(0);
        ASSERT_EQ(SetCOMSettings(&link, 0, pty.path().c_str(), slowRate, 8, 2, 1.0F), 0);
        ASSERT_EQ(Interface_Open(link), 0);
        ASSERT_EQ(SetTimeOut(link, timeoutMs), 0);
        ASSERT_EQ(SetPaketSize(link, memorySize / 2), 0);
    }
    void TearDown() override { Interface_Close(link); }
    int get() {
        BYTE scratch = 0;
        Commands commands;
        return ZVBL_GET(link, &scratch, &commands);
    }
    Pty pty;
    HANDLE link = nullptr;
    zvbl::Bytes data = pattern();
};

// If the answers were one too far on, the refusal of the last packet would be heard by nobody.
TEST_F(SlowLine, ADoubledAnswerDoesNotHideARefusal) {
    FaultyChip chip(pty, {Fault::doubled, true, 3, slowPace, false, true});
    ASSERT_EQ(get(), 0);
    chip.arm();
    EXPECT_NE(ZVBL_DNLOAD(link, 0x08000000, data.data(), memorySize, 0), 0);
}

TEST_F(SlowLine, AChipThatIsFasterThanItsLineIsSuspectedOnce) {
    FaultyChip chip(pty, {Fault::none, true, -1, slowPace, true});
    ASSERT_EQ(get(), 0);
    EXPECT_EQ(ZVBL_DNLOAD(link, 0x08000000, data.data(), memorySize, 0), 0);
    EXPECT_EQ(hex(chip.memory()), hex(data));
    EXPECT_EQ(chip.openingBytes(), 1);
}

int success(int) {
    return 0;
}

constexpr int answersOfTwoWrites = 6;
constexpr int bytesOfARead = 10; // two answers and data; what follows is alike

TEST(FaultSweepTest, AnswersOfAWriteLost) {
    sweep(Fault::lost, true, true, answersOfTwoWrites, success);
}
TEST(FaultSweepTest, AnswersOfAWriteLate) {
    sweep(Fault::late, true, true, answersOfTwoWrites, success);
}
TEST(FaultSweepTest, AnswersOfAWriteDoubled) {
    sweep(Fault::doubled, true, true, answersOfTwoWrites, success);
}
TEST(FaultSweepTest, AnswersOfAWriteDamaged) {
    sweep(Fault::damaged, true, true, answersOfTwoWrites, success);
}

// An ACK that turned into a NACK after the data can't be told from a refusal: an error, and no harm.
TEST(FaultSweepTest, AnswersOfAWriteTurnedIntoNack) {
    sweep(Fault::refusal, true, true, answersOfTwoWrites, [](int position) { return position % 3 == 2 ? 0x14 : 0; });
}

TEST(FaultSweepTest, BytesOfAReadLost) {
    sweep(Fault::lost, true, false, bytesOfARead, success);
}
TEST(FaultSweepTest, BytesOfAReadLate) {
    sweep(Fault::late, true, false, bytesOfARead, success);
}
TEST(FaultSweepTest, BytesOfAReadDoubled) {
    sweep(Fault::doubled, true, false, bytesOfARead, success);
}
TEST(FaultSweepTest, BytesOfAReadDamaged) {
    sweep(Fault::damaged, true, false, bytesOfARead, success);
}

constexpr int bytesToTheChip = 20; // opcode, address, count and the first data bytes of a write

TEST(FaultSweepTest, BytesToTheChipLost) {
    sweep(Fault::lost, false, true, bytesToTheChip, success);
}
TEST(FaultSweepTest, BytesToTheChipDoubled) {
    sweep(Fault::doubled, false, true, bytesToTheChip, success);
}
TEST(FaultSweepTest, BytesToTheChipDamaged) {
    sweep(Fault::damaged, false, true, bytesToTheChip, success);
}

} // namespace
