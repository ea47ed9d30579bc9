#include "audio/fft256.h"
#include <gtest/gtest.h>
#include <array>
#include <cmath>
#include <complex>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>
#include "audio/fft256_tables.h"
#include "tests/reference/plain_denoiser.h"

namespace {

using Points = std::array<float, kFftSize>;
using Complex = std::complex<double>;

std::uint32_t bitsOf(float x) {
    std::uint32_t bits = 0;
    std::memcpy(&bits, &x, sizeof bits);
    return bits;
}

// FNV-1a over whole words.
constexpr std::uint64_t kHashStart = 0xCBF29CE484222325U;
std::uint64_t hashOf(const std::array<float, kFftSize>& values, std::uint64_t hash) {
    for (const float x : values) hash = (hash ^ bitsOf(x)) * 0x100000001B3U;
    return hash;
}

// Signals whose transforms involve zeros of both signs, large and tiny values.
std::vector<Points> signals() {
    std::mt19937 random(1);
    std::vector<Points> all(40);
    for (std::size_t s = 0; s < all.size(); s++) {
        for (int n = 0; n < kFftSize; n++) {
            const float value = static_cast<float>(static_cast<int>(random() % 65536) - 32768);
            switch (s % 8) {
                case 0:
                    all[s][n] = value;
                    break;
                case 1:
                    all[s][n] = n == static_cast<int>(s * 5) ? value : 0.0f;
                    break;
                case 2:
                    all[s][n] = random() % 2 == 0 ? -0.0f : 0.0f;
                    break;
                case 3:
                    all[s][n] = value * 1e-30f;
                    break;
                case 4:
                    all[s][n] = random() % 3 == 0 ? value : -0.0f;
                    break;
                case 5:
                    all[s][n] = n % 16 < 8 ? 32767.0f : -32768.0f;
                    break;
                case 6:
                    all[s][n] = static_cast<float>(random() % 3) - 1.0f;
                    break;
                default:
                    all[s][n] = value * (random() % 2 == 0 ? 1e-9f : 1.0f);
                    break;
            }
        }
    }
    for (int signs = 0; signs < 16; signs++) {  // zeros whose sign depends on their quarter
        Points zeros{};
        for (int n = 0; n < kFftSize; n++) zeros[n] = (signs >> (n / 64)) % 2 == 0 ? 0.0f : -0.0f;
        all.push_back(zeros);
    }
    return all;
}

std::vector<Complex> directTransform(const std::vector<Complex>& x, int direction) {
    const std::size_t n = x.size();
    std::vector<Complex> y(n);
    for (std::size_t k = 0; k < n; k++)
        for (std::size_t i = 0; i < n; i++)
            y[k] += x[i] * std::polar(1.0, -direction * kTau * static_cast<double>(i * k % n) / static_cast<double>(n));
    return y;
}

// Bins 0..128 of a spectrum whose imaginary parts of bins 0 and 128 need not be zero, mirrored.
void mirror(Points& re, Points& im) {
    for (int k = 1; k < kFftSize / 2; k++) {
        re[kFftSize - k] = re[k];
        im[kFftSize - k] = -im[k];
    }
}

}  // namespace

TEST(Fft256, WindowIsWhatTheCLibrarysCosineGives) {
    for (int n = 0; n < kFftSize; n++)
        EXPECT_EQ(bitsOf(kHannWindow[n]), bitsOf(static_cast<float>(0.5 * (1.0 - std::cos(kTau * n / kFftSize))))) << n;
}

// The cosine of a quarter turn is the only value on which C libraries disagree: mingw's uses the x87, whose pi is
// short.
TEST(Fft256, QuarterTurnIsTheCosineOfTheDoubleNearestHalfPi) {
    EXPECT_EQ(bitsOf(kForwardTables.twiddles.re[3]), bitsOf(6.123233995736766e-17f));
    EXPECT_EQ(bitsOf(kForwardTables.twiddles.im[3]), bitsOf(-1.0f));
}

