#include "tests/soak/soak_sum.h"
#include <gtest/gtest.h>

TEST(SoakSum, AddsTimesAndBlocks) {
    SoakLine line;
    line.blocks.add(10'000);
    line.doneBlocks = 90;
    line.dueBlocks = 100;
    line.lateBlocks = 5;
    line.shapedBlocks = 45;
    line.uiAnswers.add(2'000'000);
    line.hostCalls.add(8'000);
    line.passGaps.add(200'000'000);
    SoakLine sum;
    addTimes(sum, line);
    addTimes(sum, line);
    EXPECT_EQ(timesTexts(sum),
              (std::vector<std::string>{
                  "voice blocks  us: p50 10.0, p99 10.0, p99.9 10.0, worst 10.0 of 2",
                  "real time     90.000 % of 200 blocks played, 5.000 % late, 50.000 % through the radio",
                  "ui answers    ms: p50 2.00, p99 2.00, p99.9 2.00, worst 2.00 of 2",
                  "events        ms: p50 0.008, p99 0.008, p99.9 0.008, worst 0.008 of 2",
                  "poll passes   ms from one to the next: p50 200.0, p99 200.0, p99.9 200.0, worst 200.0 of 2",
              }));
}

TEST(SoakSum, OfNothingIsNought) {
    EXPECT_EQ(timesTexts(SoakLine{})[1],
              "real time     0.000 % of 0 blocks played, 0.000 % late, 0.000 % through the radio");
}

TEST(SoakSum, NamesTheWorkThatWasNotDone) {
    const WorkCount work[] = {{"texts", 600}, {"dialogs", 0}, {"drags", 1}};
    EXPECT_EQ(workText(work), "done: 600 texts, 0 dialogs, 1 drags");
    EXPECT_EQ(undoneWork(work), std::vector<std::string>{"dialogs"});
    EXPECT_TRUE(undoneWork({}).empty());
}
