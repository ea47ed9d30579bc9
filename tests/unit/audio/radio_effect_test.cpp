#include "audio/radio_effect.h"
#include <emmintrin.h>
#include <gtest/gtest.h>
#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <cstring>
#include <memory>
#include <string>
#include <vector>
#include "audio/radio_effect_lanes.h"
#include "audio/radio_effect_noise.h"
#include "tests/reference/plain_radio_effect.h"
#include "tests/unit/audio/voice_blocks.h"

namespace {

using Samples = std::vector<short>;
constexpr double kPi = 3.14159265358979323846;
constexpr int kSecond = 48000;

// Turns denormals on or off in the processor's control word for a scope.
class Denormals {
  public:
    explicit Denormals(bool on) : control_(_mm_getcsr()) { _mm_setcsr(on ? control_ & ~kOff : control_ | kOff); }
    ~Denormals() { _mm_setcsr(control_); }
    Denormals(const Denormals&) = delete;
    Denormals& operator=(const Denormals&) = delete;

  private:
    static constexpr unsigned kOff = 0x8040;
    unsigned control_;
};

struct Mode {
    int channels;
    bool hiss;
    bool predenoise;
};

const std::vector<Mode> kModes = {{1, false, false}, {1, true, false}, {1, false, true}, {1, true, true},
                                  {2, false, false}, {2, true, false}, {2, false, true}, {2, true, true}};

std::string nameOf(const Mode& m) {
    return std::to_string(m.channels) + " channels, hiss " + std::to_string(m.hiss) + ", predenoise " +
           std::to_string(m.predenoise);
}

// Everything a microphone can deliver, one after the other.
Samples everySound(int perSound) {
    VoiceBlocks blocks(7);
    Samples all;
    for (const Sound sound : {Sound::kSpeech, Sound::kSilence, Sound::kRoomNoise, Sound::kTone, Sound::kSpeech,
                              Sound::kFullScaleSquare, Sound::kSilence, Sound::kImpulses, Sound::kFullScaleNoise}) {
        const Samples part = blocks.take(sound, perSound);
        all.insert(all.end(), part.begin(), part.end());
    }
    for (int i = 0; i < perSound; i++) all.push_back(i < perSound / 2 ? short{-20000} : short{20000});  // step
    for (int i = 0; i < perSound; i++) all.push_back(i / 3000 % 2 == 0 ? short{0} : all[static_cast<std::size_t>(i)]);
    return all;
}

// In blocks of the given length; 0: of random lengths.
template <class Apply>
Samples inBlocks(Samples x, int length, Apply apply) {
    VoiceBlocks lengths(3);
    for (std::size_t i = 0; i < x.size();) {
        const auto wanted = static_cast<std::size_t>(length > 0 ? length : 1 + static_cast<int>(lengths.below(2500)));
        const std::size_t n = std::min(wanted, x.size() - i);
        apply(x.data() + i, static_cast<int>(n));
        i += n;
    }
    return x;
}

Samples fast(const Samples& x, int length, const Mode& m, RadioEffectState& state) {
    return inBlocks(x, length,
                    [&](short* block, int n) { applyRadioEffect(block, n, m.channels, state, m.hiss, m.predenoise); });
}
Samples fast(const Samples& x, int length, const Mode& m) {
    const auto state = std::make_unique<RadioEffectState>();
    return fast(x, length, m, *state);
}
Samples plain(const Samples& x, int length, const Mode& m, PlainRadioEffectState& state) {
    return inBlocks(x, length, [&](short* block, int n) {
        plainApplyRadioEffect(block, n, m.channels, state, m.hiss, m.predenoise);
    });
}

std::size_t firstDifference(const Samples& a, const Samples& b) {
    return static_cast<std::size_t>(std::mismatch(a.begin(), a.end(), b.begin()).first - a.begin());
}

template <class Channel>
std::array<float, 27> memoryOf(const Channel& c) {
    return {c.highPassIn[0],  c.highPassIn[1],  c.highPassIn[2], c.highPassIn[3], c.highPassOut[0], c.highPassOut[1],
            c.highPassOut[2], c.highPassOut[3], c.lowPass[0],    c.lowPass[1],    c.lowPass[2],     c.lowPass[3],
            c.resonance1,     c.resonance2,     c.peakX1,        c.peakX2,        c.peakY1,         c.peakY2,
            c.level,          c.gateGain,       c.floor,         c.burstGain,     c.hissIn,         c.hissHighPass,
            c.hissLowPass1,   c.hissLowPass2,   c.dcX1};
}

void expectSameMemory(const RadioEffectState& a, const PlainRadioEffectState& b, const std::string& what) {
    EXPECT_EQ(a.hissState, b.hissState) << what;
    for (std::size_t s = 0; s < 2; s++) {
        const auto mine = memoryOf(a.channels[s]);
        const auto theirs = memoryOf(b.channels[s]);
        EXPECT_EQ(std::memcmp(mine.data(), theirs.data(), sizeof mine), 0) << what;  // signs of zeros too
        EXPECT_EQ(a.channels[s].dcY1, b.channels[s].dcY1) << what;
        EXPECT_EQ(a.channels[s].burstArmed, b.channels[s].burstArmed) << what;
        EXPECT_EQ(a.channels[s].voice, b.channels[s].voice) << what;
        EXPECT_EQ(a.channels[s].denoiser.speechPresence, b.channels[s].denoiser.speechPresence) << what;
    }
}

double rms(const Samples& x, std::size_t from, std::size_t to) {
    double sum = 0.0;
    for (std::size_t i = from; i < to; i++) sum += static_cast<double>(x[i]) * x[i];
    return std::sqrt(sum / static_cast<double>(to - from));
}

Samples tone(double hz, double amplitude, int n) {
    Samples x;
    for (int i = 0; i < n; i++)
        x.push_back(static_cast<short>(std::lround(amplitude * std::sin(2 * kPi * hz * i / kSecond))));
    return x;
}

double decibels(double ratio) {
    return 20.0 * std::log10(ratio);
}

// A tone so quiet that the level stays below the compressor's knee, the make-up gain at its limit and the saturation
// nearly linear: such tones differ only by the filters. Measured before the noise floor has risen to the tone.
double quietToneDb(double hz) {
    const Samples y = fast(tone(hz, 40.0, kSecond / 2), 960, {1, false, false});
    return decibels(rms(y, kSecond / 4, kSecond / 2) / (40.0 / std::sqrt(2.0)));
}

// The filters' own gain at hz, from their poles and zeros.
double designDb(double hz) {
    const double w = 2 * kPi * hz / kSecond;
    const std::complex<double> z = std::polar(1.0, -w);
    const auto highPass = std::pow((1.0 - z) / (1.0 - 0.9585918 * z), 4);
    const auto lowPass = std::pow(0.30685714 / (1.0 - 0.69314286 * z), 4);
    const auto resonance = 1.0 + 1.1 / (1.0 - 1.8803079 * z + 0.9409 * z * z);
    const auto peak = (0.9799019 - 1.8831465 * z + 0.9111779 * z * z) / (1.0 - 1.8831465 * z + 0.8910797 * z * z);
    return decibels(std::abs(highPass * lowPass * resonance * peak));
}

}  // namespace

