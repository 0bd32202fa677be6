// "-p".

#include "Console.h"

namespace {

using Calls = std::vector<std::string>;

class ProtectionTest : public ConnectedTest {};

const char *const confirmText = "ZV32F425/F423/A423/L021/F405/F402/F455/F456/F457/F490/M412/M416/G412/F422/F426 need "
                                "a parameter \"--y\" for operation \"--efap2\"!\n";

TEST_F(ProtectionTest, EnableAccessProtection) {
    console.script("TARGET_GetUserSystemData data=00"); // as it reads after the restart
    for (const char *word : {"--efap", "--erp", "--efap1"}) {
        const Outcome run = connected(std::string("-p ") + word);
        EXPECT_EQ(run.text, "Enable access protection\nRunning...\nEnable access protection successfully!\n") << word;
        EXPECT_EQ(run.status, 0) << word;
        EXPECT_EQ(run.changes(), Calls{"ZVBL_ACCESS_PROTECT_LEVEL level=1"}) << word;
    }
}

TEST_F(ProtectionTest, EnableAccessProtectionFails) {
    console.script("ZVBL_ACCESS_PROTECT_LEVEL status=19");
    for (const char *word : {"--efap", "--erp", "--efap1"}) {
        const Outcome run = connected(std::string("-p ") + word);
        EXPECT_EQ(run.text, "Enable access protection\nRunning...\n\nThe cmd not allowed!\n") << word;
        EXPECT_EQ(run.status, 32) << word;
    }
}

TEST_F(ProtectionTest, EnableHighLevelWithoutAValue) {
    console.script("TARGET_GetUserSystemData data=CC");
    const Outcome run = connected("-p --efap2 --bogus");
    EXPECT_EQ(run.text, "Enable access protection\nRunning...\nEnable access protection successfully!\n"
                        "bad parameter \"--bogus\"\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.changes(), Calls{"ZVBL_ACCESS_PROTECT_LEVEL level=2"});
}

TEST_F(ProtectionTest, EnableHighLevelFails) {
    console.script("ZVBL_ACCESS_PROTECT_LEVEL status=19");
    EXPECT_EQ(connected("-p --efap2").status, 33);
}

// Every family of the usage text, in its order, by a map of its own.
TEST_F(ProtectionTest, EnableHighLevelNeedsConfirmation) {
    for (const char *series :
         {"0F", "12", "1D", "10", "13", "14", "15", "16", "17", "1E", "19", "1A", "1C", "1F", "20"}) {
        const Chip chip = {"ZV32F4XX", std::string("010F5009") + series, "5009010F", series, 64, 1024};
        console.connectTo(chip);
        for (const char *line : {"-p --efap2", "-p --efap2 -e", "-p --efap2 --x", "-p --efap2 y"}) {
            const Outcome run = connected(line);
            EXPECT_EQ(run.text, confirmText) << series << line;
            EXPECT_EQ(run.status, 33) << series << line;
            EXPECT_TRUE(run.changes().empty()) << series << line;
        }
    }
}

TEST_F(ProtectionTest, OtherFamiliesNeedNoConfirmation) {
    console.script("TARGET_GetUserSystemData data=CC");
    for (const char *series : {"01", "02", "04", "05", "07", "08", "09", "0D", "0E", "11", "18"}) {
        const Chip chip = {"ZV32F4XX", std::string("010F5009") + series, "5009010F", series, 64, 1024};
        console.connectTo(chip);
        EXPECT_EQ(connected("-p --efap2").changes(), Calls{"ZVBL_ACCESS_PROTECT_LEVEL level=2"}) << series;
    }
}

TEST_F(ProtectionTest, EnableHighLevelConfirmed) {
    console.connectTo(f425);
    console.script("TARGET_GetUserSystemData data=CC");
    for (const char *line : {"-p --efap2 --y", "-p --efap2 --Y"}) {
        const Outcome run = connected(line);
        EXPECT_EQ(run.status, 0) << line;
        EXPECT_EQ(run.changes(), Calls{"ZVBL_ACCESS_PROTECT_LEVEL level=2"}) << line;
    }
}

TEST_F(ProtectionTest, DisableAccessProtection) {
    for (const char *word : {"--dfap", "--drp"}) {
        const Outcome run = connected(std::string("-p ") + word);
        EXPECT_EQ(run.text, "Disable access protection\nRunning...\nDisable access protection successfully!\n") << word;
        EXPECT_EQ(run.status, 0) << word;
        EXPECT_EQ(run.changes(), Calls{"ZVBL_ACCESS_PERM_UNPROTECT"}) << word;
    }
}

TEST_F(ProtectionTest, DisableAccessProtectionFails) {
    console.script("ZVBL_ACCESS_PERM_UNPROTECT status=20");
    for (const char *word : {"--dfap", "--drp"})
        EXPECT_EQ(connected(std::string("-p ") + word).status, 34) << word;
}

TEST_F(ProtectionTest, EnableEraseProgramProtection) {
    // The first four sectors, two to a bit, are protected after the restart.
    console.script("TARGET_GetUserSystemData from=2 data=A5FFFFFFFCFFFFFF");
    for (const char *word : {"--eepp", "--ewp"}) {
        const Outcome run = connected(std::string("-p ") + word + " 0-3");
        EXPECT_EQ(run.changes(), Calls{"ZVBL_ERASEPROGRAM_PROTECT count=2 bits=0,1"}) << word << run.text;
        EXPECT_EQ(run.text, "Enable erase and program protection\nRunning...\n"
                            "Enable erase and program protection successfully!\n")
            << word;
        EXPECT_EQ(run.status, 0) << word;
    }
}

TEST_F(ProtectionTest, EnableEraseProgramProtectionFails) {
    console.script("ZVBL_ERASEPROGRAM_PROTECT status=20");
    for (const char *word : {"--eepp", "--ewp"}) {
        const Outcome run = connected(std::string("-p ") + word + " 0-3");
        EXPECT_EQ(run.text, "Enable erase and program protection\nRunning...\n\nUnknown error!\n") << word;
        EXPECT_EQ(run.status, 36) << word;
    }
}

TEST_F(ProtectionTest, RangesThatAreRefused) {
    for (const char *range : {"3", "3-1", "0-512", "-1-2"}) {
        const Outcome run = connected(std::string("-p --eepp ") + range);
        EXPECT_EQ(run.text, std::string("bad parameter \"") + range + "\"\n");
        EXPECT_EQ(run.status, 36) << range;
        EXPECT_TRUE(run.changes().empty()) << range;
    }
}

// No machine has room for such a list, and no chip the sectors.
TEST_F(ProtectionTest, RangeThatMakesNoJob) {
    const Outcome run = connected("-enspim -p --eepp 0-2000000000");
    EXPECT_EQ(lines(run.text).back(), "bad parameter \"0-2000000000\"");
    EXPECT_EQ(run.status, 36);
    EXPECT_TRUE(run.callsOf("ZVBL_ERASEPROGRAM_PROTECT").empty());
}

TEST_F(ProtectionTest, RangeAtTheEndOfTheLineIsTheFirstSector) {
    EXPECT_EQ(connected("-p --eepp").changes(), Calls{"ZVBL_ERASEPROGRAM_PROTECT count=1 bits=0"});
}

TEST_F(ProtectionTest, DisableEraseProgramProtection) {
    for (const char *word : {"--depp", "--dwp"}) {
        const Outcome run = connected(std::string("-p ") + word);
        EXPECT_EQ(run.text, "Disable erase and program protection\nRunning...\n"
                            "Disable erase and program protection successfully!\n")
            << word;
        EXPECT_EQ(run.status, 0) << word;
        EXPECT_EQ(run.changes(), Calls{"ZVBL_ERASEPROGRAM_PERM_UNPROTECT"}) << word;
    }
}

TEST_F(ProtectionTest, DisableEraseProgramProtectionFails) {
    console.script("ZVBL_ERASEPROGRAM_PERM_UNPROTECT status=20");
    for (const char *word : {"--depp", "--dwp"})
        EXPECT_EQ(connected(std::string("-p ") + word).status, 35) << word;
}

TEST_F(ProtectionTest, OtherWords) {
    const struct {
        const char *line;
        const char *text;
        int status;
    } table[] = {
        {"-p", "", 0},
        {"-p --v --efap", "", 0},
        {"-p --EFAP --dfap", "", 0},
        {"-p --y", "bad parameter \"--y\"\n", 1},
        {"-p --bogus", "bad parameter \"--bogus\"\n", 1},
    };
    for (const auto &row : table) {
        const Outcome run = connected(row.line);
        EXPECT_EQ(run.text, row.text) << row.line;
        EXPECT_EQ(run.status, row.status) << row.line;
        EXPECT_TRUE(run.changes().empty()) << row.line;
    }
}

} // namespace
