// Lines of console words, looked at and run: what zv32-look says has to be what the console does.

#include <random>
#include <sstream>

#include <gtest/gtest.h>

#include "LineDirectory.h"
#include "LineRun.h"

namespace {

using Words = std::vector<std::string>;

const LineChip chips[] = {
    {"ZV32F403A_1024K", ""},
    {"ZV32M412_256K", "ZVBL_GET_ID id=2259500419\nTARGET_GetFlashSize kb=256\n"},
    {"ZV32F435_4032K", "ZVBL_GET_ID id=454070080D\nTARGET_GetFlashSize kb=4032\n"},
    {"ZV32F415_256K", "ZVBL_GET_ID id=0245700305\nTARGET_GetFlashSize kb=256\n"},
};

// One option and what may stand behind it.
struct OptionWords {
    const char *option;
    Words subs;
};

const OptionWords connections[] = {
    {"-com", {"--pn ttyS0", "--br 9600", "--db 7", "--pr odd", "--pr none", "--to 2", "--br abc", "--pn"}},
    {"-com", {"--pn ttyS0"}},
    {"-can", {"--pn can0", "--speed 250000"}},
    {"-i2c", {"--pn i2c-1", "--addr 3C"}},
    {"-spi", {"--pn spidev0.0", "--speed 1000000"}},
    {"-dfu", {}},
};

const OptionWords actions[] = {
    {"-e", {"--all", "--sec 0-3", "--sec 7-7", "--sec 5", "--sec 3-1", "--sec", "--sec 0-511", "--SEC 1-2"}},
    {"-d",
     {"--fn ./a.hex", "--fn ./b.bin", "--fn ./blank.s19", "--fn ./b.bin --addr 08010000", "--fn ./b.bin --a 08010000",
      "--fn ./far.hex", "--fn ./low.hex", "--fn a.hex", "--fn ./bad.hex", "--fn ./gone.hex", "--v", "--o", "--addr",
      "--fn ./b.bin --addr 080FFFFF", "--fn ./b.bin --addr 08400000", "--fn ./a.hex --v"}},
    {"-u", {"--sec 0-1", "--sec 5-5 --sec 1-1", "--fn ./out.bin", "--fn ./out.hex", "--fn out.bin", "--sec 600-700"}},
    {"-usd",
     {"--set --fn ./options.bin", "--get --fn ./data.bin", "--set --fn ./few.bin", "--set ./options.bin", "--get",
      "--set --fn ./gone.bin", "--set --fn ./bad.hex"}},
    {"-o", {"--get --fn ./data.hex"}},
    {"-r", {"--addr 08004000", "--a 08004000", "--addr", ""}},
    {"-otp", {"--fn ./otp.ZVTP", "--fn ./short.ZVTP", "--fn ./gone.ZVTP", "--fn otp.ZVTP", "", "--v"}},
    {"-enspim", {"--ft 1", "--ft 2", "--fs 2", "--fda 0", "--fda 400", "--remap 1", "--fda"}},
    {"-p", {"--dfap", "--depp", "--efap", "--efap2 --y", "--efap2", "--eepp 0-3", "--eepp 9", "--efap1", "--EFAP"}},
};

const char *const oddWords[] = {"--v", "--all", "--bogus", "stray", "-?", "--fn", "-COM", "--y", "-d", "--a 1", "7"};

class Lines {
public:
    explicit Lines(unsigned int seed) : m_random(seed) {}

    Words next() {
        Words line;
        if (!oneIn(12))
            addOption(line, connections[below(std::size(connections))]);
        const std::size_t count = below(4);
        for (std::size_t i = 0; i < count; ++i) {
            addOption(line, actions[below(std::size(actions))]);
            if (oneIn(10))
                addWords(line, oddWords[below(std::size(oddWords))]);
        }
        return line;
    }

    std::size_t below(std::size_t count) { return m_random() % count; }

private:
    bool oneIn(std::size_t count) { return below(count) == 0; }

    static void addWords(Words &line, const std::string &words) {
        std::istringstream stream(words);
        for (std::string word; stream >> word;)
            line.push_back(word);
    }

    void addOption(Words &line, const OptionWords &option) {
        line.push_back(option.option);
        if (option.subs.empty())
            return;
        // Ports are named first and nearly always.
        if (option.subs[0].compare(0, 4, "--pn") == 0 && !oneIn(20))
            addWords(line, option.subs[0]);
        const std::size_t count = below(3);
        for (std::size_t i = 0; i < count; ++i)
            addWords(line, option.subs[below(option.subs.size())]);
    }

    std::mt19937 m_random;
};

// MEANT: the double's option bytes never change, so a protection that is to be turned on never shows: the console ends
// there, where a chip would have gone on.
void endAtProtection(LineOutcome &looked) {
    static const struct {
        const char *what;
        int status;
    } table[] = {{"protect access 1", 32}, {"protect access 2", 33}, {"protect sectors", 36}};
    for (std::size_t i = 0; i < looked.done.size(); ++i)
        for (const auto &row : table)
            if (looked.done[i] == row.what) {
                looked.done.resize(i + 1);
                looked.status = row.status;
                return;
            }
}

// The first thing in which they differ, empty for none.
std::string difference(const LineOutcome &looked, const LineOutcome &ran) {
    const std::size_t most = std::max(looked.done.size(), ran.done.size());
    for (std::size_t i = 0; i < most; ++i) {
        const std::string said = i < looked.done.size() ? looked.done[i] : "nothing";
        const std::string did = i < ran.done.size() ? ran.done[i] : "nothing";
        if (said != did)
            return "says \"" + said + "\" where the console does \"" + did + "\"";
    }
    if (looked.status != ran.status)
        return "says status " + std::to_string(looked.status) + " for " + std::to_string(ran.status);
    return "";
}

class ConsoleLine : public testing::TestWithParam<unsigned int> {};

INSTANTIATE_TEST_SUITE_P(FourTimes, ConsoleLine, testing::Range(20U, 24U));

TEST_P(ConsoleLine, HundredTwentyFiveLinesAreWhatTheConsoleDoes) {
    const LineDirectory directory;
    Lines lines(GetParam());
    int differing = 0;
    std::size_t deeds = 0;
    for (int i = 0; i < 125 && differing < 5; ++i) {
        const LineChip &chip = chips[lines.below(std::size(chips))];
        Words line = lines.next();
        if (line.empty())
            line.push_back("-?");
        LineOutcome looked = lookAtConsoleLine(chip, line);
        endAtProtection(looked);
        const LineOutcome ran = runConsole(chip, line);
        std::string words;
        for (const std::string &word : line)
            words += word + " ";
        const std::string differs = difference(looked, ran);
        EXPECT_EQ(differs, "") << chip.name << ": " << words;
        differing += differs.empty() ? 0 : 1;
        deeds += ran.done.size();
    }
    EXPECT_GT(deeds, 125U) << "the lines do too little to prove anything";
}

} // namespace