TEST(RadioEffect, GivesTheSamplesOfThePlainOneInEveryModeAndSplit) {
    const Samples sounds = everySound(6000);
    for (const bool denormals : {false, true}) {
        const Denormals guard(denormals);
        for (const Mode& m : kModes) {
            const auto plainState = std::make_unique<PlainRadioEffectState>();
            const Samples expected = plain(sounds, static_cast<int>(sounds.size()) / 2 * 2, m, *plainState);
            for (const int length : {160, 480, 960, 1920, 4096}) {
                const auto state = std::make_unique<RadioEffectState>();
                const Samples y = fast(sounds, length, m, *state);
                EXPECT_EQ(firstDifference(y, expected), y.size()) << nameOf(m) << ", blocks of " << length;
                expectSameMemory(*state, *plainState, nameOf(m));
            }
        }
    }
}

// After an odd block the next one starts with slot 0 again, so in stereo the split is part of the input.
TEST(RadioEffect, GivesTheSamplesOfThePlainOneInOddAndShortBlocks) {
    const Samples sounds = everySound(3000);
    for (const bool denormals : {false, true}) {
        const Denormals guard(denormals);
        for (const Mode& m : kModes)
            for (const int length : {1, 2, 3, 5, 6, 7, 8, 9, 17, 333, 0}) {
                const auto state = std::make_unique<RadioEffectState>();
                const auto plainState = std::make_unique<PlainRadioEffectState>();
                const Samples expected = plain(sounds, length, m, *plainState);
                const Samples y = fast(sounds, length, m, *state);
                EXPECT_EQ(firstDifference(y, expected), y.size()) << nameOf(m) << ", blocks of " << length;
                expectSameMemory(*state, *plainState, nameOf(m));
            }
    }
}