TEST(Fft256, TwiddleStepsAreWhatTheCLibrarysSineAndCosineGive) {
    for (int half = 2; half < kFftSize; half *= 2) {
        for (const int direction : {1, -1}) {
            const double angle = -direction * kTau / (2 * half);
            const FftTwiddles& table = (direction == 1 ? kForwardTables : kInverseTables).twiddles;
            EXPECT_EQ(bitsOf(table.re[half]), bitsOf(1.0f));
            EXPECT_EQ(bitsOf(table.im[half]), bitsOf(0.0f));
            if (half > 2) {
                EXPECT_EQ(bitsOf(table.re[half + 1]), bitsOf(static_cast<float>(std::cos(angle)))) << half;
            }
            EXPECT_EQ(bitsOf(table.im[half + 1]), bitsOf(static_cast<float>(std::sin(angle)))) << half;
        }
    }
}

TEST(Fft256, TablesHaveTheSameBitsWithEveryCompiler) {
    EXPECT_EQ(hashOf(kHannWindow, kHashStart), 0xE4C5E063AB79DF95U);
    EXPECT_EQ(hashOf(kForwardTables.twiddles.im, hashOf(kForwardTables.twiddles.re, kHashStart)), 0x4155F00865D274E1U);
    EXPECT_EQ(hashOf(kInverseTables.twiddles.im, hashOf(kInverseTables.twiddles.re, kHashStart)), 0x2B23AE80E5D274E1U);
}

TEST(Fft256, WindowSumsToOneAtHalfItsLength) {
    for (int n = 0; n < kFftSize / 2; n++) EXPECT_NEAR(kHannWindow[n] + kHannWindow[n + kFftSize / 2], 1.0, 1.2e-7);
}

TEST(Fft256, ForwardIsThePlainTransformToTheLastBit) {
    for (const Points& x : signals()) {
        Points re = x, im{};
        plainFft(re.data(), im.data(), kFftSize, 1);
        Points fastRe{}, fastIm{};
        forwardFft256(x.data(), fastRe.data(), fastIm.data());
        for (int k = 0; k < kFftBins; k++) {
            ASSERT_EQ(bitsOf(fastRe[k]), bitsOf(re[k])) << k;
            ASSERT_EQ(bitsOf(fastIm[k]), bitsOf(im[k])) << k;
        }
    }
}

TEST(Fft256, InverseIsThePlainTransformToTheLastBit) {
    const std::vector<Points> all = signals();
    for (std::size_t s = 0; s < all.size(); s++) {
        Points re = all[s], im = all[(s * 7 + 3) % all.size()], x{};
        mirror(re, im);
        inverseFft256(re.data(), im.data(), x.data());
        plainFft(re.data(), im.data(), kFftSize, -1);
        for (int n = 0; n < kFftSize; n++) ASSERT_EQ(bitsOf(x[n]), bitsOf(re[n])) << "signal " << s << " point " << n;
    }
}

TEST(Fft256, ForwardAgreesWithTheDirectSum) {
    const Points x = signals()[0];
    const std::vector<Complex> exact = directTransform({x.begin(), x.end()}, 1);
    Points re{}, im{};
    forwardFft256(x.data(), re.data(), im.data());
    for (int k = 0; k < kFftBins; k++) EXPECT_LT(std::abs(Complex(re[k], im[k]) - exact[k]), 2.0) << k;  // of 300000
}

TEST(Fft256, BackAndForthGivesTheSignalTimesItsLength) {
    for (const Points& x : signals()) {
        Points re{}, im{}, back{};
        forwardFft256(x.data(), re.data(), im.data());
        mirror(re, im);
        inverseFft256(re.data(), im.data(), back.data());
        for (int n = 0; n < kFftSize; n++)
            EXPECT_NEAR(back[n] / kFftSize, x[n], 0.15);  // of 32768: the advanced twiddles drift
    }
}

TEST(PlainFft, AgreesWithTheDirectSumAtEveryLengthBothWays) {
    std::mt19937 random(2);
    std::uniform_real_distribution<float> uniform(-1.0f, 1.0f);
    for (std::size_t n = 1; n <= 256; n *= 2) {
        for (const int direction : {1, -1}) {
            std::vector<float> re(n), im(n);
            for (float& v : re) v = uniform(random);
            for (float& v : im) v = uniform(random);
            std::vector<Complex> x(n);
            for (std::size_t i = 0; i < n; i++) x[i] = {re[i], im[i]};
            plainFft(re.data(), im.data(), static_cast<int>(n), direction);
            const std::vector<Complex> exact = directTransform(x, direction);
            for (std::size_t k = 0; k < n; k++)
                EXPECT_LT(std::abs(Complex(re[k], im[k]) - exact[k]), 1e-4) << n << ' ' << direction << ' ' << k;
        }
    }
}
