#include "tests/soak/hostile_telemetry.h"
#include <algorithm>
#include <array>
#include <vector>

namespace {

using namespace std::string_literals;

constexpr std::size_t kMostBytes = 1'000'000;

std::string bytesAtRandom(std::size_t count, Dice& dice) {
    std::string text(count, '\0');
    for (char& byte : text) byte = static_cast<char>(dice.next() & 0xFFU);
    return text;
}

// The text with the value behind a key, or behind all of them, replaced.
std::string withNumbers(std::string_view good, std::string_view number, bool isEveryOne, Dice& dice) {
    std::vector<std::size_t> colons;
    for (std::size_t i = 0; i < good.size(); i++) {
        if (good[i] == ':') colons.push_back(i);
    }
    const std::size_t chosen = dice.below(colons.size());
    std::string text;
    std::size_t copied = 0;
    for (std::size_t i = 0; i < colons.size(); i++) {
        if (!isEveryOne && i != chosen) continue;
        text += good.substr(copied, colons[i] + 1 - copied);
        text += number;
        copied = std::min(good.find_first_of(",}", colons[i]), good.size());
    }
    return text + std::string(good.substr(copied));
}

std::string withABitTurned(std::string_view good, Dice& dice) {
    std::string text(good);
    if (!text.empty()) text[dice.below(text.size())] ^= static_cast<char>(1U << dice.below(8));
    return text;
}

constexpr std::array kNumbers = {"1e999",  "-1e999", "nan",           "1e308",       "-0",   "99999999999999999999",
                                 "0x7FFF", "\"\"",   "-2147483649.5", "[1,[2,[3]]]", "null", "118000.0000001"};

}  // namespace

std::string harmedTelemetry(std::size_t kind, std::string_view good, Dice& dice) {
    switch (kind) {
        case 0:  // torn: only the beginning has been written
            return std::string(good.substr(0, dice.below(good.size())));
        case 1:  // torn: the end of an older, longer text is still there
            return std::string(good) + std::string(good.substr(dice.below(good.size())));
        case 2:  // torn: the disk's zeros at the end
            return std::string(good.substr(0, dice.below(good.size()))) + std::string(dice.below(5000) + 1, '\0');
        case 3:
            return "";
        case 4:
            return bytesAtRandom(dice.below(4000) + 1, dice);
        case 5:
            return std::string(dice.below(kMostBytes) + 1, static_cast<char>(dice.next() & 0xFFU));
        case 6:
            return withNumbers(good, dice.oneOf(kNumbers), false, dice);
        case 7:
            return withNumbers(good, dice.oneOf(kNumbers), true, dice);
        case 8:
            return withABitTurned(good, dice);
        case 9:
            return withNumbers(good, " \"" + bytesAtRandom(3000, dice) + "\"", false, dice);
        case 10:
            return "\xEF\xBB\xBF"s + std::string(good);
        default:
            return std::string(dice.below(100'000) + 1, '{') + std::string(good);
    }
}
