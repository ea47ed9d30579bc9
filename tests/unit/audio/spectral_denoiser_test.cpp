#include "audio/spectral_denoiser.h"
#include <emmintrin.h>
#include <gtest/gtest.h>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <numeric>
#include <random>
#include <string>
#include <vector>
#include "tests/reference/plain_denoiser.h"

namespace {

using Samples = std::vector<float>;
using Flags = std::vector<std::uint8_t>;

constexpr double kTau = 6.283185307179586;
constexpr int kLag = 2 * kDenoiserHop - 1;  // samples: a frame's first output is returned by the call that ends it

// Flush-to-zero and denormals-are-zero for a scope, as in the voice hooks.
class FlushDenormals {
  public:
    explicit FlushDenormals(bool on) : before_(_mm_getcsr()) {
        if (on) _mm_setcsr(before_ | 0x8040U);
    }
    ~FlushDenormals() { _mm_setcsr(before_); }
    FlushDenormals(const FlushDenormals&) = delete;
    FlushDenormals& operator=(const FlushDenormals&) = delete;

  private:
    unsigned before_;
};

std::uint32_t bitsOf(float x) {
    std::uint32_t bits = 0;
    std::memcpy(&bits, &x, sizeof bits);
    return bits;
}

Samples noise(int n, float amplitude, unsigned seed) {
    std::mt19937 random(seed);
    Samples x(n);
    for (float& v : x) v = std::trunc(amplitude * (static_cast<float>(random() % 65536) / 32768.0f - 1.0f));
    return x;
}

// Whole periods per hop, so that every frame sees the same magnitudes: a steady tone of 8 / 128 of the sample rate.
Samples steadyTone(int n, float amplitude) {
    Samples x(n);
    for (int i = 0; i < n; i++) x[i] = static_cast<float>(amplitude * std::sin(kTau * 8 * i / kDenoiserHop));
    return x;
}

// A buzz with formants, in syllables of 180 ms with pauses between, over quiet noise; silence after 0.8 of it.
Samples speechThenSilence(int n) {
    Samples x = noise(n, 40.0f, 5);
    for (int i = 0; i < n; i++) {
        const double t = i / 48000.0;
        const double syllable = std::max(0.0, std::sin(kTau * t / 0.36));
        double buzz = 0.0;
        for (int h = 1; h < 24; h++) buzz += std::sin(kTau * 118.0 * h * t) / (1.0 + 0.02 * (h - 6) * (h - 6));
        x[i] = i < n * 4 / 5 ? std::trunc(x[i] + static_cast<float>(2500.0 * syllable * buzz)) : 0.0f;
    }
    return x;
}

Samples impulses(int n) {
    Samples x(n, 0.0f);
    for (int i = 0; i < n; i += 331) x[i] = i % 2 == 0 ? 32767.0f : -32768.0f;
    return x;
}

struct Signal {
    const char* name;
    Samples x;
};
std::vector<Signal> signals() {
    constexpr int n = 24000;  // 0.5 s
    std::vector<Signal> all = {{"speech then silence", speechThenSilence(n)},
                               {"noise", noise(n, 3000.0f, 1)},
                               {"full-scale noise", noise(n, 32768.0f, 2)},
                               {"tone", steadyTone(n, 8000.0f)},
                               {"impulses", impulses(n)},
                               {"silence", Samples(n, 0.0f)},
                               {"negative silence", Samples(n, -0.0f)},
                               {"steady", Samples(n, -32768.0f)}};
    Samples square(n), tiny = noise(n, 1000.0f, 3), bursts = noise(n, 20000.0f, 4);
    for (int i = 0; i < n; i++) {
        square[i] = i % 96 < 48 ? 32767.0f : -32768.0f;
        tiny[i] *= 1e-38f;
        if (i % 5000 > 1500) bursts[i] = std::trunc(bursts[i] * 0.001f);
    }
    all.push_back({"square", square});
    all.push_back({"tiny", tiny});
    all.push_back({"bursts", bursts});
    return all;
}

struct FlagPattern {
    const char* name;
    Flags flags;
};
std::vector<FlagPattern> flagPatterns(const Samples& x) {
    const std::size_t n = x.size();
    std::mt19937 random(7);
    Flags loud(n), each(n), runs(n);
    std::uint8_t now = 0;
    for (std::size_t i = 0; i < n; i++) {
        if (random() % 400 == 0) now ^= 1U;
        loud[i] = std::fabs(x[i]) > 300.0f;
        each[i] = random() % 100 < 30;
        runs[i] = now;
    }
    return {{"speech", Flags(n, 1)}, {"pause", Flags(n, 0)}, {"loud", loud}, {"each", each}, {"runs", runs}};
}

Samples denoised(SpectralDenoiser& state, const Samples& x, const Flags& flags) {
    EXPECT_EQ(x.size(), flags.size());
    Samples y(x.size());
    for (std::size_t i = 0; i < std::min(x.size(), flags.size()); i++) y[i] = denoiseSample(state, x[i], flags[i] != 0);
    return y;
}

Samples plainDenoised(const Samples& x, const Flags& flags) {
    PlainDenoiser state;
    Samples y(x.size());
    for (std::size_t i = 0; i < x.size(); i++) y[i] = denoisePlainSample(state, x[i], flags[i] != 0);
    return y;
}

// In runs of random lengths, with the flags given after the samples.
Samples denoisedInRuns(SpectralDenoiser& state, const Samples& x, const Flags& flags, unsigned seed) {
    std::mt19937 random(seed);
    Samples y(x.size());
    std::size_t i = 0;
    while (i < x.size()) {
        const int left = static_cast<int>(x.size() - i);
        const int limit = std::min(samplesBeforeFrame(state), left);
        const int n = random() % 3 == 0 ? limit : static_cast<int>(random() % (limit + 1));
        takeRun(state, &x[i], &y[i], n);
        trackSpeech(state, &flags[i], n);
        i += n;
        if (n == limit && i < x.size()) {
            y[i] = denoiseSample(state, x[i], flags[i] != 0);
            i++;
        }
    }
    return y;
}

void expectSameBits(const Samples& got, const Samples& wanted) {
    ASSERT_EQ(got.size(), wanted.size());
    for (std::size_t i = 0; i < got.size(); i++)
        ASSERT_EQ(bitsOf(got[i]), bitsOf(wanted[i])) << "sample " << i << ": " << got[i] << ", not " << wanted[i];
}

double rms(const Samples& x, std::size_t from) {
    const double sum = std::inner_product(x.begin() + from, x.end(), x.begin() + from, 0.0);
    return std::sqrt(sum / static_cast<double>(x.size() - from));
}

double gainDb(const Samples& in, const Samples& out, std::size_t from) {
    return 20.0 * std::log10(rms(out, from) / rms(in, from));
}

}  // namespace

