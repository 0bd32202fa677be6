#include "line/station/Station.h"

#include "programs/Status.h"
#include "tests/line/LineFiles.h"

namespace {

const std::string station = R"(format = 1
station = "line-3"
register = "/var/lib/zv32-line/three.db"
approval = "always"
approved = "/etc/approved"
stop_after = 5
retries = 2
[link]
kind = "usart"
rate = 460800
parity = "none"
auto = 5
[[nest]]
name = "A1"
port = "/dev/serial/by-path/one"
[[nest]]
name = "A2"
port = "/dev/serial/by-path/two"
[series.ZX100]
first = 100000
last = 149999
[hook.before]
run = ["/usr/local/lib/line/may-i", "--of", ""]
seconds = 5
[hook.after]
run = ["/usr/local/lib/line/deliver"]
seconds = 10
)";

struct Mistake {
    const char *old;
    const char *other;
    const char *told; // behind the name of the station file
};

const Mistake mistakes[] = {
    {"format = 1", "format = 3", ":1: format: is not within 1 and 1"},
    {"\"line-3\"", "7", ":2: station: must be a text, and is a whole number"},
    {"\"/var/lib/zv32-line/three.db\"", "\"three.db\"", ":3: register: must be an absolute path"},
    {"\"always\"", "\"never\"", ":4: approval: is none of \"always\", \"irreversible\""},
    {"\"/etc/approved\"", "\"approved\"", ":5: approved: must be an absolute path"},
    {"stop_after = 5", "stop_after = -1", ":6: stop_after: is not within 0 and 1000"},
    {"retries = 2", "retries = 11", ":7: retries: is not within 0 and 10"},
    {"retries = 2", "retry = 2", ":7: retry: no such key"},
    {"retries = 2", "retry_after = 61", ":7: retry_after: is not within 0 and 60"},
    {"[link]\nkind", "kind", ":1: link: is missing"},
    {"\"usart\"", "\"uart\"", ":9: link.kind: is none of \"can\", \"dfu\", \"i2c\", \"spi\", \"usart\""},
    {"460800", "0", ":10: link.rate: is not within 1 and 100000000"},
    {"\"none\"", "\"mark\"", ":11: link.parity: is none of \"even\", \"none\", \"odd\""},
    {"auto = 5", "auto = 13", ":12: link.auto: is not within 0 and 12"},
    {"auto = 5", "address = 5", ":12: link.address: no such key"},
    {"\"A2\"", "\"A1\"", ":17: nest[1].name: another nest has this name"},
    {"\"A2\"", "\"A,2\"", ":17: nest[1].name: must be of printable ASCII characters, without space and comma"},
    {"\"A2\"", "\"A\\u00e42\"", ":17: nest[1].name: must be of printable ASCII characters, without space and comma"},
    {"\"A2\"", "\"123456789\"", ":17: nest[1].name: is longer than 8 characters"},
    {"by-path/two", "by-path/one", ":18: nest[1].port: another nest has this port"},
    {"/dev/serial/by-path/two", "ttyUSB0", ":18: nest[1].port: must be an absolute path"},
    {"\"/dev/serial/by-path/two\"", "\"\"", ":18: nest[1].port: is empty, or holds control characters"},
    {"last = 149999", "last = 99999", ":21: series.ZX100.last: is not within 100000 and 4294967295"},
    {"first = 100000", "from = 1", ":19: series.ZX100.first: is missing"},
    {"[\"/usr/local/lib/line/may-i\", \"--of\", \"\"]", "[]",
     ":23: hook.before.run: must begin with the absolute path"},
    {"/usr/local/lib/line/may-i", "may-i", ":23: hook.before.run: must begin with the absolute path of a program"},
    {"\"--of\"", "7", ":23: hook.before.run: must be a list of texts, and is a whole number"},
    {"\"--of\"", "\"\\u001b[2J\"", ":23: hook.before.run: holds control characters"},
    {"[\"/usr/local/lib/line/deliver\"]", "\"/usr/local/lib/line/deliver\"",
     ":26: hook.after.run: must be a list of texts, and is a text"},
    {"seconds = 10", "seconds = 3601", ":27: hook.after.seconds: is not within 1 and 3600"},
    {"seconds = 5", "second = 5", ":22: hook.before.seconds: is missing"},
    {"hook.after", "hook.later", ":25: hook.later: no such key"},
};

class StationTest : public LineFiles {
protected:
    Station read(const std::string &text) const {
        write("station.toml", text);
        return readStation(path("station.toml"));
    }

    // What is told of the station; empty for one that is taken.
    std::string told(const std::string &text) const {
        try {
            read(text);
            return {};
        } catch (const Refusal &refusal) {
            EXPECT_EQ(refusal.status, notAcceptable);
            return refusal.what();
        }
    }

    static std::string ofKind(const char *kind, const std::string &keys, const std::string &port) {
        return std::string("format = 1\nstation = \"x\"\n[link]\nkind = \"") + kind + "\"\n" + keys +
               "[[nest]]\nname = \"A1\"\nport = \"" + port + "\"\n";
    }
};

} // namespace