TEST(RadioEffect, GivesTheSamplesOfThePlainOneWhileTheSwitchesChange) {
    const Samples sounds = everySound(6000);
    VoiceBlocks random(11);
    const auto state = std::make_unique<RadioEffectState>();
    const auto plainState = std::make_unique<PlainRadioEffectState>();
    for (std::size_t i = 0; i < sounds.size();) {
        const std::size_t n = std::min<std::size_t>(1 + random.below(1500), sounds.size() - i);
        const Mode m = kModes[random.below(8)];
        Samples y(sounds.begin() + static_cast<std::ptrdiff_t>(i), sounds.begin() + static_cast<std::ptrdiff_t>(i + n));
        Samples expected = y;
        applyRadioEffect(y.data(), static_cast<int>(n), m.channels, *state, m.hiss, m.predenoise);
        plainApplyRadioEffect(expected.data(), static_cast<int>(n), m.channels, *plainState, m.hiss, m.predenoise);
        ASSERT_EQ(y, expected) << nameOf(m) << " at " << i;
        i += n;
    }
    expectSameMemory(*state, *plainState, "switching");
}

// Everything decays to its smallest values.
TEST(RadioEffect, GivesTheSamplesOfThePlainOneLongIntoSilence) {
    Samples x = VoiceBlocks(5).take(Sound::kSpeech, kSecond);
    x.resize(20 * kSecond);
    for (const bool denormals : {false, true}) {
        const Denormals guard(denormals);
        const auto state = std::make_unique<RadioEffectState>();
        const auto plainState = std::make_unique<PlainRadioEffectState>();
        const Mode m{1, false, false};
        EXPECT_EQ(fast(x, 960, m, *state), plain(x, 960, m, *plainState));
        expectSameMemory(*state, *plainState, "silence");
    }
}

TEST(RadioEffect, TurnsZerosIntoZerosWithoutHissAndShutsTheGateToItsRest) {
    const auto state = std::make_unique<RadioEffectState>();
    EXPECT_EQ(fast(Samples(2 * kSecond), 960, {1, false, false}, *state), Samples(2 * kSecond));
    EXPECT_NEAR(state->channels[0].gateGain, 0.06f, 1e-6f);
    EXPECT_EQ(state->channels[0].lowPass[3], 0.0f);
    EXPECT_EQ(state->channels[0].level, 0.0f);
    EXPECT_FALSE(state->channels[0].voice);
    const auto plainState = std::make_unique<PlainRadioEffectState>();
    plain(Samples(2 * kSecond), 960, {1, false, false}, *plainState);
    expectSameMemory(*state, *plainState, "zeros");
}