TEST(SpectralDenoiser, GivesThePlainOnesSamplesToTheLastBit) {
    for (const bool flush : {false, true}) {
        for (const Signal& signal : signals()) {
            for (const FlagPattern& pattern : flagPatterns(signal.x)) {
                SCOPED_TRACE(std::string(signal.name) + ", " + pattern.name + (flush ? ", flushing" : ""));
                const FlushDenormals scope(flush);
                SpectralDenoiser state;
                expectSameBits(denoised(state, signal.x, pattern.flags), plainDenoised(signal.x, pattern.flags));
                if (HasFatalFailure()) return;
            }
        }
    }
}

TEST(SpectralDenoiser, LearnsWhatThePlainOneLearns) {
    const Samples x = speechThenSilence(48000);
    const Flags flags = flagPatterns(x)[2].flags;
    SpectralDenoiser state;
    PlainDenoiser plain;
    for (std::size_t i = 0; i < x.size(); i++) {
        denoiseSample(state, x[i], flags[i] != 0);
        denoisePlainSample(plain, x[i], flags[i] != 0);
        ASSERT_EQ(bitsOf(state.speechPresence), bitsOf(plain.speechPresence)) << i;
        ASSERT_EQ(state.outputCount, plain.outputCount) << i;
    }
    for (int k = 0; k < kDenoiserBins; k++) {
        EXPECT_EQ(bitsOf(state.noise[k]), bitsOf(plain.noise[k])) << k;
        EXPECT_EQ(bitsOf(state.gains[k]), bitsOf(plain.gains[k])) << k;
    }
}

TEST(SpectralDenoiser, GivesTheSameSamplesInRunsOfAnyLength) {
    for (const bool flush : {false, true}) {
        for (const Signal& signal : signals()) {
            for (const FlagPattern& pattern : flagPatterns(signal.x)) {
                SCOPED_TRACE(std::string(signal.name) + ", " + pattern.name + (flush ? ", flushing" : ""));
                const FlushDenormals scope(flush);
                SpectralDenoiser each, runs;
                const Samples wanted = denoised(each, signal.x, pattern.flags);
                expectSameBits(denoisedInRuns(runs, signal.x, pattern.flags, 11), wanted);
                EXPECT_EQ(bitsOf(runs.speechPresence), bitsOf(each.speechPresence));
                if (HasFatalFailure()) return;
            }
        }
    }
}

TEST(SpectralDenoiser, RunsEndBeforeEvery128thCall) {
    SpectralDenoiser state;
    for (int i = 0; i < 1000; i++) {
        EXPECT_EQ(samplesBeforeFrame(state), 127 - i % 128);
        denoiseSample(state, 0.0f, false);
    }
}

