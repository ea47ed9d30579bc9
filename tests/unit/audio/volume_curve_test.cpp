#include "audio/volume_curve.h"
#include <gtest/gtest.h>
#include <cmath>

TEST(VolumeCurve, IsLinearToUnityAt80AndThenAThirdOfADecibelAPercentToPlus6) {
    const struct {
        double percent, gain;
    } rows[] = {{0, 0.0},           {1, 0.0125},        {8, 0.1},           {20, 0.25},
                {40, 0.5},          {60, 0.75},         {79, 0.9875},       {80, 1.0},
                {81, 1.0351421667}, {90, 1.4125375446}, {95, 1.6788040181}, {100, 1.9952623150}};
    for (const auto& row : rows) EXPECT_NEAR(percentToGain(row.percent), row.gain, 1e-10) << row.percent;
    EXPECT_EQ(percentToGain(80.0), 1.0);
    EXPECT_NEAR(20.0 * std::log10(percentToGain(100.0)), 6.0, 1e-12);
    EXPECT_NEAR(20.0 * std::log10(percentToGain(85.0)), 1.5, 1e-12);
}

TEST(VolumeCurve, ClampsToItsHundredPercent) {
    EXPECT_EQ(percentToGain(-0.001), 0.0);
    EXPECT_EQ(percentToGain(-1e300), 0.0);
    EXPECT_EQ(percentToGain(100.001), percentToGain(100.0));
    EXPECT_EQ(percentToGain(1e300), percentToGain(100.0));
}

TEST(VolumeCurve, RisesAtEveryStepWithoutAJump) {
    for (int tenth = 1; tenth <= 1000; tenth++) {
        const double before = percentToGain((tenth - 1) / 10.0);
        const double now = percentToGain(tenth / 10.0);
        EXPECT_GT(now, before) << tenth;
        EXPECT_LT(now - before, 0.008) << tenth;
    }
}