TEST(RadioEffect, TurnsZerosIntoBandLimitedNoiseWithHiss) {
    const Samples y = fast(Samples(4 * kSecond), 960, {1, true, false});
    // Uniform noise of RMS 0.577 through the hiss filters, 1300 * 1.5 times that, 2.36 through the saturation's start.
    double power = 0.0;
    const int steps = 4800;
    for (int i = 0; i < steps; i++) {
        const std::complex<double> z = std::polar(1.0, -kPi * (i + 0.5) / steps);
        const auto low = 0.3247681 / (1.0 - 0.6752319 * z);
        power += std::norm((1.0 - z) / (1.0 - 0.96221393 * z) * low * low) / steps;
    }
    const double expected = std::sqrt(power / 3.0) * 1300.0 * 1.5 * 2.36;
    EXPECT_NEAR(decibels(rms(y, kSecond, y.size()) / expected), 0.0, 0.5);  // the bend takes a little
    // Little of it is below 100 Hz and above 12 kHz: the energy of single bins, compared with one in the middle.
    const auto binDb = [&](double hz) {
        double sum = 0.0;
        for (int part = 0; part < 40; part++) {
            std::complex<double> bin;
            for (int i = 0; i < 4800; i++)
                bin += static_cast<double>(y[static_cast<std::size_t>(part * 4800 + i)]) *
                       std::polar(1.0, -2 * kPi * hz * i / kSecond);
            sum += std::norm(bin);
        }
        return 10.0 * std::log10(sum);
    };
    EXPECT_LT(binDb(50.0), binDb(1000.0) - 10.0);
    EXPECT_LT(binDb(15000.0), binDb(1000.0) - 20.0);
}

TEST(RadioEffect, HissesOneAndAHalfTimesAsLoudInAPauseAsAtFullLevel) {
    const auto hissBeside = [](double level) {
        const auto state = std::make_unique<RadioEffectState>();
        state->channels[0].level = static_cast<float>(level);
        const Samples y = fast(Samples(480), 480, {1, true, false}, *state);
        return rms(y, 100, 480);
    };
    EXPECT_NEAR(hissBeside(0.0) / hissBeside(20000.0), 1.5, 0.03);
}

TEST(RadioEffect, OpensTheGateWithinAFewSamplesAndDipsTheLevelFor150Ms) {
    const auto state = std::make_unique<RadioEffectState>();
    fast(Samples(kSecond), 960, {1, false, false}, *state);
    const RadioChannel& c = state->channels[0];
    EXPECT_TRUE(c.burstArmed);
    Samples x = tone(1000.0, 12000.0, kSecond);
    int opened = -1;
    int samples = 0;
    for (; samples < 200 && c.burstArmed; samples++) {
        applyRadioEffect(&x[static_cast<std::size_t>(samples)], 1, 1, *state, false, false);
        if (opened < 0 && c.voice) opened = samples;
    }
    ASSERT_GE(opened, 0);
    EXPECT_LE(samples - opened, 4);  // 0.06, 0.39, 0.60: above one half in the second step
    EXPECT_NEAR(c.burstGain, 0.72, 0.0001);
    applyRadioEffect(&x[static_cast<std::size_t>(samples)], 7200, 1, *state, false, false);
    EXPECT_NEAR(c.burstGain, 1.0 - 0.28 * std::exp(-1.0), 0.001);  // one time constant: 150 ms
}

TEST(RadioEffect, DipsAgainOnlyAfterTheGateHasAllButShut) {
    const auto dipsAfterPause = [](int pause) {
        const auto state = std::make_unique<RadioEffectState>();
        const Mode m{1, false, false};
        fast(Samples(kSecond), 960, m, *state);
        fast(tone(1000.0, 12000.0, kSecond), 960, m, *state);
        const RadioChannel& c = state->channels[0];
        fast(Samples(static_cast<std::size_t>(pause)), 960, m, *state);
        const float gate = c.gateGain;
        fast(tone(1000.0, 12000.0, 200), 960, m, *state);
        EXPECT_GT(c.gateGain, 0.9f);
        EXPECT_EQ(c.burstGain < 0.8f, gate < 0.25f) << pause;
        return c.burstGain < 0.8f;
    };
    EXPECT_FALSE(dipsAfterPause(600));
    EXPECT_TRUE(dipsAfterPause(4000));
}

TEST(RadioEffect, StaysFiniteAtFullScale) {
    for (const Mode& m : kModes)
        for (const Sound sound : {Sound::kFullScaleSquare, Sound::kFullScaleNoise, Sound::kImpulses}) {
            const auto state = std::make_unique<RadioEffectState>();
            const Samples y = fast(VoiceBlocks(9).take(sound, kSecond), 960, m, *state);
            EXPECT_GT(rms(y, kSecond / 2, kSecond), 100.0) << nameOf(m);
            for (const RadioChannel& c : state->channels)
                for (const float x : memoryOf(c)) EXPECT_TRUE(std::isfinite(x)) << nameOf(m);
        }
}

