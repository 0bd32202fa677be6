// The file that keeps a chip's memory.

#include "sim/program/State.h"

#include <cstdlib>
#include <fstream>
#include <iterator>

#include <unistd.h>

#include "tests/sim/Vectors.h"

namespace sim {
namespace {

class State : public ::testing::Test {
protected:
    State() {
        char name[] = "/tmp/zv32-state-XXXXXX";
        directory = mkdtemp(name);
        path = directory + "/chip";
    }
    ~State() override {
        std::remove(path.c_str());
        rmdir(directory.c_str());
    }

    std::string content() const {
        std::ifstream in(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
    void setContent(const std::string &bytes) const { std::ofstream(path, std::ios::binary) << bytes; }

    std::string directory;
    std::string path;
    std::string error;
};

constexpr char filling[] = SYNC WRITE_WORD("08 00 00 00 08") WRITE_WORD("08 0F FF FC 04") R"(
        H: B3 4C
        C: 79
        H: 90 00 10 00 00 00 00 00 00 80
        C: 79
    )" WRITE_WORD("08 40 00 00 48") WRITE_WORD("1F FF E4 00 04") R"(
        H: 31 CE
        C: 79
        H: 1F FF F5 00 15
        C: 79
        H: 00 00 00
        C: 79
        H: 63 9C
        C: 79
        H: 00 00 00
        C: 79
    )" AFTER_RESET R"(
        H: D1 2E
        C: 79
        H: 12 34 56 78 00 02 00 04 00 05 0B
        C: 79
    )";

constexpr char lookingBack[] = SYNC READS("08 00 00 00 08", "01 02 03 04") READS("08 0F FF FC 04", "01 02 03 04")
    READS("1F FF E4 00 04", "01 02 03 04") R"(
        H: D3 2C
        C: 79 01 00 02 00 04 00 05 02
        # protection holds from power on
        H: 44 BB
        C: 79
        H: 00 00 00 00 00
        C: 1F
        # the OTP block is locked
        H: 31 CE
        C: 79
        H: 1F FF E4 10 14
        C: 79
        H: 00 66 66
        C: 1F
        # SPIM kept its content, but has to be enabled again
        H: 11 EE
        C: 79
        H: 08 40 00 00 48
        C: 1F
        H: B3 4C
        C: 79
        H: 90 00 10 00 00 00 00 00 00 80
        C: 79
    )" READS("08 40 00 00 48", "01 02 03 04");

TEST_F(State, everythingThatSurvivesWithoutPowerComesBack) {
    Rig before("ZV32F457_1024K");
    ASSERT_EQ(before.play(filling), "");
    StateFile saved(path, before.chip);
    ASSERT_TRUE(saved.save(error)) << error;
    EXPECT_LT(content().size(), 2048U); // runs of FF are left out

    Rig after("ZV32F457_1024K");
    StateFile loaded(path, after.chip);
    ASSERT_TRUE(loaded.load(error)) << error;
    EXPECT_EQ(after.play(lookingBack), "");
}

TEST_F(State, aFullFlashComesBackByteForByte) {
    Rig before("ZV32F421_64K");
    Bytes noise;
    for (std::uint32_t word = 1; noise.size() < 256; word = word * 1664525 + 1013904223)
        noise.push_back(static_cast<std::uint8_t>(word >> 24));
    for (std::uint32_t at = 0; at < 0x10000; at += 0x100) {
        std::rotate(noise.begin(), noise.begin() + 1, noise.end());
        // Stretches of FF of every length, to try where runs end.
        Bytes packet = noise;
        std::fill_n(packet.begin(), at >> 8, std::uint8_t{0xFF});
        ASSERT_TRUE(before.chip.write(0x08000000 + at, packet).done());
    }
    StateFile saved(path, before.chip);
    ASSERT_TRUE(saved.save(error)) << error;
    Rig after("ZV32F421_64K");
    StateFile loaded(path, after.chip);
    ASSERT_TRUE(loaded.load(error)) << error;
    Bytes first;
    Bytes second;
    ASSERT_TRUE(before.chip.read(0x08000000, 0x10000, first).done());
    ASSERT_TRUE(after.chip.read(0x08000000, 0x10000, second).done());
    EXPECT_TRUE(first == second);
}

// Of a word that begins behind a run of FF, each bit counts.
TEST_F(State, oneBitBehindARunOfBlankCellsComesBack) {
    Rig before("ZV32F421_64K");
    Bytes cells(64 * 64, 0xFF);
    for (std::size_t bit = 0; bit < 64; ++bit)
        cells[bit * 64 + bit / 8] = static_cast<std::uint8_t>(~(1U << bit % 8));
    for (std::size_t at = 0; at < cells.size(); at += 256) {
        const auto from = cells.begin() + static_cast<std::ptrdiff_t>(at);
        ASSERT_TRUE(before.chip.write(static_cast<std::uint32_t>(0x08000000 + at), Bytes(from, from + 256)).done());
    }
    ASSERT_TRUE(StateFile(path, before.chip).save(error)) << error;
    Rig after("ZV32F421_64K");
    ASSERT_TRUE(StateFile(path, after.chip).load(error)) << error;
    Bytes back;
    ASSERT_TRUE(after.chip.read(0x08000000, cells.size(), back).done());
    EXPECT_TRUE(back == cells);
}

TEST_F(State, aMissingFileIsANewChip) {
    Rig rig("ZV32F421_64K");
    StateFile file(path, rig.chip);
    EXPECT_TRUE(file.load(error)) << error;
    EXPECT_TRUE(file.save(error)) << error;
    EXPECT_FALSE(content().empty());
}

TEST_F(State, anUnchangedMemoryIsNotWrittenAgain) {
    Rig rig("ZV32F421_64K");
    StateFile file(path, rig.chip);
    ASSERT_TRUE(file.save(error)) << error;
    std::remove(path.c_str());
    ASSERT_TRUE(file.save(error)) << error;
    EXPECT_NE(access(path.c_str(), F_OK), 0);
    ASSERT_TRUE(rig.chip.write(0x08000000, {0, 0, 0, 0}).done());
    ASSERT_TRUE(file.save(error)) << error;
    EXPECT_EQ(access(path.c_str(), F_OK), 0);
}

TEST_F(State, nothingLiesBesideTheFile) {
    Rig rig("ZV32F421_64K");
    ASSERT_TRUE(StateFile(path, rig.chip).save(error)) << error;
    std::remove(path.c_str());
    EXPECT_EQ(rmdir(directory.c_str()), 0); // so it was empty
    ASSERT_FALSE(StateFile(path, rig.chip).save(error));
    EXPECT_NE(error.find(path), std::string::npos) << error;
}

TEST_F(State, aLinkThatSomebodyElseLaidBesideItIsNotFollowed) {
    const std::string victim = directory + "/victim";
    const std::string trap = path + "." + std::to_string(getpid());
    std::ofstream(victim) << "mine";
    ASSERT_EQ(symlink(victim.c_str(), trap.c_str()), 0);
    Rig rig("ZV32F421_64K");
    ASSERT_TRUE(StateFile(path, rig.chip).save(error)) << error;
    std::ifstream in(victim);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), "mine");
    std::remove(victim.c_str());
    std::remove(trap.c_str());
}

