#include "tests/soak/pass_watch.h"
#include <gtest/gtest.h>

TEST(PassWatch, TimesFromOnePassToTheNext) {
    PassWatch watch;
    watch.setOn(true);
    for (const std::uint64_t atNs : {1000U, 1200U, 1900U}) watch.onPass(5, atNs);
    EXPECT_EQ(watch.threadId(), 5u);
    const BlockTimes gaps = watch.gaps().take();
    EXPECT_EQ(gaps.count(), 2u);
    EXPECT_EQ(gaps.worst(), 700u);
    EXPECT_EQ(watch.gaps().take().count(), 0u);
}

TEST(PassWatch, TimesNoGapAcrossABrokenConnection) {
    PassWatch watch;
    watch.setOn(true);
    watch.onPass(5, 1000);
    watch.setOn(false);
    watch.setOn(true);
    watch.onPass(5, 9'000'000);  // the first after the connection has come back
    watch.onPass(5, 9'000'200);
    const BlockTimes gaps = watch.gaps().take();
    EXPECT_EQ(gaps.count(), 1u);
    EXPECT_EQ(gaps.worst(), 200u);
}

TEST(PassWatch, TimesNothingWhileNoServerIsInFront) {
    PassWatch watch;
    watch.onPass(5, 1000);
    watch.onPass(5, 2000);
    watch.setOn(true);
    watch.onPass(5, 9000);  // the one before found no server yet
    EXPECT_EQ(watch.gaps().take().count(), 0u);
    EXPECT_EQ(watch.threadId(), 5u);
}

TEST(PassWatch, LeavesOutTheGapInWhichTheCollectorWasInTheWay) {
    PassWatch watch;
    watch.setOn(true);
    watch.onPass(5, 1000);
    watch.gaps().leaveOut();
    watch.onPass(5, 9000);
    watch.onPass(5, 9100);
    const BlockTimes gaps = watch.gaps().take();
    EXPECT_EQ(gaps.count(), 1u);
    EXPECT_EQ(gaps.worst(), 100u);
}
