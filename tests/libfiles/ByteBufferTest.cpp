#include "libs/files/ByteBuffer.h"

#include <gtest/gtest.h>

#include "tests/libfiles/LibFiles.h"

using namespace libfiles;

namespace {

constexpr std::size_t megabyte = 1024 * 1024;

TEST(ByteBuffer, GrowsWithWhatItHolds) {
    files::ByteBuffer buffer;
    const Bytes bytes = pattern(megabyte);
    for (int i = 0; i < 9; ++i)
        buffer.append(bytes.data(), bytes.size());
    ASSERT_EQ(buffer.size(), 9 * megabyte);
    for (std::size_t i = 0; i < 9; ++i)
        EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), buffer.data() + i * megabyte)) << i;
    buffer.append(bytes.data(), 0);
    EXPECT_EQ(buffer.size(), 9 * megabyte);
}

TEST(ByteBuffer, ForgetsWholePagesAndKeepsWhatIsBehindThem) {
    files::ByteBuffer buffer;
    const Bytes bytes = pattern(6 * megabyte);
    buffer.append(bytes.data(), bytes.size());
    buffer.forgetBefore(5 * megabyte);
    buffer.forgetBefore(3 * megabyte); // was forgotten before
    EXPECT_EQ(buffer.data()[0], 0);
    EXPECT_EQ(buffer.data()[5 * megabyte], bytes[5 * megabyte]);
    EXPECT_EQ(buffer.data()[6 * megabyte - 1], bytes.back());
}

TEST(ByteBuffer, HandsOverWhatItHolds) {
    files::ByteBuffer empty;
    EXPECT_EQ(empty.release(), nullptr);
    files::ByteBuffer full;
    full.reserve(1);
    const std::size_t capacity = full.capacity();
    const Bytes bytes = pattern(capacity); // to its last byte
    full.append(bytes.data(), bytes.size());
    EXPECT_EQ(full.capacity(), capacity);
    const std::shared_ptr<BYTE> block = full.release();
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), block.get()));
    EXPECT_EQ(full.size(), 0u);
}

} // namespace
