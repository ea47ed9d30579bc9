// number_text.h - numbers in our files: always with a decimal point, whatever locale the host has set.
// [any] Nothing here locks, throws or looks at the C locale.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

// Reads a number from the start of text as strtod does in the "C" locale: blanks, a sign, decimal or 0x-hexadecimal
// digits, an exponent, "inf", "nan". False if there is no number (value is unchanged). Too large gives infinity.
bool parseDoublePrefix(std::string_view text, double& value);

// The leading number as atof reads it; 0 if there is none.
double leadingDouble(std::string_view text);

// The leading whole number as atoi reads it, saturated at the 32-bit limits; 0 if there is none.
std::int32_t leadingInt(std::string_view text);

// value truncated toward zero; 0 when it is not a number or lies outside 32 bits.
std::int32_t truncateToInt32(double value);

// "%g": six significant digits, exponents of at least two digits. Also an output stream's default form.
std::string formatGeneral(double value);

// "%.*f": fixed notation with the given number of decimals.
std::string formatFixed(double value, int decimals);