// The 128th call runs the first frame and returns its first sample, which is nothing but rounding: the frame's first
// half is the silence before the signal.
TEST(SpectralDenoiser, Returns0ForTheFirst128Samples) {
    const Samples x = noise(1000, 32768.0f, 9);
    SpectralDenoiser state;
    for (int i = 0; i < 127; i++) EXPECT_EQ(denoiseSample(state, x[i], true), 0.0f) << i;
    EXPECT_NEAR(denoiseSample(state, x[127], true), 0.0f, 0.01f);
    EXPECT_EQ(state.outputCount, 127);
}

// One hop until the first frame, whose first half lies before the signal: the signal itself comes out 255 samples late.
TEST(SpectralDenoiser, ReturnsUnlearnedSpeechAsItWasAfter255Samples) {
    const Samples x = noise(20000, 32768.0f, 9);
    SpectralDenoiser state;
    const Samples y = denoised(state, x, Flags(x.size(), 1));
    for (int i = 0; i < kLag; i++) ASSERT_NEAR(y[i], 0.0f, 0.02f) << i;
    for (std::size_t i = kLag; i < x.size(); i++) ASSERT_NEAR(y[i], x[i - kLag], 0.15f) << i;
}

TEST(SpectralDenoiser, NeverSuppressesInTheFirstFrame) {
    const Samples x = noise(kDenoiserHop, 5000.0f, 10);
    SpectralDenoiser state;
    denoised(state, x, Flags(x.size(), 0));
    EXPECT_LT(state.speechPresence, 0.3f);
    EXPECT_TRUE(state.hasNoiseEstimate);
    for (int k = 0; k < kDenoiserBins; k++) {
        EXPECT_EQ(state.gains[k], 1.0f) << k;
        EXPECT_EQ(state.noise[k], 0.0f) << k;
    }
}

TEST(SpectralDenoiser, BringsASteadyToneDownBy16Point5DbInPauses) {
    const Samples x = steadyTone(48000, 10000.0f);
    SpectralDenoiser state;
    const Samples y = denoised(state, x, Flags(x.size(), 0));
    EXPECT_NEAR(gainDb(x, y, 24000), 20.0 * std::log10(0.15), 0.05);
}

TEST(SpectralDenoiser, BringsSteadyNoiseDownByNearly16Point5DbInPauses) {
    const Samples x = noise(96000, 2000.0f, 12);
    SpectralDenoiser state;
    const Samples y = denoised(state, x, Flags(x.size(), 0));
    EXPECT_LT(gainDb(x, y, 24000), -14.5);  // a little above the floor: the bins of noise are not steady
    EXPECT_GT(gainDb(x, y, 24000), -16.5);
}

TEST(SpectralDenoiser, LearnsSteadyNoiseWithin20Frames) {
    const Samples x = steadyTone(20 * kDenoiserHop, 10000.0f);
    SpectralDenoiser state;
    denoised(state, x, Flags(x.size(), 0));
    EXPECT_NEAR(state.gains[16], 0.15f, 0.01f);  // bin 16 of 256 is the tone
}

TEST(SpectralDenoiser, BringsLearnedNoiseDownBy9DbUnderSpeech) {
    const Samples x = steadyTone(96000, 10000.0f);
    Flags flags(x.size(), 0);
    std::fill(flags.begin() + 24000, flags.end(), std::uint8_t{1});
    SpectralDenoiser state;
    const Samples y = denoised(state, x, flags);
    EXPECT_NEAR(gainDb(x, y, 72000), 20.0 * std::log10(0.35), 0.05);
}

TEST(SpectralDenoiser, OnlyLowersTheNoiseEstimateDuringSpeech) {
    const Samples loud = noise(24000, 8000.0f, 13), quiet = noise(24000, 500.0f, 14);
    SpectralDenoiser state;
    denoised(state, quiet, Flags(quiet.size(), 0));
    trackSpeech(state, Flags(100, 1).data(), 100);  // until speechPresence follows
    auto before = state.noise;
    denoised(state, loud, Flags(loud.size(), 1));
    for (int k = 0; k < kDenoiserBins; k++) EXPECT_LE(state.noise[k], before[k]) << k;
    denoised(state, loud, Flags(loud.size(), 0));
    before = state.noise;
    denoised(state, quiet, Flags(quiet.size(), 1));
    for (int k = 0; k < kDenoiserBins; k++) EXPECT_LT(state.noise[k], before[k] * 0.5f) << k;
}

