// number_text_test.cpp - the C library in its "C" locale is the judge: our reader and writer must agree with strtod,
// atoi and snprintf, and still give those answers when the process changes to another locale.
#include "base/number_text.h"
#include <gtest/gtest.h>
#include <climits>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <locale>
#include <random>
#include <vector>

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

const char* const kTexts[] = {
    "", " ", "0", "-0", "+0", "1", "+1", "-1", "--1", "+-1", "-+1", "++1", "- 1", "0.5", ".5", "-.5", "5.", ".", "-.",
    "+", "-", "e5", ".e5", "1e", "1e+", "1e-", "1e5", "1E5", "1e+5", "1e-5", "1e05", "1e 5", "1 2", "12abc", "abc",
    "\t\n\v\f\r 7", "\xC2\xA0 7", "1,5", "1.5.5", "1_000", "122.800", "0.85", "100", "080", "007",
    // hexadecimal
    "0x", "0X", "0xg", "0x.", "0x.g", "0x1", "0X1F", "0xabcdefp0", "0x.8", "0x8.", "0x1.8p3", "0x1.8P+3", "0x1p",
    "0x1p+", "0x1pz", "-0x1p3", "+0x10", "0x-1", "0x+1", "0x 1", "0xinf", "0xnan", "0xINFINITY", "00x1", "0x0p99999",
    "0x1p-1074", "0x1p-1075", "0x1.8p-1075", "0x1p-1080", "0x1p1023", "0x1p1024", "0x1.fffffffffffffp1023",
    "0x1.fffffffffffff7p1023", "0x1.fffffffffffff8p1023", "0x1.00000000000008p0", "0x1.000000000000080001p0",
    "0x1.00000000000018p0", "0x0.0000000000000000001p0", "0x123456789abcdef01234p-4", "0x1p99999999999999999999",
    "0x1p-99999999999999999999",
    // not finite
    "inf", "INF", "Infinity", "INFINITY", "infinit", "infx", "-inf", "+inf", "in", "nan", "NAN", "-nan", "nan(12)",
    "nan(x_9)", "nan(", "na", "1inf",
    // the ends of the range
    "1e308", "1.7976931348623157e308", "1.7976931348623158e308", "1.7976931348623159e308", "1e309", "-1e309", "1e400",
    "0.001e311", "0.001e312", "1000e305", "1000e306", "0.0000000001e-320", "1e99999999999999999999",
    "-1e99999999999999999999", "8888e9223372036854775807", "8888e-9223372036854775807", "0x8p9223372036854775807",
    "0x8p-9223372036854775807", "1e-99999999999999999999", "0e99999999999999999999", "0.0e-99999", "0e400",
    "4.9406564584124654e-324", "2.4703282292062327e-324", "2.4703282292062328e-324", "2e-324", "3e-324", "-3e-324",
    "1e-400", "2.2250738585072011e-308", "2.2250738585072014e-308", "1e-310", "1e-323",
    // rounding
    "9007199254740993", "9007199254740992.5", "9007199254740993.0000000000000000000001", "0.1", "0.30000000000000004",
    "123456789012345678901234567890", "0.000000000000000000000000000000000000000000001", "1790000000.123456"};

bool sameValue(double a, double b) {
    if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
    return a == b && std::signbit(a) == std::signbit(b);
}

// Our answer to text beside the C library's.
void expectAsStrtod(const std::string& text) {
    char* end = nullptr;
    const double expected = std::strtod(text.c_str(), &end);
    const bool converts = end != text.c_str();
    double value = -77.25;
    EXPECT_EQ(parseDoublePrefix(text, value), converts) << '"' << text << '"';
    EXPECT_TRUE(sameValue(value, converts ? expected : -77.25)) << '"' << text << "\": " << value << ", " << expected;
    EXPECT_TRUE(sameValue(leadingDouble(text), std::atof(text.c_str()))) << '"' << text << '"';
}

