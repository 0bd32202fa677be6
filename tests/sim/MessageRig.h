#pragma once

#include <gtest/gtest.h>

#include "sim/links/I2cProtocol.h"
#include "sim/links/SpiProtocol.h"
#include "tests/sim/Rig.h"

namespace sim {

// A chip on a link that travels in messages, with a clock that only the test moves.
class MessageRig {
public:
    virtual ~MessageRig() = default;

    // Plays a conversation, one line each: those of the link, and
    //   wait MS    time goes by
    //   button     the reset button
    //   # text     a remark
    // Bytes are hexadecimal; FF*12 is twelve times FF. Returns what went wrong, with its line; empty for nothing.
    std::string play(const std::string &conversation);

    std::ostringstream told; // the log
    Faults faults;
    Log log{told, true};
    Chip chip;
    Bootloader bootloader;
    Nanoseconds now = second;

protected:
    MessageRig(const std::string &chipName, const std::vector<std::string> &faultSpecs, FlashTime flashTime,
               const CommandTable *variants);

    // A line of the link. Returns what happened in the place of what it says; empty for nothing else.
    virtual std::string playLine(const std::string &word, const std::string &rest) = 0;
    virtual void button() = 0;
};

// On a bus:
//   W: bytes   a write transfer, acknowledged        W! bytes   one that is not
//   R: bytes   a read transfer that brings these     R! COUNT   one that is not acknowledged
class I2cRig : public MessageRig {
public:
    explicit I2cRig(const std::string &chipName, const std::vector<std::string> &faultSpecs = {},
                    FlashTime flashTime = {})
        : MessageRig(chipName, faultSpecs, flashTime, &i2cCommands()) {}

    I2cProtocol protocol{bootloader, faults};

private:
    std::string playLine(const std::string &word, const std::string &rest) override;
    void button() override { protocol.reset(now); }
};

// Selected for each line:
//   H: bytes      the host sends them, and the chip sends nothing but 00
//   F: bytes      the host sends as many 00, and the chip sends these
//   X: out = in   both, byte by byte
class SpiRig : public MessageRig {
public:
    explicit SpiRig(const std::string &chipName, const std::vector<std::string> &faultSpecs = {},
                    FlashTime flashTime = {})
        : MessageRig(chipName, faultSpecs, flashTime, nullptr) {}

    Bytes message(const Bytes &out);

    SpiProtocol protocol{bootloader, faults, log};

private:
    std::string playLine(const std::string &word, const std::string &rest) override;
    void button() override { protocol.reset(now); }
};

// A conversation with a factory-new chip.
struct MessageCase {
    const char *name;
    const char *chip;
    std::vector<std::string> faults;
    FlashTime flashTime;
    const char *conversation;
};

inline void PrintTo(const MessageCase &one, std::ostream *out) {
    *out << one.name;
}

inline std::string nameOfCase(const ::testing::TestParamInfo<MessageCase> &one) {
    return one.param.name;
}

} // namespace sim

// One test for each row of a table of cases.
#define MESSAGE_CASES(SUITE, RIG, TABLE)                                        \
    class SUITE : public ::testing::TestWithParam<sim::MessageCase> {};         \
    TEST_P(SUITE, goesByteForByte) {                                            \
        sim::RIG rig(GetParam().chip, GetParam().faults, GetParam().flashTime); \
        EXPECT_EQ(rig.play(GetParam().conversation), "");                       \
    }                                                                           \
    INSTANTIATE_TEST_SUITE_P(Wire, SUITE, ::testing::ValuesIn(TABLE), sim::nameOfCase)
