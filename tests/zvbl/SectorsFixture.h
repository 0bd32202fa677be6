#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <sstream>

#include "tests/zvbl/LinkFixture.h"
#include "tests/zvbl/SectorChip.h"

// A link to a chip with eight sectors of content, and a trace.
class SectorsTest : public LinkFixture {
protected:
    using Crc = SectorChip::Crc;
    static constexpr std::size_t sector = 2048;
    static constexpr int packets = 8; // of a sector
    static constexpr unsigned base = SectorChip::base;
    static constexpr unsigned patienceMs = 5000; // a busy machine may hold up an answer
    static constexpr unsigned shortPatienceMs = 300;

    void SetUp() override {
        char name[] = "/tmp/zvbl-sectors-XXXXXX";
        directory = mkdtemp(name);
        setenv("ZVBL_TRACE", (directory / "trace").c_str(), 1);
        LinkFixture::SetUp();
        hurry(100, 5, patienceMs);
        std::mt19937 random(4711);
        for (std::uint8_t &byte : memory)
            byte = static_cast<std::uint8_t>(random() % 255); // no FF
        data = memory;
    }
    void TearDown() override {
        unsetenv("ZVBL_TRACE");
        unsetenv("ZVBL_VERIFY_BY");
        LinkFixture::TearDown();
        std::filesystem::remove_all(directory);
    }
    // A chip with that memory, which has told its commands.
    std::unique_ptr<SectorChip> chipWith(Crc crc) {
        auto chip = std::make_unique<SectorChip>(pty, memory, crc);
        for (const Crc silent : {Crc::dropped, Crc::droppedLater, Crc::deadly, Crc::silentOfEach, Crc::deadlyOfEach})
            if (crc == silent) // an answer that never comes is waited for
                EXPECT_EQ(SetTimeOut(link, shortPatienceMs), 0);
        BYTE version = 0;
        Commands commands;
        EXPECT_EQ(ZVBL_GET(link, &version, &commands), 0);
        return chip;
    }
    int verify(std::size_t from, std::size_t length, bool optimise = false) {
        return ZVBL_VERIFY(link, base + static_cast<unsigned>(from), data.data() + from, static_cast<unsigned>(length),
                           optimise);
    }
    int upload(std::size_t from, std::size_t length) {
        std::fill(data.begin(), data.end(), std::uint8_t{0});
        return ZVBL_UPLOAD(link, base + static_cast<unsigned>(from), data.data() + from, static_cast<unsigned>(length));
    }
    bool isRight(std::size_t from, std::size_t length) const {
        const auto at = static_cast<std::ptrdiff_t>(from), end = static_cast<std::ptrdiff_t>(from + length);
        return std::equal(data.begin() + at, data.begin() + end, memory.begin() + at);
    }
    bool traced(const std::string &text) const {
        std::ifstream file(directory / "trace");
        std::ostringstream all;
        all << file.rdbuf();
        return all.str().find(text) != std::string::npos;
    }

    zvbl::Bytes memory = zvbl::Bytes(8 * sector);
    zvbl::Bytes data;
    std::filesystem::path directory;
};
