#include "tests/soak/shared_times.h"
#include <gtest/gtest.h>

TEST(SharedTimes, AreTakenOnce) {
    SharedTimes times;
    times.add(times.begin(), 20);
    times.add(times.begin(), 30);
    const BlockTimes taken = times.take();
    EXPECT_EQ(taken.count(), 2u);
    EXPECT_EQ(taken.worst(), 30u);
    EXPECT_EQ(times.take().count(), 0u);
}

TEST(SharedTimes, LeaveOutWhatTheCollectorWasInTheWayOf) {
    SharedTimes times;
    const std::uint64_t running = times.begin();
    times.add(times.begin(), 1000);
    times.leaveOut();
    times.add(running, 2000);
    EXPECT_EQ(times.take().count(), 0u);
    times.add(times.begin(), 30);
    EXPECT_EQ(times.take().worst(), 30u);
}

// What takes longer than from one look to the next still counts.
TEST(SharedTimes, CountWhatBeganBeforeTheLastLook) {
    SharedTimes times;
    const std::uint64_t running = times.begin();
    EXPECT_EQ(times.take().count(), 0u);
    times.add(running, 2000);
    EXPECT_EQ(times.take().worst(), 2000u);
}