TEST_F(StationTest, ReadsEveryKey) {
    const Station read = this->read(station);
    EXPECT_TRUE(read.read);
    EXPECT_EQ(read.name, "line-3");
    EXPECT_EQ(read.registerPath, "/var/lib/zv32-line/three.db");
    EXPECT_EQ(read.registerPlace.line, 3);
    EXPECT_EQ(read.approval, ApprovalRule::always);
    EXPECT_EQ(read.approved, "/etc/approved");
    EXPECT_EQ(read.stopAfter, 5);
    EXPECT_EQ(read.retries, 2);
    ASSERT_EQ(read.nests.size(), 2U);
    EXPECT_EQ(read.nests[1].name, "A2");
    EXPECT_EQ(read.nests[1].port, "/dev/serial/by-path/two");
    EXPECT_EQ(read.series.at("ZX100").last, 149999U);
    EXPECT_EQ(read.before->run, (std::vector<std::string>{"/usr/local/lib/line/may-i", "--of", ""}));
    EXPECT_EQ(read.before->seconds, 5);
    EXPECT_EQ(read.before->place.line, 23);
    EXPECT_EQ(read.after->run.size(), 1U);
    EXPECT_EQ(linkJson(read.link, read.nests[0].port).dump(),
              R"({"kind":"usart","port":"/dev/serial/by-path/one","rate":460800,"parity":"none","auto":5})");
}

TEST_F(StationTest, ItsPauseIsOfItsOwnOrNone) {
    const std::string little = "format = 1\nstation = \"x\"\nretry_after = ";
    EXPECT_EQ(read(little + "60\n").retryAfter, 60);
    EXPECT_EQ(read(little + "0\n").retryAfter, 0);
}

TEST_F(StationTest, NeedsLittle) {
    const Station read = this->read("format = 1\nstation = \"x\"\n");
    EXPECT_EQ(read.registerPath, "/var/lib/zv32-line/units.db");
    EXPECT_EQ(read.approval, ApprovalRule::irreversible);
    EXPECT_EQ(read.approved, "/etc/zv32-line/approved");
    EXPECT_EQ(read.stopAfter, 3);
    EXPECT_EQ(read.retries, 1);
    EXPECT_EQ(read.retryAfter, 2);
    EXPECT_TRUE(read.nests.empty());
    EXPECT_FALSE(read.before || read.after);
}

TEST_F(StationTest, HasPortsAndSettingsByTheKindOfItsLink) {
    const auto link = [&](const char *kind, const char *keys, const char *port) {
        const Station read = this->read(ofKind(kind, keys, port));
        return linkJson(read.link, read.nests[0].port).dump();
    };
    EXPECT_EQ(link("usart", "", "/dev/ttyS0"), R"({"kind":"usart","port":"/dev/ttyS0"})");
    EXPECT_EQ(link("dfu", "", "1-2.3"), R"({"kind":"dfu","port":"1-2.3"})");
    EXPECT_EQ(link("i2c", "address = 0x3D\n", "/dev/i2c-1"), R"({"kind":"i2c","port":"/dev/i2c-1","address":61})");
    EXPECT_EQ(link("can", "rate = 500000\n", "can0"), R"({"kind":"can","port":"can0","rate":500000})");
    EXPECT_EQ(link("can", "", "/dev/ttyACM0"), R"({"kind":"can","port":"/dev/ttyACM0"})");
    EXPECT_EQ(link("spi", "rate = 1000000\n", "/dev/spidev0.0"),
              R"({"kind":"spi","port":"/dev/spidev0.0","rate":1000000})");
}

TEST_F(StationTest, RefusesPortsAndSettingsOfAnotherLink) {
    const std::string file = path("station.toml");
    EXPECT_EQ(told(ofKind("dfu", "", "/dev/ttyUSB0")),
              file + ":7: nest[0].port: must be a place on USB, such as \"1-2.3\"");
    EXPECT_EQ(told(ofKind("dfu", "rate = 9600\n", "1-2")), file + ":5: link.rate: no such key");
    EXPECT_EQ(told(ofKind("i2c", "address = 0x78\n", "/dev/i2c-1")),
              file + ":5: link.address: is not within 8 and 119");
    EXPECT_EQ(told(ofKind("can", "auto = 5\n", "can0")), file + ":5: link.auto: no such key");
    EXPECT_EQ(told(ofKind("can", "", "bus/can0")),
              file + ":7: nest[0].port: must be the name of an interface, or an absolute path");
    EXPECT_EQ(told(ofKind("spi", "", "spidev0.0")), file + ":7: nest[0].port: must be an absolute path");
}

TEST_F(StationTest, TellsFileLineAndKeyOfEveryMistake) {
    for (const Mistake &mistake : mistakes) {
        const std::string wanted = path("station.toml") + mistake.told;
        std::string text = station;
        const std::size_t at = text.find(mistake.old);
        ASSERT_NE(at, text.npos) << mistake.old;
        EXPECT_EQ(told(text.replace(at, std::string(mistake.old).size(), mistake.other)).substr(0, wanted.size()),
                  wanted);
    }
}

TEST_F(StationTest, HasNoMoreNestsThanAScreenShows) {
    std::string text = "format = 1\nstation = \"x\"\n[link]\nkind = \"usart\"\n";
    for (int i = 0; i < 64; ++i)
        text += "[[nest]]\nname = \"" + std::to_string(i) + "\"\nport = \"/dev/tty" + std::to_string(i) + "\"\n";
    EXPECT_EQ(told(text), "");
    EXPECT_EQ(told(text + "[[nest]]\nname = \"64\"\nport = \"/dev/tty64\"\n"),
              path("station.toml") + ":198: nest[64].name: is one more than 64 nests");
}

TEST_F(StationTest, RefusesAPortThatNoPathCanBe) {
    EXPECT_EQ(told(ofKind("usart", "", '/' + std::string(500000, 'a'))),
              path("station.toml") + ":7: nest[0].port: is longer than a path can be");
}
