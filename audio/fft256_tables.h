// fft256_tables.h - the constants of the denoiser's Fourier transform, worked out by the compiler: nothing is filled at
// run time, and the bits do not depend on a C library's sine.
// [any] Constants.
#pragma once
#include <array>

inline constexpr int kFftSize = 256;
inline constexpr double kTau = 6.283185307179586476925286766559;

// sin(x) for x in -pi/2..pi/2 by its series; error below 2e-16.
constexpr double seriesSine(double x) {
    double term = x, sum = 0.0;
    for (int n = 1; n < 30; n += 2) {
        sum += term;
        term *= -(x * x) / ((n + 1) * (n + 2));
    }
    return sum;
}

// cos(x) for x in 0..pi: exactly 1 at 0, and at kTau / 4 its true tiny value (the low part of pi/2), not 0.
constexpr double seriesCosine(double x) {
    constexpr double kLowHalfPi = 6.123233995736766e-17;
    const double half = seriesSine(x < 1.0 ? x / 2.0 : 0.0);
    return x < 1.0 ? 1.0 - 2.0 * half * half : seriesSine((kTau / 4.0 - x) + kLowHalfPi);
}

// Periodic Hann window: 0.5 (1 - cos(2 pi n / 256)). At a hop of 128 it sums to one.
constexpr std::array<float, kFftSize> makeHannWindow() {
    std::array<float, kFftSize> window{};
    for (int n = 0; n < kFftSize; n++) {
        const int nearer = n <= kFftSize / 2 ? n : kFftSize - n;
        window[n] = static_cast<float>(0.5 * (1.0 - seriesCosine(kTau * nearer / kFftSize)));
    }
    return window;
}

// Twiddles for lengths 4..256: those of length 2 h stand at h .. 2 h - 1. Each length starts at 1 + 0i (the zero
// positive in both directions) and is advanced by a complex product in float; that order of operations is part of the
// result.
struct FftTwiddles {
    std::array<float, kFftSize> re{};
    std::array<float, kFftSize> im{};
};
// direction 1: forward, -1: inverse.
constexpr FftTwiddles makeFftTwiddles(int direction) {
    FftTwiddles table;
    for (int half = 2; half < kFftSize; half *= 2) {
        const double angle = kTau / (2 * half);
        const float stepRe = static_cast<float>(seriesCosine(angle));
        const float stepIm = static_cast<float>(-direction * seriesSine(angle));
        float wr = 1.0f, wi = 0.0f;
        for (int k = 0; k < half; k++) {
            table.re[half + k] = wr;
            table.im[half + k] = wi;
            const float nextRe = wr * stepRe - wi * stepIm;
            wi = wr * stepIm + wi * stepRe;
            wr = nextRe;
        }
    }
    return table;
}

// The same, each four times over: for the short lengths, where lanes belong to different transforms.
struct WideTwiddles {
    float re[kFftSize / 4][4];
    float im[kFftSize / 4][4];
};
constexpr WideTwiddles widen(const FftTwiddles& narrow) {
    WideTwiddles wide{};
    for (int i = 0; i < kFftSize / 4; i++) {
        for (int j = 0; j < 4; j++) {
            wide.re[i][j] = narrow.re[i];
            wide.im[i][j] = narrow.im[i];
        }
    }
    return wide;
}

struct FftTables {
    alignas(16) FftTwiddles twiddles;
    alignas(16) WideTwiddles wide;  // lengths 4..64
};
constexpr FftTables makeFftTables(int direction) {
    return {makeFftTwiddles(direction), widen(makeFftTwiddles(direction))};
}

alignas(16) inline constexpr std::array<float, kFftSize> kHannWindow = makeHannWindow();
inline constexpr FftTables kForwardTables = makeFftTables(1);
inline constexpr FftTables kInverseTables = makeFftTables(-1);