TEST_F(State, everyDamageIsRefused) {
    Rig rig("ZV32F421_64K");
    ASSERT_TRUE(rig.chip.write(0x08000000, {1, 2, 3, 4}).done());
    ASSERT_TRUE(StateFile(path, rig.chip).save(error)) << error;
    const std::string good = content();
    std::vector<std::string> damaged = {
        "", "ZV32SIM1", "a text of somebody else's", good + "x", good.substr(0, good.size() - 1), good.substr(1)};
    for (std::size_t i = 0; i < good.size(); i += 7) {
        damaged.push_back(good);
        damaged.back()[i] = static_cast<char>(damaged.back()[i] ^ 0x40);
    }
    for (const std::string &bytes : damaged) {
        setContent(bytes);
        Rig other("ZV32F421_64K");
        EXPECT_FALSE(StateFile(path, other.chip).load(error)) << bytes.size();
        EXPECT_NE(error.find(path), std::string::npos) << error;
    }
}

TEST_F(State, anotherChipIsRefused) {
    Rig rig("ZV32F421_64K");
    ASSERT_TRUE(StateFile(path, rig.chip).save(error)) << error;
    Rig other("ZV32F425_64K");
    EXPECT_FALSE(StateFile(path, other.chip).load(error));
    EXPECT_NE(error.find("ZV32F421_64K"), std::string::npos) << error;
}

TEST_F(State, anotherSpimIsRefused) {
    Rig rig("ZV32F403A_1024K");
    ASSERT_TRUE(StateFile(path, rig.chip).save(error)) << error;
    Rig other("ZV32F403A_1024K", {}, {}, 2 * 1024 * 1024);
    EXPECT_FALSE(StateFile(path, other.chip).load(error));
    EXPECT_NE(error.find("SPIM"), std::string::npos) << error;
}

TEST_F(State, aPlaceThatIsNoFileIsRefused) {
    Rig rig("ZV32F421_64K");
    for (const std::string &place : {directory, std::string("/dev/zero")}) {
        EXPECT_FALSE(StateFile(place, rig.chip).load(error));
        EXPECT_NE(error.find(place), std::string::npos) << error;
    }
}

} // namespace
} // namespace sim
