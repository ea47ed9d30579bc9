// tones_test.cpp - the two sounds beside a plain second calculation with the C library's sine and exponential.
#include "audio/tones.h"
#include <gtest/gtest.h>
#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

constexpr double kTwoPi = 6.283185307179586;

using Samples = std::vector<std::int16_t>;

// Peak to the wanted level, clamped, rounded half away from zero.
Samples normalized(const std::vector<float>& buffer, double level) {
    double peak = 0.0;
    for (const float value : buffer) peak = std::max(peak, std::abs(static_cast<double>(value)));
    Samples samples;
    for (const float value : buffer) {
        double scaled = static_cast<double>(value) * (level / peak);
        scaled = std::min(std::max(scaled, -32767.0), 32767.0);
        samples.push_back(static_cast<std::int16_t>(scaled < 0 ? std::ceil(scaled - 0.5) : std::floor(scaled + 0.5)));
    }
    return samples;
}

double rms(const std::vector<float>& buffer) {
    double sum = 0.0;
    for (const float value : buffer) sum += static_cast<double>(value) * static_cast<double>(value);
    return std::sqrt(sum / static_cast<double>(buffer.size()));
}

std::vector<float> referenceTone() {
    std::vector<float> tone;
    for (int n = 0; n < 14400; n++) {
        const double t = n / 48000.0;
        tone.push_back(
            static_cast<float>(std::sin(kTwoPi * 115.0 * t) * std::exp(-t / 0.12) * std::min(t / 0.003, 1.0)));
    }
    return tone;
}

std::vector<float> referenceNoise() {
    std::vector<float> noise;
    std::uint32_t state = 0x9E3779B9u;
    double a = 0, b = 0, c = 0, h = 0;
    for (int n = 0; n < 14400; n++) {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        const double u = (state & 0xFFFFu) / 32768.0 - 1.0;
        const double t = n / 48000.0;
        a += (u - a) * 0.3247;
        b += (a - b) * 0.3071;
        const double previous = c;
        c += (b - c) * 0.3071;
        h = (h + c - previous) * 0.9615;
        noise.push_back(static_cast<float>(std::exp(-t / 0.22) * std::min(t / 0.002, 1.0) * h));
        if (n < 77) noise.back() = static_cast<float>(noise.back() + (1.0 - n / 77.0) * u * 0.55);
    }
    return noise;
}

Samples referenceTail() {
    const auto tone = referenceTone();
    const auto noise = referenceNoise();
    const double k = 2.0 * rms(tone) / rms(noise);
    std::vector<float> mix;
    for (std::size_t n = 0; n < tone.size(); n++)
        mix.push_back(static_cast<float>(static_cast<double>(tone[n]) + k * static_cast<double>(noise[n])));
    return normalized(mix, 6537.876);
}

double referenceNote(double hz, double overtoneHz, double tau, double decay) {
    return (0.35 * std::sin(kTwoPi * overtoneHz * tau) + std::sin(kTwoPi * hz * tau)) * std::exp(-tau / decay) *
           std::min(tau / 0.006, 1.0);
}

// The notes' ranges in samples: 0.15 s is 7200, 0.14 s is 6720, 0.14 + 0.32 s is 22080, all inclusive.
Samples referenceAlert() {
    std::vector<float> chime;
    for (int n = 0; n < 24000; n++) {
        double sum = 0.0;
        if (n <= 7200) sum += referenceNote(1046.5, 2093.0, n / 48000.0, 0.075);
        if (n >= 6720 && n <= 22080) sum += referenceNote(1567.98, 3135.96, (n - 6720) / 48000.0, 0.14);
        chime.push_back(static_cast<float>(sum));
    }
    return normalized(chime, 8230.698);
}

std::uint64_t fnv1a(const std::string& bytes) {
    std::uint64_t hash = 0xCBF29CE484222325ULL;
    for (const char byte : bytes) hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3ULL;
    return hash;
}

int peakOf(const Samples& samples) {
    int peak = 0;
    for (const int sample : samples) peak = std::max(peak, std::abs(sample));
    return peak;
}

double levelOf(const Samples& samples, int from, int to) {
    double sum = 0.0;
    for (int n = from; n < to; n++) {
        const double value = samples[static_cast<std::size_t>(n)];
        sum += value * value;
    }
    return std::sqrt(sum / (to - from));
}

// How strong hz is in samples from..to, as an amplitude.
double amplitudeAt(const Samples& samples, double hz, int from, int to) {
    double re = 0.0, im = 0.0;
    for (int n = from; n < to; n++) {
        re += samples[static_cast<std::size_t>(n)] * std::cos(kTwoPi * hz * n / 48000.0);
        im += samples[static_cast<std::size_t>(n)] * std::sin(kTwoPi * hz * n / 48000.0);
    }
    return 2.0 * std::hypot(re, im) / (to - from);
}

std::uint32_t littleEndian(const std::string& file, std::size_t at, int bytes) {
    std::uint32_t value = 0;
    for (int i = bytes - 1; i >= 0; i--)
        value = value << 8U | static_cast<unsigned char>(file[at + static_cast<std::size_t>(i)]);
    return value;
}

