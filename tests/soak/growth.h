// growth.h - whether something grows: a line through many samples, and what of its slope is certain.
// The line is Theil's and Sen's, the median of the slopes between every two samples, with the limits of its confidence
// from Kendall's statistic. Not least squares: what is sampled here stands still, makes a step once in a while (a cache
// that is filled, a thread of the system's) and jumps out now and then. A single step or a few strays tilt a line of
// least squares, and its standard error, which believes in independent errors of one size, calls that certain; the
// median of all slopes stays where most samples are.
// Only samples of the same phase are compared, and their statistics added up, as Hirsch and Slack (1982) do with
// seasons: with a simulator there are a few more handles than without one, always, and that is neither growth nor
// noise. Pure functions. [any]
#pragma once
#include <span>

struct GrowthSample {
    double atSeconds = 0.0;  // ascending
    double value = 0.0;
    int phase = 0;
};

// Slopes per second. With too few samples for the confidence asked for, the limits are the flattest and the steepest
// slope of all; with fewer than kFewestSamples, or nothing to compare, all is 0 and unknown.
struct GrowthLine {
    double slope = 0.0;
    double lowest = 0.0;   // the true slope is below this in one of 200 runs,
    double highest = 0.0;  // and above this in one of 200, if the samples are independent of each other
    double spanSeconds = 0.0;
    bool isKnown = false;

    // By how much the value has grown for certain, from the first sample to the last.
    double certainGrowth() const { return lowest * spanSeconds; }
    // The most that may hide in the samples.
    double possibleGrowth() const { return highest * spanSeconds; }
};
inline constexpr int kFewestSamples = 12;

GrowthLine fitGrowth(std::span<const GrowthSample> samples);

// The later half of the samples: what came before was warm-up.
std::span<const GrowthSample> lastHalf(std::span<const GrowthSample> samples);
