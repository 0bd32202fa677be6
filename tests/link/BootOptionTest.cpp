#include "tests/link/LinkTest.h"

class BootOptionTest : public LinkTest {};

TEST_F(BootOptionTest, BootLineWithoutResetLineDoesNothing) {
    CCom &link = open(USART);
    EXPECT_FALSE(link.SetBootOption(BOOTOPTION_NONE, BOOTOPTION_DTR, LOW, HIGH));
    EXPECT_EQ(library.log(), "");
}

TEST_F(BootOptionTest, ResetLineAlone) {
    CCom &link = open(USART);
    EXPECT_TRUE(link.SetBootOption(BOOTOPTION_DTR, BOOTOPTION_NONE, HIGH, HIGH));
    EXPECT_EQ(library.log(), "ZVBL_SetDtr h=1001 level=1\nsleep 100\nsleep 100\n"
                             "ZVBL_SetDtr h=1001 level=0\nsleep 200\nsleep 200\n");
}

struct Row {
    int index;
    const char *log; // D and R for the lines, the level, and the sleeps
};

// The control lines of every row, in the order in which they move.
constexpr Row rows[] = {
    {0, "100 100 200 200"},
    {1, "D0 100 100 D1 200 200"},
    {2, "D0 100 R0 100 D1 200 R1 200"},
    {3, "D0 100 R1 100 D1 200 R0 200"},
    {4, "D1 100 100 D0 200 200"},
    {5, "D1 100 R0 100 D0 200 R1 200"},
    {6, "D1 100 R1 100 D0 200 R0 200"},
    {7, "R0 100 100 R1 200 200"},
    {8, "R0 100 D0 100 R1 200 D1 200"},
    {9, "R0 100 D1 100 R1 200 D0 200"},
    {10, "R1 100 100 R0 200 200"},
    {11, "R1 100 D0 100 R0 200 D1 200"},
    {12, "R1 100 D1 100 R0 200 D0 200"},
};

std::string asLog(const std::string &shortForm) {
    std::istringstream words(shortForm);
    std::string log;
    for (std::string word; words >> word;)
        if (word[0] == 'D' || word[0] == 'R')
            log += std::string("ZVBL_Set") + (word[0] == 'D' ? "Dtr" : "Rts") + " h=1001 level=" + word[1] + "\n";
        else
            log += "sleep " + word + "\n";
    return log;
}

TEST_F(BootOptionTest, EveryRowOfTheAutoConnectTable) {
    CCom &link = open(USART);
    link.SetBootSwitch(AUTOMATIC);
    for (const Row &row : rows) {
        library.clearLog();
        link.SetBootOptionIndex(row.index);
        EXPECT_TRUE(link.SetBootOption());
        EXPECT_EQ(library.log(), asLog(row.log)) << "index " << row.index;
    }
}

TEST_F(BootOptionTest, IndexOutsideTheTableMovesNoLine) {
    CCom &link = open(USART);
    link.SetBootSwitch(AUTOMATIC);
    for (const int index : {13, 14, 1000, -1, -2147483647}) {
        link.SetBootOptionIndex(index);
        EXPECT_FALSE(link.SetBootOption()) << index;
    }
    EXPECT_EQ(library.log(), "");
}

TEST_F(BootOptionTest, ManualSwitchMovesNoLine) {
    CCom &link = open(USART);
    link.SetBootOptionIndex(2);
    EXPECT_FALSE(link.SetBootOption());
    EXPECT_EQ(library.log(), "");
}

TEST_F(BootOptionTest, OtherLinksHaveNoControlLines) {
    for (const LinkType type : {USBDFU, I2C, CAN, SPI}) {
        CCom &link = open(type);
        link.SetBootSwitch(AUTOMATIC);
        EXPECT_EQ(link.GetBootSwitch(), MANUAL);
        link.SetBootOptionIndex(13);
        EXPECT_TRUE(link.SetBootOption());
        EXPECT_TRUE(link.SetBootOption(BOOTOPTION_NONE, BOOTOPTION_DTR, LOW, HIGH));
        EXPECT_EQ(library.log(), "");
    }
}

TEST_F(BootOptionTest, ValuesThatOthersStore) {
    EXPECT_EQ(MANUAL, 0);
    EXPECT_EQ(AUTOMATIC, 1);
    EXPECT_EQ(BOOTOPTION_NONE, 0);
    EXPECT_EQ(BOOTOPTION_DTR, 1);
    EXPECT_EQ(BOOTOPTION_RTS, 2);
    EXPECT_EQ(LOW, 0);
    EXPECT_EQ(HIGH, 1);
}
