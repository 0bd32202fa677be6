// Handles: what their owner may do to them, and those that the library never gave out.

#include <atomic>
#include <new>
#include <thread>

#include <gtest/gtest.h>

#include "tests/libfiles/LibFiles.h"

using namespace libfiles;

namespace {

void expectRefused(HANDLE handle) {
    const TempDir dir;
    Map map(uniform(0x08000000, 2048, 1));
    BYTE byte = 0;
    IMAGEELEMENT element{0x08000000, 1, &byte};
    unsigned int count = 7;
    EXPECT_EQ(FILES_ImageToFile((dir / "a.bin").c_str(), handle), badParameter);
    EXPECT_EQ(FILES_SetImageName(handle, "name"), badParameter);
    EXPECT_EQ(FILES_FilterImageForOperation(handle, map.get(), 2, 0), badParameter);
    EXPECT_EQ(FILES_GetImageNbElement(handle, &count), badParameter);
    EXPECT_EQ(FILES_GetImageElement(handle, 0, &element), badParameter);
    EXPECT_EQ(FILES_SetImageElement(handle, 0, 1, element), badParameter);
    HANDLE destroyed = handle;
    EXPECT_EQ(FILES_DestroyImage(&destroyed), badParameter);
    EXPECT_EQ(destroyed, handle);
    EXPECT_EQ(count, 7u);
    EXPECT_TRUE(dir.entries().empty());
}

TEST(Handles, OneThatWasNeverGivenOut) {
    int something = 0;
    expectRefused(&something);
    expectRefused(nullptr);
    expectRefused(reinterpret_cast<HANDLE>(8));
}

TEST(Handles, OneThatWasDestroyed) {
    HANDLE image = nullptr;
    ASSERT_EQ(FILES_CreateImage(&image, 1), noError);
    const HANDLE copy = image;
    ASSERT_EQ(FILES_DestroyImage(&image), noError);
    expectRefused(copy);
}

// The address of a handle that was dropped may become another handle, which knows nothing of the first.
TEST(Handles, OneThatIsDroppedWithoutACall) {
    Handle kept;
    ASSERT_EQ(FILES_CreateImage(kept.out(), 1), noError);
    ASSERT_EQ(kept.insert(0, 0x100, {1, 2, 3}), noError);
    HANDLE last = nullptr;
    bool cameBack = false;
    for (int i = 0; i < 100; ++i) {
        HANDLE image = nullptr;
        ASSERT_EQ(FILES_CreateImage(&image, 1), noError);
        cameBack |= image == last;
        unsigned int count = 7;
        ASSERT_EQ(FILES_GetImageNbElement(image, &count), noError);
        ASSERT_EQ(count, 0u);
        Bytes bytes = pattern(100);
        ASSERT_EQ(FILES_SetImageElement(image, 0, 1, {0x200, bytes.size(), bytes.data()}), noError);
        last = image;
        ::operator delete(image);
    }
    // The checking allocators of the sanitizers keep freed blocks back.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    EXPECT_TRUE(cameBack);
#endif
    EXPECT_EQ(kept.pieces(), (Pieces{{0x100, {1, 2, 3}}}));
}

TEST(Handles, SeveralThreadsWithAnImageEach) {
    std::atomic<int> good{0};
    const auto work = [&good](unsigned seed) {
        for (int i = 0; i < 200; ++i) {
            HANDLE image = nullptr;
            FILES_CreateImage(&image, 1);
            Bytes bytes = pattern(64, seed);
            FILES_SetImageElement(image, 0, 1, {seed, bytes.size(), bytes.data()});
            IMAGEELEMENT element{};
            Bytes back(64);
            element.Data = back.data();
            good += FILES_GetImageElement(image, 0, &element) == noError && element.dwAddress == seed && back == bytes;
            if (i % 2 == 0)
                FILES_DestroyImage(&image);
            else
                ::operator delete(image);
        }
    };
    std::vector<std::thread> threads;
    for (unsigned seed = 1; seed <= 4; ++seed)
        threads.emplace_back(work, seed);
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(good, 800);
}

// A process may end with images that nobody gave back.
TEST(Handles, OneThatIsHeldUntilTheEnd) {
    static HANDLE held = nullptr;
    ASSERT_EQ(FILES_CreateImage(&held, 1), noError);
    Bytes bytes = pattern(100);
    EXPECT_EQ(FILES_SetImageElement(held, 0, 1, {0, bytes.size(), bytes.data()}), noError);
}

} // namespace
