#include "base/number_text.h"
#include <algorithm>
#include <charconv>
#include <limits>

namespace {

std::string_view skipBlanks(std::string_view text) {
    const auto start = text.find_first_not_of(" \t\n\v\f\r");
    return start == std::string_view::npos ? std::string_view{} : text.substr(start);
}

bool takeSign(std::string_view& text) {
    if (text.empty() || (text[0] != '+' && text[0] != '-')) return false;
    const bool negative = text[0] == '-';
    text.remove_prefix(1);
    return negative;
}

// "0x" with a hexadecimal digit behind it, before or after a point. Anything else ("0xg", "0xinf") is the 0 before x.
bool isHexNumber(std::string_view text) {
    if (text.size() < 3 || text[0] != '0' || (text[1] != 'x' && text[1] != 'X')) return false;
    const auto digit = text.find_first_not_of('.', 2);
    return digit <= 3 && text.substr(digit).find_first_of("0123456789abcdefABCDEF") == 0;
}

// from_chars leaves the value alone when it is out of range; strtod says infinity or zero. The sign of the decimal
// exponent tells which: a number too large has its first digit left of the point once the exponent is applied.
double outOfRangeValue(std::string_view number, bool hex) {
    // Far beyond any exponent that counts, and far from where adding the mantissa's length would overflow.
    constexpr std::int64_t kHugeExponent = std::numeric_limits<std::int64_t>::max() / 4;
    std::int64_t exponent = 0;
    const auto mark = number.find_first_of(hex ? "pP" : "eE");
    if (mark != std::string_view::npos) {
        auto digits = number.substr(mark + 1);
        const bool negative = takeSign(digits);
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
        (void)end;
        if (error == std::errc::result_out_of_range) exponent = kHugeExponent;
        exponent = std::min(exponent, kHugeExponent);
        if (negative) exponent = -exponent;
    }
    const auto mantissa = number.substr(0, mark);
    const auto point = std::min(mantissa.find('.'), mantissa.size());
    const auto first = mantissa.find_first_not_of("0.");
    if (first == std::string_view::npos) return 0.0;
    const std::int64_t perDigit = hex ? 4 : 1;
    const std::int64_t scale =
        exponent + perDigit * (static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first));
    return scale > 0 ? std::numeric_limits<double>::infinity() : 0.0;
}

}  // namespace

bool parseDoublePrefix(std::string_view text, double& value) {
    text = skipBlanks(text);
    const bool negative = takeSign(text);
    // from_chars would take a second minus sign, strtod does not.
    if (text.empty() || text[0] == '-' || text[0] == '+') return false;

    double magnitude = 0.0;
    if (isHexNumber(text)) {
        const auto digits = text.substr(2);
        const auto [end, error] =
            std::from_chars(digits.data(), digits.data() + digits.size(), magnitude, std::chars_format::hex);
        const std::string_view number(digits.data(), static_cast<std::size_t>(end - digits.data()));
        if (error == std::errc::result_out_of_range) magnitude = outOfRangeValue(number, true);
    } else {
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), magnitude);
        if (error == std::errc::invalid_argument) return false;
        const std::string_view number(text.data(), static_cast<std::size_t>(end - text.data()));
        if (error == std::errc::result_out_of_range) magnitude = outOfRangeValue(number, false);
    }
    value = negative ? -magnitude : magnitude;
    return true;
}

double leadingDouble(std::string_view text) {
    double value = 0.0;
    return parseDoublePrefix(text, value) ? value : 0.0;
}

std::int32_t leadingInt(std::string_view text) {
    using Limits = std::numeric_limits<std::int32_t>;
    text = skipBlanks(text);
    const bool negative = takeSign(text);
    std::int64_t magnitude = 0;
    for (const char c : text) {
        if (c < '0' || c > '9') break;
        magnitude = magnitude * 10 + (c - '0');
        if (magnitude > Limits::max()) return negative ? Limits::min() : Limits::max();
    }
    return static_cast<std::int32_t>(negative ? -magnitude : magnitude);
}

std::int32_t truncateToInt32(double value) {
    const bool fits = value > -2147483649.0 && value < 2147483648.0;  // false for NaN as well
    return fits ? static_cast<std::int32_t>(value) : 0;
}

std::string formatGeneral(double value) {
    char text[40];
    const auto [end, error] = std::to_chars(text, text + sizeof text, value, std::chars_format::general, 6);
    return error == std::errc{} ? std::string(text, end) : std::string("0");
}

std::string formatFixed(double value, int decimals) {
    char text[400];  // 309 digits before the point at most, and the decimals we ask for
    const auto [end, error] = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, decimals);
    return error == std::errc{} ? std::string(text, end) : std::string("0");
}