// With every second flag set the presence is about one half, with every fifth about one fifth. Only a pause teaches.
TEST(SpectralDenoiser, TakesAFlickeringFlagForSpeechAbove30Percent) {
    const struct {
        int every;
        bool speech;
    } rows[] = {{2, true}, {3, true}, {4, false}, {5, false}};
    for (const auto& row : rows) {
        const Samples x = noise(24000, 8000.0f, 15);
        Flags flags(x.size());
        for (std::size_t i = 0; i < flags.size(); i++) flags[i] = i % row.every == 0;
        SpectralDenoiser state;
        denoised(state, x, flags);
        EXPECT_NEAR(state.speechPresence, 1.0f / static_cast<float>(row.every), 0.02f) << row.every;
        const bool learned = *std::max_element(state.noise.begin(), state.noise.end()) > 0.0f;
        EXPECT_EQ(learned, !row.speech) << row.every;
    }
}

TEST(SpectralDenoiser, FollowsTheFlagByTwoPercentASample) {
    SpectralDenoiser state;
    for (int i = 1; i <= 100; i++) {
        denoiseSample(state, 0.0f, false);
        EXPECT_NEAR(state.speechPresence, std::pow(0.98, i), 1e-5) << i;
    }
    const float low = state.speechPresence;
    denoiseSample(state, 0.0f, true);
    EXPECT_NEAR(state.speechPresence, low + (1.0f - low) * 0.02f, 1e-6);
}

// A frame with a presence of exactly 0.3 is a pause; with the next higher float it is speech.
TEST(SpectralDenoiser, TakesAPresenceOfExactly30PercentForAPause) {
    const float above = std::nextafter(0.3f, 1.0f);
    for (const float wanted : {0.3f, above}) {
        SpectralDenoiser state;
        const Samples x = noise(2 * kDenoiserHop, 8000.0f, 16);
        for (int i = 0; i < 2 * kDenoiserHop - 1; i++) denoiseSample(state, x[i], true);
        float before = 0.2857f;  // find the presence that the next flag lifts to wanted
        while (before + (1.0f - before) * 0.02f < wanted) before = std::nextafter(before, 1.0f);
        ASSERT_EQ(before + (1.0f - before) * 0.02f, wanted);
        state.speechPresence = before;
        denoiseSample(state, x.back(), true);
        EXPECT_EQ(state.noise[40] > 0.0f, wanted == 0.3f);
    }
}

TEST(SpectralDenoiser, LowersBinsWithNothingInThemToTheFloor) {
    const struct {
        std::uint8_t speech;
        float floor;
    } rows[] = {{0, 0.15f}, {1, 0.35f}};
    for (const auto& row : rows) {
        SpectralDenoiser state;
        denoised(state, Samples(200 * kDenoiserHop, 0.0f), Flags(200 * kDenoiserHop, row.speech));
        for (const float gain : state.gains) EXPECT_NEAR(gain, row.floor, 1e-5);
    }
}

TEST(SpectralDenoiser, LetsASyllableInSlowlyAndTheNoiseOutFast) {
    const Samples x = steadyTone(20 * kDenoiserHop, 10000.0f);
    SpectralDenoiser state;
    denoised(state, Samples(200 * kDenoiserHop, 0.0f), Flags(200 * kDenoiserHop, 1));  // gains at 0.35, no noise
    denoised(state, Samples(x.begin(), x.begin() + kDenoiserHop), Flags(kDenoiserHop, 1));
    EXPECT_NEAR(state.gains[16], 0.35f + 0.65f * 0.0519f, 1e-5);
    denoised(state, x, Flags(x.size(), 1));
    EXPECT_NEAR(state.gains[16], 1.0f - 0.65f * std::pow(1.0f - 0.0519f, 21.0f), 1e-4);
    const float open = state.gains[16];
    denoised(state, Samples(2 * kDenoiserHop, 0.0f), Flags(2 * kDenoiserHop, 1));  // the second frame is all silence
    EXPECT_NEAR(state.gains[16], 0.35f + (open + (1.0f - open) * 0.0519f - 0.35f) * (1.0f - 0.413354f), 1e-4);
}

TEST(SpectralDenoiser, StartsOverAfterAResetLikeAFreshOne) {
    const Samples x = speechThenSilence(10000);
    const Flags flags = flagPatterns(x)[2].flags;
    SpectralDenoiser used, fresh;
    denoised(used, noise(12345, 32768.0f, 17), Flags(12345, 0));
    used = SpectralDenoiser{};
    expectSameBits(denoised(used, x, flags), denoised(fresh, x, flags));
}

TEST(SpectralDenoiser, KeepsSilenceSilentAndFullScaleFinite) {
    for (const Signal& signal : signals()) {
        SpectralDenoiser state;
        const bool silent = std::all_of(signal.x.begin(), signal.x.end(), [](float v) { return v == 0.0f; });
        const Samples y = denoised(state, signal.x, flagPatterns(signal.x)[3].flags);
        for (const float v : y) ASSERT_TRUE(silent ? v == 0.0f : std::fabs(v) < 2.0f * 32768.0f) << signal.name;
    }
}
