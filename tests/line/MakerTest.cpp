#include "line/gang/Maker.h"

#include <memory>

#include <poll.h>

#include "line/plan/Chip.h"
#include "line/register/Database.h"
#include "line/rehearsal/SimulatedChip.h"
#include "tests/line/LineFiles.h"

namespace {

constexpr int patience = 60000; // milliseconds, for a machine that does much else
const std::string burnt("\x00\x11\x22\x33\x44\x55\x66\x77", 8);

// A nest that has a chip, and is about to write what can't be undone.
class MakerTest : public LineFiles {
protected:
    MakerTest() {
        write("fw.bin", "abcd");
        write("job.toml", "format = 1\nname = \"ZX100\"\nquantity = 10\n[chip]\nname = \"ZV32F457_256K\"\n"
                          "[image]\nfile = \"fw.bin\"\nverify = \"read\"\n"
                          "[[otp]]\nblock = 2\nhex = \"0011223344556677\"\n");
        read = readJob(path("job.toml"));
        const Chip kind(read.chip, read.chipPlace);
        image = imageOf(read, kind);
        plan = planOf(read, kind, image);
        station.name = "one";
        units = std::make_unique<Register>(path("units.db"));
        units->keepPlan(plan.hash, read.name, read.quantity, plan.text);
        shift.reset(new Shift{read, plan, image, station, "", *units});
        chip = std::make_unique<SimulatedChip>("ZV32F457_256K", path("chip"), 1);
        nest = {"A1", chip->port(), {}};
        maker = std::make_unique<Maker>(*shift, nest, shown);
        maker->start();
        beginUnit(*maker);
        proceedTo(*maker, Maker::Entry::burning);
    }

    // Until it has that for the register.
    static void proceedTo(Maker &maker, Maker::Entry entry) {
        for (;;) {
            while (maker.proceed()) {
            }
            if (maker.entry() != Maker::Entry::none)
                break;
            std::vector<pollfd> all;
            maker.watch(all);
            ASSERT_GT(poll(all.data(), all.size(), patience), 0);
        }
        ASSERT_EQ(maker.entry(), entry);
    }
    static void beginUnit(Maker &maker) {
        proceedTo(maker, Maker::Entry::beginning);
        maker.write();
        maker.written();
    }
    // What the record of a unit says of its end.
    static std::string end(Maker &maker) {
        proceedTo(maker, Maker::Entry::end);
        maker.write();
        EXPECT_TRUE(maker.written());
        const Json &cause = maker.record().at("cause");
        return maker.record().at("result").get<std::string>() + (cause.is_string() ? ' ' + std::string(cause) : "");
    }
    bool chipIsBurnt() {
        chip.reset();
        EXPECT_TRUE(holds("chip", "abcd"));
        return holds("chip", burnt);
    }
    std::int64_t burning() const {
        const char *const of = "SELECT burning FROM attempt WHERE nest = 'A1'";
        return Database(path("units.db"), Database::Purpose::reading).number(of, {});
    }

    Job read{};
    Plan plan{};
    Runs image;
    Station station{};
    std::unique_ptr<Register> units;
    std::unique_ptr<Shift> shift;
    std::unique_ptr<SimulatedChip> chip;
    Nest nest;
    NestState shown;
    std::unique_ptr<Maker> maker;
};

TEST_F(MakerTest, BurnsAfterTheRegisterKnows) {
    maker->write();
    EXPECT_EQ(burning(), 1);
    maker->written();
    EXPECT_EQ(end(*maker), "pass");
    EXPECT_TRUE(chipIsBurnt());
}

TEST_F(MakerTest, DoesNotBurnWhereTheRegisterDoesNot) {
    Database(path("units.db"), Database::Purpose::writing)
        .run("CREATE TRIGGER never BEFORE UPDATE OF burning ON attempt BEGIN SELECT RAISE(ABORT, 'never'); END");
    try {
        maker->write();
        FAIL() << "it was written";
    } catch (const Refusal &refusal) {
        maker->notWritten(refusal);
    }
    EXPECT_FALSE(maker->isBusy());
    EXPECT_EQ(burning(), 0);
    EXPECT_FALSE(chipIsBurnt());
}

// Its entry and that of the other nest are one commit.
TEST_F(MakerTest, DoesNotBurnWhereAnotherChipHasItsIdentifier) {
    const SimulatedChip twin("ZV32F457_256K", "", 1);
    const Nest otherNest = {"A2", twin.port(), {}};
    NestState otherShown;
    Maker other(*shift, otherNest, otherShown);
    other.start();
    proceedTo(other, Maker::Entry::beginning);
    shift->sameId = [&](const std::string &uid) {
        EXPECT_EQ(uid, maker->uid());
        maker->giveUpSameId();
    };
    units->together([&] {
        other.write();
        maker->write();
    });
    other.written();
    maker->written();
    EXPECT_EQ(end(other), "refused same-id");
    EXPECT_EQ(end(*maker), "fail same-id");
    EXPECT_FALSE(chipIsBurnt());
}

} // namespace
