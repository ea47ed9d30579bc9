#include "tests/soak/progress.h"
#include <gtest/gtest.h>
#include <string>

TEST(SoakProgress, SaysWhatIsDoneAndCountsEachStepOfTheSameName) {
    Progress progress;
    EXPECT_EQ(progress.steps(), 0u);
    progress.at("keys");
    progress.at("keys");
    EXPECT_EQ(std::string(progress.deed()), "keys");
    EXPECT_EQ(progress.steps(), 2u);
}

TEST(SoakStandstill, IsFoundAfterSoManyLooksAtTheSameStep) {
    StandstillJudge judge(3);
    EXPECT_FALSE(judge.isStuck(0));
    EXPECT_FALSE(judge.isStuck(0));
    EXPECT_FALSE(judge.isStuck(0));
    EXPECT_TRUE(judge.isStuck(0));
}

TEST(SoakStandstill, IsNotFoundWhereSomethingGoesOnNowAndThen) {
    StandstillJudge judge(3);
    for (int look = 0; look < 100; look++) EXPECT_FALSE(judge.isStuck(static_cast<std::uint64_t>(look / 3))) << look;
    EXPECT_FALSE(judge.isStuck(40));
    EXPECT_FALSE(judge.isStuck(40));
    EXPECT_FALSE(judge.isStuck(40));
    EXPECT_TRUE(judge.isStuck(40));
}