void expectHeader(const std::string& file, std::uint32_t dataBytes) {
    ASSERT_EQ(file.size(), 44u + dataBytes);
    EXPECT_EQ(file.substr(0, 4), "RIFF");
    EXPECT_EQ(littleEndian(file, 4, 4), 36u + dataBytes);
    EXPECT_EQ(file.substr(8, 8), "WAVEfmt ");
    EXPECT_EQ(littleEndian(file, 16, 4), 16u);
    EXPECT_EQ(littleEndian(file, 20, 2), 1u);      // PCM
    EXPECT_EQ(littleEndian(file, 22, 2), 1u);      // mono
    EXPECT_EQ(littleEndian(file, 24, 4), 48000u);  // samples per second
    EXPECT_EQ(littleEndian(file, 28, 4), 96000u);  // bytes per second
    EXPECT_EQ(littleEndian(file, 32, 2), 2u);      // block
    EXPECT_EQ(littleEndian(file, 34, 2), 16u);     // bits
    EXPECT_EQ(file.substr(36, 4), "data");
    EXPECT_EQ(littleEndian(file, 40, 4), dataBytes);
}

}  // namespace

TEST(WavFile, HasTheCanonicalHeaderAndItsSamplesInLittleEndianOrder) {
    expectHeader(wavFileOf({}), 0);
    const std::string file = wavFileOf({0, 1, -1, 0x1234, -32768, 32767});
    expectHeader(file, 12);
    EXPECT_EQ(file.substr(44), std::string("\x00\x00\x01\x00\xFF\xFF\x34\x12\x00\x80\xFF\x7F", 12));
}

TEST(Tones, MakeFilesOfExactly28844And48044Bytes) {
    const std::string tail = wavFileOf(synthesizeTail());
    const std::string alert = wavFileOf(synthesizeAlert());
    EXPECT_EQ(tail.size(), 28844u);
    EXPECT_EQ(alert.size(), 48044u);
    expectHeader(tail, 28800);
    expectHeader(alert, 48000);
    EXPECT_EQ(littleEndian(tail, 4, 4), 28836u);
    EXPECT_EQ(littleEndian(alert, 4, 4), 48036u);
    EXPECT_STREQ(kTailFile, "radio_tail.wav");
    EXPECT_STREQ(kAlertFile, "text_alert.wav");
}

TEST(Tones, TheTailIsItsFormulaSampleForSample) {
    EXPECT_EQ(synthesizeTail(), referenceTail());
}

TEST(Tones, TheAlertIsItsFormulaSampleForSample) {
    EXPECT_EQ(synthesizeAlert(), referenceAlert());
}

TEST(Tones, PeakAtMinus14AndMinus12DecibelsOfFullScale) {
    EXPECT_EQ(peakOf(synthesizeTail()), 6538);
    EXPECT_EQ(peakOf(synthesizeAlert()), 8231);
    EXPECT_NEAR(20.0 * std::log10(peakOf(synthesizeTail()) / 32767.0), -14.0, 0.01);
    EXPECT_NEAR(20.0 * std::log10(peakOf(synthesizeAlert()) / 32767.0), -12.0, 0.01);
}

TEST(Tones, TheTailClicksThumpsAndDiesAway) {
    const Samples tail = synthesizeTail();
    EXPECT_GT(levelOf(tail, 0, 77), 100.0);  // the click, before hiss and thump have risen
    EXPECT_GT(levelOf(tail, 480, 2400), 3.0 * levelOf(tail, 12000, 14400));
    EXPECT_GT(amplitudeAt(tail, 115.0, 0, 9600), 4.0 * amplitudeAt(tail, 60.0, 0, 9600));
}

TEST(Tones, TheAlertSoundsC6ThenG6AndEndsInSilence) {
    const Samples alert = synthesizeAlert();
    EXPECT_EQ(alert[0], 0);
    EXPECT_GT(amplitudeAt(alert, 1046.5, 480, 6720), 10.0 * amplitudeAt(alert, 1567.98, 480, 6720));
    EXPECT_GT(amplitudeAt(alert, 1567.98, 7680, 22080), 10.0 * amplitudeAt(alert, 1046.5, 7680, 22080));
    EXPECT_NEAR(amplitudeAt(alert, 2093.0, 480, 6720) / amplitudeAt(alert, 1046.5, 480, 6720), 0.35, 0.02);
    EXPECT_NE(levelOf(alert, 21000, 22081), 0.0);
    EXPECT_EQ(levelOf(alert, 22081, 24000), 0.0);
}

// Taken from a build that equals the calculation above in every sample.
TEST(Tones, AreTheSameBytesOnEveryMachine) {
    EXPECT_EQ(fnv1a(wavFileOf(synthesizeTail())), 11281110690780445447ULL);
    EXPECT_EQ(fnv1a(wavFileOf(synthesizeAlert())), 6647988922484862256ULL);
}