TEST(RadioEffect, LimitsFullScaleAndNeverWrapsAround) {
    const Mode m{1, false, false};
    const Samples loud = fast(tone(1000.0, 32767.0, kSecond), 960, m);
    const Samples soft = fast(tone(1000.0, 3276.7, kSecond), 960, m);
    const double rise = decibels(rms(loud, kSecond / 2, kSecond) / rms(soft, kSecond / 2, kSecond));
    EXPECT_GT(rise, 0.0);
    EXPECT_LT(rise, 12.0);  // for 20 dB more at the input
    for (const Samples& y : {loud, fast(tone(1900.0, 32767.0, kSecond), 960, m)})
        for (std::size_t i = 1; i < y.size(); i++) ASSERT_LT(std::abs(y[i] - y[i - 1]), 50000) << i;
}

TEST(RadioEffect, UsesSlot0AloneBelowTwoChannelsAndAlternatesFromTwoOn) {
    const Samples x = VoiceBlocks(2).take(Sound::kSpeech, 4800);
    for (const int channels : {-1, 0, 1}) {
        const auto state = std::make_unique<RadioEffectState>();
        EXPECT_EQ(fast(x, 960, {channels, true, false}, *state), fast(x, 960, {1, true, false}));
        EXPECT_EQ(state->channels[1].level, 0.0f);
    }
    EXPECT_EQ(fast(x, 960, {6, true, true}), fast(x, 960, {2, true, true}));
    // Each slot hears only its own values.
    Samples even, odd, both;
    for (std::size_t i = 0; i < x.size(); i++) (i % 2 == 0 ? even : odd).push_back(x[i]);
    const Samples y = fast(x, 960, {2, false, true});
    const Samples left = fast(even, 480, {1, false, true});
    const Samples right = fast(odd, 480, {1, false, true});
    for (std::size_t i = 0; i < left.size(); i++) both.insert(both.end(), {left[i], right[i]});
    EXPECT_EQ(y, both);
}

TEST(RadioEffect, HearsNothingOfTheFirst128ValuesBehindTheDenoiser) {
    Samples x = VoiceBlocks(4).take(Sound::kFullScaleNoise, 4800);
    const Samples y = fast(x, 960, {1, false, true});
    EXPECT_EQ(Samples(y.begin(), y.begin() + 127), Samples(127));
    EXPECT_GT(rms(y, 256, 512), 100.0);
    const Samples direct = fast(x, 960, {1, false, false});
    EXPECT_GT(rms(direct, 20, 127), 100.0);
}

TEST(RadioEffect, DoesNothingWithoutSamples) {
    const auto state = std::make_unique<RadioEffectState>();
    short x[2] = {1234, -1234};
    applyRadioEffect(nullptr, 480, 1, *state, true, true);
    applyRadioEffect(x, 0, 1, *state, true, true);
    applyRadioEffect(x, -5, 2, *state, true, true);
    EXPECT_EQ(x[0], 1234);
    EXPECT_EQ(x[1], -1234);
    expectSameMemory(*state, PlainRadioEffectState{}, "untouched");
}

TEST(RadioEffect, EditsExactlyCountValues) {
    for (const Mode& m : kModes)
        for (const int n : {1, 3, 7, 130, 511, 1025}) {
            Samples x(static_cast<std::size_t>(n) + 8, 12345);
            const auto state = std::make_unique<RadioEffectState>();
            applyRadioEffect(x.data(), n, m.channels, *state, m.hiss, m.predenoise);
            EXPECT_EQ(Samples(x.end() - 8, x.end()), Samples(8, 12345)) << n;
        }
}

TEST(RadioEffect, ResetEqualsFresh) {
    const Samples x = VoiceBlocks(6).take(Sound::kSpeech, kSecond / 2);
    for (const Mode& m : kModes) {
        const auto state = std::make_unique<RadioEffectState>();
        const Samples first = fast(x, 960, m, *state);
        EXPECT_NE(fast(x, 960, m, *state), first);
        *state = RadioEffectState{};
        EXPECT_EQ(fast(x, 960, m, *state), first) << nameOf(m);
    }
}

