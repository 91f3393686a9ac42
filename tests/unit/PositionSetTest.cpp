// The set of selected positions against a plain list.
#include "PositionSet.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

#include "Seed.h"

namespace {

const std::vector<int> kAwkward = {0,
                                   1,
                                   63,
                                   64,
                                   99999,
                                   100000,
                                   (1 << 17) - 1,
                                   1 << 17,
                                   std::numeric_limits<int>::max(),
                                   -1,
                                   -64,
                                   std::numeric_limits<int>::min()};

TEST(PositionSet, HoldsAnyNumber) {
    kelp::PositionSet set;
    for (const int position : kAwkward) {
        EXPECT_FALSE(set.Contains(position)) << position;
        set.Insert(position);
        EXPECT_TRUE(set.Contains(position)) << position;
    }
    for (const int position : kAwkward) {
        set.Erase(position);
        EXPECT_FALSE(set.Contains(position)) << position;
    }
}

TEST(PositionSet, MatchesAListThatWasEmptiedOrFilledByItself) {
    kelp::PositionSet set;
    std::vector<int> list = {5, -3, 7};
    set.Match(list);
    EXPECT_TRUE(set.Contains(5) && set.Contains(-3) && set.Contains(7));
    EXPECT_FALSE(set.Contains(6));
    list.clear();
    set.Match(list);
    EXPECT_FALSE(set.Contains(5) || set.Contains(-3) || set.Contains(7));
}

TEST(PositionSet, AgreesWithAListAfterRandomSteps) {
    dcftest::Seed seed;
    SCOPED_TRACE(seed.Text());
    kelp::PositionSet set;
    std::vector<int> list;
    for (int step = 0; step < 3000; ++step) {
        const int position =
            seed.Chance(0.2) ? kAwkward[static_cast<std::size_t>(seed.Pick(0, 11))] : seed.Pick(-9, 90);
        const auto found = std::find(list.begin(), list.end(), position);
        ASSERT_EQ(found != list.end(), set.Contains(position)) << position << " at step " << step;
        if (found != list.end()) {
            list.erase(found);
            set.Erase(position);
        } else {
            list.push_back(position);
            set.Insert(position);
        }
        set.Match(list); // nothing to do
        if (seed.Chance(0.01)) {
            list.clear();
            set.Match(list);
        }
    }
}

} // namespace
