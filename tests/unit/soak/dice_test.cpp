#include "tests/soak/dice.h"
#include <gtest/gtest.h>
#include <set>
#include <string>

// The reference values of the algorithm's author for the seed 1234567.
TEST(Dice, ThrowTheSameNumbersEverywhere) {
    Dice dice(1234567);
    EXPECT_EQ(dice.next(), 6457827717110365317U);
    EXPECT_EQ(dice.next(), 3203168211198807973U);
    EXPECT_EQ(dice.next(), 9817491932198370423U);
}

TEST(Dice, StayWithinTheirBounds) {
    Dice dice(0);
    std::set<int> seen;
    for (int i = 0; i < 200; i++) seen.insert(dice.between(-2, 2));
    EXPECT_EQ(seen, (std::set<int>{-2, -1, 0, 1, 2}));
    EXPECT_EQ(dice.below(0), 0u);
    EXPECT_EQ(dice.below(1), 0u);
    EXPECT_TRUE(dice.isOneIn(1));
    const std::string letters = "ab";
    std::set<char> taken;
    for (int i = 0; i < 50; i++) taken.insert(dice.oneOf(letters));
    EXPECT_EQ(taken.size(), 2u);
}