TEST(RadioEffect, PassesTheVoiceBandAsItsFiltersAreDesigned) {
    const double reference = quietToneDb(1000.0) - designDb(1000.0);
    for (const double hz : {400.0, 500.0, 700.0, 1500.0, 1900.0, 2300.0})
        EXPECT_NEAR(quietToneDb(hz) - reference, designDb(hz), 0.7) << hz;
    EXPECT_LT(designDb(100.0), designDb(1000.0) - 30.0);
}

TEST(RadioEffect, FollowsTheDesignedResponseInItsFilters) {
    for (const double hz : {100.0, 330.0, 700.0, 1000.0, 1900.0, 2800.0, 6000.0}) {
        PlainRadioChannel c;
        double sum = 0.0;
        for (int i = 0; i < 2 * kSecond; i++) {
            const float y = plainRadioFilter(c, static_cast<float>(1000.0 * std::sin(2 * kPi * hz * i / kSecond)));
            if (i >= kSecond) sum += static_cast<double>(y) * static_cast<double>(y);
        }
        EXPECT_NEAR(decibels(std::sqrt(sum / kSecond) / (1000.0 / std::sqrt(2.0))), designDb(hz), 0.05) << hz;
    }
}

TEST(RadioEffect, FollowsAnOnsetIn3MsAndAnEndIn300Ms) {
    const auto state = std::make_unique<RadioEffectState>();
    const Mode m{1, false, false};
    const RadioChannel& c = state->channels[0];
    fast(tone(1000.0, 8000.0, kSecond), 960, m, *state);
    const float steady = c.level;
    fast(Samples(960), 960, m, *state);  // the filters ring out
    const float start = c.level;
    fast(Samples(14400), 960, m, *state);
    EXPECT_NEAR(c.level / start, std::exp(-1.0f), 0.01f);  // 300 ms
    *state = RadioEffectState{};
    Samples onset = tone(1000.0, 8000.0, 48 * 50);
    int ms = 0;
    for (; ms < 50 && c.level < 0.63f * steady; ms++)
        applyRadioEffect(&onset[static_cast<std::size_t>(48 * ms)], 48, 1, *state, false, false);
    EXPECT_GE(ms, 3);  // a tone's peaks pull only part of the time
    EXPECT_LE(ms, 12);
}

// Not compared with the C library: one of them rounds -0.49999997 to -1.
TEST(RadioEffect, RoundsHalvesAwayFromZeroAndClamps) {
    const auto rounded = [](float x) { return _mm_cvtsi128_si32(roundToSample(_mm_set_ss(x))); };
    for (int whole = 0; whole <= 32769; whole++) {
        const auto at = static_cast<float>(whole);
        const float half = at + 0.5f;
        const int here = std::min(whole, 32767);
        const int next = std::min(whole + 1, 32767);
        for (const float sign : {1.0f, -1.0f}) {
            ASSERT_EQ(rounded(sign * at), static_cast<int>(sign) * here) << whole;
            ASSERT_EQ(rounded(sign * std::nextafter(half, 0.0f)), static_cast<int>(sign) * here) << whole;
            ASSERT_EQ(rounded(sign * half), static_cast<int>(sign) * next) << whole;
        }
    }
    EXPECT_EQ(rounded(1e30f), 32767);
    EXPECT_EQ(rounded(-1e30f), -32767);
}

TEST(RadioEffect, DrawsTheSameNoiseWhereverItIsCut) {
    for (const int length : {1, 127, 128, 129, 255, 512, 1000}) {
        std::uint32_t mine = 0x2545F491;
        std::uint32_t bits = mine;
        for (int round = 0; round < 5; round++) {
            std::vector<float> noise(static_cast<std::size_t>(length) + 1, 7.0f);
            drawNoise(mine, noise.data(), length);
            for (int i = 0; i < length; i++) {
                bits ^= bits << 13U;
                bits ^= bits >> 17U;
                bits ^= bits << 5U;
                ASSERT_EQ(noise[static_cast<std::size_t>(i)], static_cast<float>(bits & 0xFFFFU) / 32768.0f - 1.0f);
            }
            EXPECT_EQ(noise.back(), 7.0f);
            ASSERT_EQ(mine, bits);
        }
    }
}
