// What `--fault` injects.

#include "sim/program/FaultOption.h"
#include "tests/sim/Vectors.h"

namespace sim {
namespace {

struct FaultCase {
    const char *name;
    std::vector<std::string> faults;
    const char *conversation;
};

void PrintTo(const FaultCase &fault, std::ostream *out) {
    *out << fault.name;
}

class InjectedFault : public ::testing::TestWithParam<FaultCase> {};

TEST_P(InjectedFault, happensOnce) {
    Rig rig("ZV32F403A_1024K", GetParam().faults);
    EXPECT_EQ(rig.play(GetParam().conversation), "");
}

const FaultCase cases[] = {
    {"nack_behind_the_opcode", {"nack@2"}, SYNC R"(
        H: 02 FD
        C: 79 04 03 47 70 05 07 79
        H: 02 FD
        C: 1F
        H: 02 FD
        C: 79 04 03 47 70 05 07 79
    )"},
    {"nack_counted_by_opcode", {"nack@2:11"}, SYNC READS("08 00 00 00 08", "FF FF FF FF") R"(
        H: 02 FD
        C: 79 04 03 47 70 05 07 79
        H: 11 EE
        C: 1F
    )" READS("08 00 00 00 08", "FF FF FF FF")},
    {"nack_behind_the_address_of_any_opcode", {"nack@1:any:1"}, SYNC R"(
        H: 31 CE
        C: 79
        H: 08 00 00 00 08
        C: 1F
    )" WRITE_WORD("08 00 00 00 08")},
    {"nack_behind_the_data_writes_nothing", {"nack@1:31:2"}, SYNC R"(
        H: 31 CE
        C: 79
        H: 08 00 00 00 08
        C: 79
        H: 03 11 22 33 44 47
        C: 1F
    )" READS("08 00 00 00 08", "FF FF FF FF")},
    {"nack_at_the_second_answer_of_protect", {"nack@1:82:1"}, SYNC R"(
        H: 82 7D
        C: 79 1F
    )" READS("08 00 00 00 08", "FF FF FF FF")},
    {"nack_at_the_last_answer_of_user_data", {"nack@1:E2:3"}, SYNC R"(
        H: E2 1D
        C: 79
        H: 1F FF F8 00 18
        C: 79
        H: 00 17 00 FF*23 E8
        C: 79 1F
    )" READS("1F FF F8 00 18", "A5 5A FF 00")},
    {"silence_until_a_reset", {"silence@2"}, SYNC R"(
        H: 02 FD
        C: 79 04 03 47 70 05 07 79
        H: 02 FD
        C: -
        wait 1000
        H: 7F
        C: -
        button
    )" AFTER_RESET R"(
        H: 02 FD
        C: 79 04 03 47 70 05 07 79
    )"},
    {"lost_byte_of_the_host", {"rx-lost@3"}, SYNC R"(
        # the complement never arrives, so the next byte takes its place
        H: 00 FF
        C: -
        H: 7F
        C: 1F
    )"},
    {"lost_byte_of_the_chip", {"tx-lost@3"}, SYNC R"(
        H: 02 FD
        C: 79 03 47 70 05 07 79
    )"},
    {"doubled_byte_of_the_host", {"rx-double@1"}, R"(
        H: 7F
        C: 79 1F
    )"},
    {"doubled_byte_of_the_chip", {"tx-double@2"}, SYNC R"(
        H: 02 FD
        C: 79 79 04 03 47 70 05 07 79
    )"},
    {"damaged_byte_of_the_host", {"rx-damage@3:01"}, SYNC R"(
        H: 02 FD
        C: 1F
    )"},
    {"damaged_byte_of_the_chip", {"tx-damage@1:FF", "tx-damage@2"}, R"(
        H: 7F
        C: 86
        H: 02 FD
        C: 69 04 03 47 70 05 07 79
    )"},
    {"late_byte_of_the_host_within_the_frame_limit", {"rx-late@3:500"}, SYNC R"(
        H: 02 FD
        C: 79 04 03 47 70 05 07 79
    )"},
    {"late_byte_of_the_host_beyond_it", {"rx-late@3:501"}, SYNC R"(
        # the late byte opens a command of its own, FD, which is unknown
        H: 02 FD
        C: -
        H: 02
        C: 1F
    )"},
    {"late_answer_moves_the_frame_limit", {"tx-late@2:2000"}, SYNC R"(
        H: 11 EE
        C: 79
        H: 08 00 00 00 08
        C: 79
        H: 00 FF
        C: 79 FF
    )"},
};
INSTANTIATE_TEST_SUITE_P(Wire, InjectedFault, ::testing::ValuesIn(cases),
                         [](const auto &fault) { return std::string(fault.param.name); });

TEST(Fault, aLateByteHoldsBackAllThatFollow) {
    Rig rig("ZV32F403A_1024K", {"tx-late@3:40"});
    rig.send({0x7F, 0x02, 0xFD});
    const std::vector<TimedByte> bytes = rig.received();
    ASSERT_EQ(bytes.size(), 9U);
    EXPECT_EQ(bytes[1].at, rig.now);
    for (std::size_t i = 2; i < bytes.size(); ++i)
        EXPECT_EQ(bytes[i].at, rig.now + 40 * millisecond) << i;
}

TEST(Fault, hangupTakesTheByteAndAllAfterIt) {
    Rig rig("ZV32F403A_1024K", {"hangup@3:250"});
    EXPECT_EQ(rig.play("H: 7F 02 FD 02 FD\nC: 79"), "");
    ASSERT_TRUE(rig.line.hangup());
    EXPECT_EQ(rig.line.hangup()->replugMs, 250U);
    rig.bootloader.losePower(rig.now);
    rig.line.replug();
    EXPECT_EQ(rig.play(AFTER_RESET "H: 02 FD\nC: 79 04 03 47 70 05 07 79"), "");
}

TEST(Fault, hangupInsideAnAnswer) {
    Rig rig("ZV32F403A_1024K", {"tx-hangup@4"});
    EXPECT_EQ(rig.play(SYNC "H: 02 FD\nC: 79 04\nH: 7F\nC: -"), "");
    ASSERT_TRUE(rig.line.hangup());
    EXPECT_FALSE(rig.line.hangup()->replugMs);
}

// ---- power cuts

constexpr char writeOptions[] = SYNC R"(
    H: E2 1D
    C: 79
    H: 1F FF F8 00 18
    C: 79
    H: 00 17 A5 12 34 56 FE FF FF FF 00 FF*15 3C
    C: 79
)";

TEST(PowerCut, beforeTheFirstOptionByteTheChipIsProtectedAndCanBeRepaired) {
    Rig rig("ZV32F403A_1024K", {"powercut@0:options"});
    EXPECT_EQ(rig.play(std::string(writeOptions) + AFTER_RESET R"(
        H: 11 EE
        C: 1F
        H: E1 1E
        C: 1F
        H: 92 6D
        C: 79 79
    )" AFTER_RESET READS("1F FF F8 00 18", "A5 5A FF 00")),
              "");
}

TEST(PowerCut, behindTheThirdPairTheRestReadsFF) {
    Rig rig("ZV32F403A_1024K", {"powercut@3:options"});
    EXPECT_EQ(rig.play(std::string(writeOptions) + AFTER_RESET R"(
        H: E1 1E
        C: 79
        H: 1F FF F8 00 18
        C: 79
        H: 00 08 08
        C: 79 A5 12 34 FF FF FF FF FF FF 83
        # in memory nothing stands there, not even complements
        H: 11 EE
        C: 79
        H: 1F FF F8 00 18
        C: 79
        H: 07 F8
        C: 79 A5 5A 12 ED 34 CB FF FF
        # sector 0 is not protected: its bit was never written
        H: 44 BB
        C: 79
        H: 00 00 00 00 00
        C: 79
    )"),
              "");
}

TEST(PowerCut, behindTheLastPairOnlyTheAnswerIsMissing) {
    Rig rig("ZV32F403A_1024K", {"powercut@24:options"});
    EXPECT_EQ(rig.play(std::string(writeOptions) + AFTER_RESET R"(
        H: E1 1E
        C: 79
        H: 1F FF F8 00 18
        C: 79
        H: 00 17 17
        C: 79 A5 12 34 56 FE FF FF FF 00 FF*15 2B
    )"),
              "");
}

TEST(PowerCut, insideAPacket) {
    // FF is not programmed, so it is no step.
    Rig rig("ZV32F403A_1024K", {"powercut@7:flash"});
    EXPECT_EQ(rig.play(SYNC WRITE_WORD("08 00 00 00 08") R"(
        H: 31 CE
        C: 79
        H: 08 00 00 04 0C
        C: 79
        H: 07 05 FF 06 07 08 09 0A 0B FC
        C: -
    )" AFTER_RESET R"(
        H: 11 EE
        C: 79
        H: 08 00 00 00 08
        C: 79
        H: 0B F4
        C: 79 01 02 03 04 05 FF 06 07 FF FF FF FF
    )"),
              "");
}

TEST(PowerCut, countsBothKindsWithoutAName) {
    Rig rig("ZV32F403A_1024K", {"powercut@5"});
    EXPECT_EQ(rig.play(SYNC WRITE_WORD("08 00 00 00 08") R"(
        H: 82 7D
        C: 79
    )" AFTER_RESET R"(
        # the first pair, access protection, was written
        H: 11 EE
        C: 1F
    )"),
              "");
}

TEST(PowerCut, ramForgets) {
    Rig rig("ZV32F403A_1024K", {"powercut@1:flash"});
    EXPECT_EQ(rig.play(SYNC R"(
        H: 31 CE
        C: 79
        H: 20 00 00 00 20
        C: 79
        H: 01 12 34 27
        C: 79
        H: D4 2B
        C: 79
    )" AFTER_RESET R"(
        H: 11 EE
        C: 79
        H: 20 00 00 00 20
        C: 79
        H: 01 FE
        C: 79 12 34
        H: 31 CE
        C: 79
        H: 08 00 00 00 08
        C: 79
        H: 03 11 22 33 44 47
        C: -
    )" AFTER_RESET R"(
        H: 11 EE
        C: 79
        H: 20 00 00 00 20
        C: 79
        H: 01 FE
        C: 79 00 00
    )"),
              "");
}

// ---- what is no fault

TEST(FaultSpec, badOnesAreRefusedWithAReason) {
    for (const char *spec : {"",
                             "nack",
                             "nack@",
                             "nack@0",
                             "nack@x",
                             "nack@1:",
                             "nack@1:GG",
                             "nack@1:11:x",
                             "nack@1:11:1:1",
                             "rx-late@1",
                             "rx-late@1:",
                             "tx-lost@1:5",
                             "tx-damage@1:0",
                             "tx-damage@1:100",
                             "silence@1:2",
                             "powercut@-1",
                             "powercut@1:ram",
                             "powercut@0:erase",
                             "hangup@1:2:3",
                             "rx-lost@99999999999999999999",
                             "boom@1"}) {
        Faults faults;
        std::string error;
        EXPECT_FALSE(addFault(faults, spec, error)) << spec;
        EXPECT_NE(error.find(std::string("\"") + spec + "\""), std::string::npos) << error;
    }
}

TEST(Fault, tellsWhenItHappens) {
    Rig rig("ZV32F403A_1024K", {"nack@2", "tx-lost@3", "nack@9"});
    std::vector<std::string> happened;
    rig.faults.tell([&](const std::string &spec) { happened.push_back(spec); });
    rig.send({0x7F, 0x02, 0xFD, 0x02, 0xFD});
    EXPECT_EQ(happened, (std::vector<std::string>{"tx-lost@3", "nack@2"}));
}

TEST(Log, refusalsTellTheirReason) {
    Rig rig("ZV32F403A_1024K");
    EXPECT_EQ(rig.play(SYNC WRITE_WORD("08 00 00 10 18") R"(
        H: 31 CE
        C: 79
        H: 08 00 00 10 18
        C: 79
        H: 03 01 02 03 04 07
        C: 1F
        H: 03 FC
        C: 1F
    )"),
              "");
    EXPECT_NE(rig.told.str().find("refused: WRITE 08000010: cell not erased\n"), std::string::npos) << rig.told.str();
    EXPECT_NE(rig.told.str().find("refused: opcode 03: unknown command\n"), std::string::npos) << rig.told.str();
}

} // namespace
} // namespace sim