std::string printedGeneral(double value) {
    char text[64];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

// value in all the notations that printf has.
std::vector<std::string> printedNotations(double value) {
    char text[6][64];
    std::snprintf(text[0], sizeof text[0], "%.17g", value);
    std::snprintf(text[1], sizeof text[1], "%g", value);
    std::snprintf(text[2], sizeof text[2], "%a", value);
    std::snprintf(text[3], sizeof text[3], "%.3a", value);
    std::snprintf(text[4], sizeof text[4], "%.25e", value);
    std::snprintf(text[5], sizeof text[5], "%A", value);
    return {std::begin(text), std::end(text)};
}

std::string printedFixed(double value, int decimals) {
    char text[512];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

// Any bit pattern: every magnitude, denormals, infinities and NaN.
double randomDouble(std::mt19937_64& random) {
    const std::uint64_t bits = random();
    double value = 0.0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

// Something between a number and nonsense.
std::string randomNumberText(std::mt19937_64& random) {
    static const char* const kPieces[] = {"0",  "1",   "7",   "9", "00", "123", "5e",  "E",  "e-",
                                          "e+", ".",   ",",   "-", "+",  "0x",  "p",   "p-", "a",
                                          "F",  "inf", "nan", " ", "\t", "308", "324", "e30"};
    std::string text;
    const auto count = 1 + random() % 7;
    for (std::size_t i = 0; i < count; i++) text += kPieces[random() % std::size(kPieces)];
    return text;
}

// Restores both kinds of locale at the end of its scope.
class LocaleGuard {
  public:
    LocaleGuard() : stream_(std::locale()), c_(std::setlocale(LC_ALL, nullptr)) {}
    ~LocaleGuard() {
        std::locale::global(stream_);
        std::setlocale(LC_ALL, c_.c_str());
    }
    LocaleGuard(const LocaleGuard&) = delete;
    LocaleGuard& operator=(const LocaleGuard&) = delete;

  private:
    std::locale stream_;
    std::string c_;
};

struct CommaPunctuation : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

void expectNumbersWithAPoint() {
    double value = 0.0;
    EXPECT_TRUE(parseDoublePrefix("122.8", value));
    EXPECT_EQ(value, 122.8);
    EXPECT_EQ(leadingDouble("0,85"), 0.0);
    EXPECT_EQ(leadingDouble("1.234,5"), 1.234);
    EXPECT_EQ(leadingInt("1.234"), 1);
    EXPECT_EQ(formatGeneral(0.85), "0.85");
    EXPECT_EQ(formatGeneral(123456.0), "123456");
    EXPECT_EQ(formatGeneral(1234567.0), "1.23457e+06");
    EXPECT_EQ(formatFixed(1234567.5, 2), "1234567.50");
}

}  // namespace

TEST(NumberText, ReadsEveryTextAsStrtodAndAtofDo) {
    for (const char* text : kTexts) expectAsStrtod(text);
}

TEST(NumberText, ReadsVeryLongNumbersAsStrtodDoes) {
    for (const std::size_t length : {20u, 300u, 308u, 309u, 310u, 400u, 5000u}) {
        const std::string zeros(length, '0');
        for (const auto& text : {"1" + zeros, "0." + zeros + "1", zeros + "7", "1" + zeros + "e-5000",
                                 "0." + zeros + "1e400", "0x1" + zeros, "0x0." + zeros + "1", "1." + zeros + "1",
                                 "-1" + zeros, "0." + zeros + "1e5001", "0x." + zeros + "8p20004"})
            expectAsStrtod(text);
    }
}

TEST(NumberText, CountsFourBitsADigitWhenALongHexadecimalNumberMeetsAnOppositeExponent) {
    for (const std::size_t length : {20u, 100u, 600u, 5000u}) {
        const std::string zeros(length, '0');
        const std::string twice = std::to_string(2 * length);
        for (const auto& text : {"0x1" + zeros + "p-" + twice, "0x0." + zeros + "1p" + twice}) expectAsStrtod(text);
    }
}

TEST(NumberText, ReadsRandomTextsAsStrtodDoes) {
    std::mt19937_64 random(20240611);
    for (int i = 0; i < 20000 && !testing::Test::HasFailure(); i++) expectAsStrtod(randomNumberText(random));
}

TEST(NumberText, ReadsRandomNumbersInEveryNotationAsStrtodDoes) {
    std::mt19937_64 random(7);
    for (int i = 0; i < 5000 && !testing::Test::HasFailure(); i++) {
        const double value = randomDouble(random);
        for (const std::string& text : printedNotations(value)) expectAsStrtod(text);
    }
}

TEST(NumberText, ReadsNothingBeyondTheEndOfTheView) {
    const std::string_view text = "123.456e7";
    EXPECT_EQ(leadingDouble(text.substr(0, 2)), 12.0);
    EXPECT_EQ(leadingDouble(text.substr(0, 5)), 123.4);
    EXPECT_EQ(leadingDouble(text.substr(0, 7)), 123.456);
    EXPECT_EQ(leadingInt(text.substr(0, 2)), 12);
    EXPECT_EQ(leadingDouble(std::string_view("0x1F").substr(0, 3)), 1.0);
    EXPECT_EQ(leadingDouble(std::string_view()), 0.0);
    EXPECT_EQ(leadingDouble(std::string_view("1\0002", 3)), 1.0);
}

TEST(NumberText, ReadsWholeNumbersAsAtoiDoesAndSaturatesAtThe32BitLimits) {
    const struct {
        const char* text;
        std::int32_t value;
    } rows[] = {{"", 0},
                {" ", 0},
                {"x7", 0},
                {"7x", 7},
                {"+7", 7},
                {"-7", -7},
                {"--7", 0},
                {"+-7", 0},
                {"- 7", 0},
                {" \t\n\v\f\r42", 42},
                {"007", 7},
                {"3.9", 3},
                {"-3.9", -3},
                {"1e3", 1},
                {"0x10", 0},
                {"2147483646", 2147483646},
                {"2147483647", INT32_MAX},
                {"2147483648", INT32_MAX},
                {"-2147483647", -2147483647},
                {"-2147483648", INT32_MIN},
                {"-2147483649", INT32_MIN},
                {"4294967296", INT32_MAX},
                {"99999999999999999999999999", INT32_MAX},
                {"-99999999999999999999999999", INT32_MIN}};
    for (const auto& row : rows) EXPECT_EQ(leadingInt(row.text), row.value) << row.text;
    std::mt19937_64 random(3);
    for (int i = 0; i < 5000; i++) {
        const auto value = static_cast<std::int32_t>(random());
        const std::string text = std::to_string(value) + (i % 2 ? "" : ".5 rest");
        EXPECT_EQ(leadingInt(text), std::atoi(text.c_str())) << text;
    }
}

TEST(NumberText, TruncatesTowardZeroAndGivesZeroForWhatDoesNotFit) {
    const struct {
        double value;
        std::int32_t whole;
    } rows[] = {{0.0, 0},
                {0.999, 0},
                {-0.999, 0},
                {122800.9, 122800},
                {-1.5, -1},
                {2147483647.0, INT32_MAX},
                {2147483647.9, INT32_MAX},
                {2147483648.0, 0},
                {-2147483648.0, INT32_MIN},
                {-2147483648.9, INT32_MIN},
                {-2147483649.0, 0},
                {1e300, 0},
                {-1e300, 0},
                {kInfinity, 0},
                {-kInfinity, 0},
                {kNotANumber, 0}};
    for (const auto& row : rows) EXPECT_EQ(truncateToInt32(row.value), row.whole) << row.value;
}

TEST(NumberText, WritesSixDigitsInTheGeneralFormAsPrintedByTheCLibrary) {
    const double values[] = {0.0,        -0.0,           1.0,        80.0,        100.0,         0.85,        122800.0,
                             118275.0,   999999.0,       999999.4,   999999.5,    1e6,           1234567.0,   0.0001,
                             0.00001234, 0.000099999949, 1e-5,       1e100,       1e-100,        1e308,       -1e308,
                             5e-324,     1e15,           0.1f,       0.3f,        0.333333f,     2.0 / 3.0,   1.0000005,
                             1.000001,   kInfinity,      -kInfinity, kNotANumber, 1790000000.25, 2147483647.0};
    for (const double value : values) EXPECT_EQ(formatGeneral(value), printedGeneral(value)) << value;
    std::mt19937_64 random(5);
    for (int i = 0; i < 20000; i++) {
        const double value = randomDouble(random);
        ASSERT_EQ(formatGeneral(value), printedGeneral(value));
    }
}

TEST(NumberText, WritesExponentsOfAtLeastTwoDigits) {
    EXPECT_EQ(formatGeneral(1e6), "1e+06");
    EXPECT_EQ(formatGeneral(1e-5), "1e-05");
    EXPECT_EQ(formatGeneral(1.5e-7), "1.5e-07");
    EXPECT_EQ(formatGeneral(1e300), "1e+300");
}

TEST(NumberText, WritesFixedDecimalsAsPrintedByTheCLibrary) {
    std::mt19937_64 random(11);
    for (const int decimals : {0, 1, 2, 3, 6, 9, 17}) {
        for (const double value :
             {0.0, -0.0, 0.5, 1.5, 2.5, -0.05, 122.8, 1790000000.123456, 1e22, 1e308, -1.7e308, 5e-324})
            EXPECT_EQ(formatFixed(value, decimals), printedFixed(value, decimals)) << value << ' ' << decimals;
        for (int i = 0; i < 1000; i++) {
            const double value = randomDouble(random);
            ASSERT_EQ(formatFixed(value, decimals), printedFixed(value, decimals));
        }
    }
}

TEST(NumberText, KeepsItsPointWhateverLocaleTheHostHasSet) {
    const LocaleGuard restore;
    for (const char* name :
         {"C", "C.UTF-8", "de_DE.UTF-8", "fr_FR.UTF-8", "ru_RU.UTF-8", "de_DE", "German_Germany.1252"}) {
        if (!std::setlocale(LC_ALL, name)) continue;  // not on this machine
        SCOPED_TRACE(name);
        expectNumbersWithAPoint();
    }
}

TEST(NumberText, KeepsItsPointUnderAGlobalLocaleWithACommaAndGrouping) {
    const LocaleGuard restore;
    std::locale::global(std::locale(std::locale::classic(), new CommaPunctuation));
    ASSERT_EQ(std::use_facet<std::numpunct<char>>(std::locale()).decimal_point(), ',');
    expectNumbersWithAPoint();
}
