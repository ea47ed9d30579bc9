#include "audio/exact_math.h"
#include <cmath>
#include <cstddef>

namespace {

constexpr std::int64_t kHundredthsPerTurn = 4'800'000;  // 48000 samples per second, in hundredths of a hertz
constexpr double kPi = 3.14159265358979323846;

// Coefficients of a power series, highest first: c[0] x^(n-1) + ... + c[n-1], evaluated in this order.
template <std::size_t N>
double series(const double (&c)[N], double x) {
    double sum = c[0];
    for (std::size_t i = 1; i < N; i++) sum = sum * x + c[i];
    return sum;
}

// Taylor series of sin(x) / x and cos(x) in x squared; on 0..pi/4 the first term left out is below 3e-18.
double sineOfEighth(double x) {
    constexpr double kTerms[] = {1.0 / 355687428096000.0,
                                 -1.0 / 1307674368000.0,
                                 1.0 / 6227020800.0,
                                 -1.0 / 39916800.0,
                                 1.0 / 362880.0,
                                 -1.0 / 5040.0,
                                 1.0 / 120.0,
                                 -1.0 / 6.0,
                                 1.0};
    return x * series(kTerms, x * x);
}

double cosineOfEighth(double x) {
    constexpr double kTerms[] = {1.0 / 20922789888000.0,
                                 -1.0 / 87178291200.0,
                                 1.0 / 479001600.0,
                                 -1.0 / 3628800.0,
                                 1.0 / 40320.0,
                                 -1.0 / 720.0,
                                 1.0 / 24.0,
                                 -1.0 / 2.0,
                                 1.0};
    return series(kTerms, x * x);
}

// Sine of a phase in the first quarter turn, 0..kHundredthsPerTurn/4.
double sineOfQuarter(std::int64_t phase) {
    constexpr std::int64_t kQuarter = kHundredthsPerTurn / 4;
    constexpr double kRadians = 2.0 * kPi / static_cast<double>(kHundredthsPerTurn);
    if (phase <= kQuarter / 2) return sineOfEighth(static_cast<double>(phase) * kRadians);
    return cosineOfEighth(static_cast<double>(kQuarter - phase) * kRadians);
}

}  // namespace

double exactSine(std::int64_t hundredthsHz, std::int64_t n) {
    constexpr std::int64_t kHalf = kHundredthsPerTurn / 2;
    const std::int64_t phase = hundredthsHz * n % kHundredthsPerTurn;
    const bool negative = phase >= kHalf;
    const std::int64_t inHalf = negative ? phase - kHalf : phase;
    const double sine = sineOfQuarter(inHalf > kHalf / 2 ? kHalf - inHalf : inHalf);
    return negative ? -sine : sine;
}

double exactDecay(double x) {
    // ln 2 in two pieces: the upper one ends in zero bits, so k times it is exact.
    constexpr double kLn2High = 6.93147180369123816490e-01;
    constexpr double kLn2Low = 1.90821492927058770002e-10;
    constexpr double kLog2E = 1.44269504088896338700;
    // Taylor series of e^r to r^13; for |r| <= ln 2 / 2 the rest is below 1e-17.
    constexpr double kTerms[] = {1.0 / 6227020800.0,
                                 1.0 / 479001600.0,
                                 1.0 / 39916800.0,
                                 1.0 / 3628800.0,
                                 1.0 / 362880.0,
                                 1.0 / 40320.0,
                                 1.0 / 5040.0,
                                 1.0 / 720.0,
                                 1.0 / 120.0,
                                 1.0 / 24.0,
                                 1.0 / 6.0,
                                 1.0 / 2.0,
                                 1.0,
                                 1.0};
    if (!(x > -745.0)) return 0.0;
    const double k = std::floor(x * kLog2E + 0.5);
    const double r = (x - k * kLn2High) - k * kLn2Low;
    return std::ldexp(series(kTerms, r), static_cast<int>(k));
}
