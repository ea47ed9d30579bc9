#include "tests/soak/strange_text.h"

namespace {

// The first bytes of UTF-8 for U+0580 to U+1FFF; those 0x20 lower (0xB6 to 0xC1) begin no character.
constexpr int kFirstComplex = 0xD6, kLastComplex = 0xE1, kToFollowers = 0x20;

}  // namespace

std::string strangeText(Dice& dice, std::size_t bytes, Scripts scripts) {
    std::string text(bytes, '\0');
    for (char& byte : text) {
        int value = dice.between(1, 255);
        if (scripts == Scripts::kNoComplex && value >= kFirstComplex && value <= kLastComplex) value -= kToFollowers;
        byte = static_cast<char>(value);
    }
    return text;
}
