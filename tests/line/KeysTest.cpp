#include "line/view/Keys.h"

#include <set>

#include <gtest/gtest.h>

TEST(KeysTest, EachOf64NestsHasOne) {
    std::set<char> all;
    for (std::size_t nest = 0; nest < 64; ++nest) {
        all.insert(keyOfNest(nest));
        EXPECT_EQ(nestOfKey(keyOfNest(nest)), nest);
    }
    EXPECT_EQ(all.size(), 64U);
    EXPECT_EQ(keyOfNest(0), '1');
    EXPECT_EQ(keyOfNest(9), '0');
    for (const char key : {'\0', '\003', '\n', ' ', 'q' /* is the 27th */, '\x7F'})
        EXPECT_EQ(nestOfKey(key).has_value(), key == 'q');
    EXPECT_EQ(nestOfKey('q'), 26U);
}
