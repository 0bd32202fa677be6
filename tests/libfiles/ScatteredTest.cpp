// Files whose records come in no order. Sizes are such that anything quadratic would show.

#include <algorithm>
#include <random>

#include <gtest/gtest.h>

#include "tests/libfiles/LibFiles.h"

using namespace libfiles;

namespace {

struct Record {
    std::uint32_t address;
    Bytes bytes;
};

std::string s3File(const std::vector<Record> &records) {
    std::string content;
    for (const Record &record : records)
        content += srec(3, record.address, record.bytes) + "\n";
    return content + "S70500000000FA\n";
}

void shuffle(std::vector<Record> &records) {
    std::mt19937 random(7);
    std::shuffle(records.begin(), records.end(), random);
}

TEST(Scattered, SixtyFourThousandRuns) {
    const TempDir dir;
    std::vector<Record> records;
    Pieces expected;
    for (std::uint32_t i = 0; i < 64000; ++i) {
        records.push_back({0x08000000 + i * 64, pattern(16, i)});
        expected.push_back({records.back().address, records.back().bytes});
    }
    shuffle(records);
    Pieces pieces;
    ASSERT_EQ(load(dir, "a.s19", s3File(records), pieces), noError);
    EXPECT_EQ(pieces, expected);
}

// More records than are sorted at one time, so that sorted parts are joined with later ones.
TEST(Scattered, ShuffledRecordsMakeOneElement) {
    const TempDir dir;
    constexpr std::uint32_t pieceCount = 200000;
    constexpr std::uint32_t pieceLength = 3;
    const Bytes image = pattern(pieceCount * pieceLength);
    std::vector<Record> records;
    for (std::uint32_t i = 0; i < pieceCount; ++i)
        records.push_back(
            {i * pieceLength, Bytes(image.begin() + i * pieceLength, image.begin() + (i + 1) * pieceLength)});
    shuffle(records);
    Pieces pieces;
    ASSERT_EQ(load(dir, "a.s19", s3File(records), pieces), noError);
    EXPECT_EQ(pieces, (Pieces{{0, image}}));

    // One wrong byte, after all that is sorted by then, is still found.
    Record twice = records.front();
    twice.bytes[1] ^= 1;
    records.push_back(twice);
    EXPECT_EQ(load(dir, "a.s19", s3File(records), pieces), badFormat);
}

// Copies of two records take the memory of two.
TEST(Scattered, RepeatedRecords) {
    const TempDir dir;
    std::vector<Record> records;
    for (int i = 0; i < 70000; ++i) {
        records.push_back({0x1000, pattern(32)});
        records.push_back({0x2000, pattern(32)});
    }
    Pieces pieces;
    ASSERT_EQ(load(dir, "a.s19", s3File(records), pieces), noError);
    EXPECT_EQ(pieces, (Pieces{{0x1000, pattern(32)}, {0x2000, pattern(32)}}));
}

// Overlapping records of all lengths, against a plain array.
TEST(Scattered, OverlapsAgainstAModel) {
    const TempDir dir;
    std::mt19937 random(11);
    const Bytes image = pattern(5000);
    for (int round = 0; round < 50; ++round) {
        std::vector<bool> present(image.size(), false);
        std::vector<Record> records;
        for (int i = 0; i < 40; ++i) {
            const std::size_t start = random() % (image.size() - 250);
            const std::size_t length = random() % 250;
            const auto first = image.begin() + static_cast<std::ptrdiff_t>(start);
            records.push_back(
                {static_cast<std::uint32_t>(start), Bytes(first, first + static_cast<std::ptrdiff_t>(length))});
            std::fill_n(present.begin() + static_cast<std::ptrdiff_t>(start), length, true);
        }
        Pieces expected;
        for (std::size_t i = 0; i < image.size(); ++i) {
            if (!present[i])
                continue;
            if (i == 0 || !present[i - 1])
                expected.push_back({i, {}});
            expected.back().bytes.push_back(image[i]);
        }
        Pieces pieces;
        ASSERT_EQ(load(dir, "a.s19", s3File(records), pieces), noError);
        ASSERT_EQ(pieces, expected) << round;
    }
}

} // namespace
