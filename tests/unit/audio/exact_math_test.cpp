// exact_math_test.cpp - judged by the C library's long double functions; x87 has 11 bits more than are compared here.
#include "audio/exact_math.h"
#include <gtest/gtest.h>
#include <cmath>
#include <limits>

namespace {

constexpr long double kTwoPi = 6.283185307179586476925286766559L;

// MSVC's long double is a double and cannot judge one.
constexpr bool kIsJudge = std::numeric_limits<long double>::digits >= 64;
constexpr const char* kNoJudge = "this compiler's long double is no finer than a double";

}  // namespace

TEST(ExactSine, IsWithinTwoTenthsOfAQuadrillionthOfTheSine) {
    if (!kIsJudge) GTEST_SKIP() << kNoJudge;
    for (const std::int64_t hundredths : {11500, 104650, 209300, 156798, 313596, 1, 4799999}) {
        for (std::int64_t n = 0; n < 24000; n++) {
            const auto phase = static_cast<long double>(hundredths * n % 4'800'000) / 4'800'000.0L;
            const auto expected = static_cast<double>(std::sin(kTwoPi * phase));
            ASSERT_NEAR(exactSine(hundredths, n), expected, 2e-16) << hundredths << ' ' << n;
        }
    }
}

TEST(ExactSine, IsExactAtTheQuarterTurns) {
    EXPECT_EQ(exactSine(1'200'000, 0), 0.0);
    EXPECT_EQ(exactSine(1'200'000, 1), 1.0);
    EXPECT_EQ(exactSine(1'200'000, 2), 0.0);
    EXPECT_EQ(exactSine(1'200'000, 3), -1.0);
    EXPECT_EQ(exactSine(1'200'000, 4'000'000'001), 1.0);
}

TEST(ExactDecay, IsWithinTwoTenthsOfAQuadrillionthOfTheExponential) {
    if (!kIsJudge) GTEST_SKIP() << kNoJudge;
    for (int i = 0; i <= 200'000; i++) {
        const double x = -static_cast<double>(i) / 9000.0;
        ASSERT_NEAR(exactDecay(x), static_cast<double>(std::exp(static_cast<long double>(x))), 2e-16) << x;
    }
}

TEST(ExactDecay, IsOneAtZeroAndZeroBelowTheSmallestDouble) {
    EXPECT_EQ(exactDecay(0.0), 1.0);
    EXPECT_EQ(exactDecay(-746.0), 0.0);
    EXPECT_EQ(exactDecay(-1e308), 0.0);
    EXPECT_EQ(exactDecay(-HUGE_VAL), 0.0);
    EXPECT_GT(exactDecay(-700.0), 0.0);
}
