#include "tests/soak/strange_text.h"
#include <gtest/gtest.h>
#include <algorithm>
#include <array>
#include "base/utf8.h"

namespace {

constexpr std::size_t kManyBytes = 1'000'000;

std::size_t complexPoints(std::string_view text) {
    std::size_t count = 0;
    while (!text.empty()) {
        const DecodedPoint decoded = decodePoint(text);
        count += decoded.point >= 0x580 && decoded.point < 0x2000;
        text.remove_prefix(decoded.bytes);
    }
    return count;
}

}  // namespace

TEST(StrangeText, HasAllBytesButTheEnd) {
    Dice dice(3);
    const std::string text = strangeText(dice, kManyBytes, Scripts::kAll);
    EXPECT_EQ(text.size(), kManyBytes);
    std::array<int, 256> counts{};
    for (const char byte : text) counts[static_cast<unsigned char>(byte)]++;
    EXPECT_EQ(counts[0], 0);
    EXPECT_GT(*std::min_element(counts.begin() + 1, counts.end()), 3000);
    EXPECT_GT(complexPoints(text), 1000u);
}

TEST(StrangeText, HasNoComplexScriptWhereItMayNot) {
    Dice dice(3);
    const std::string text = strangeText(dice, kManyBytes, Scripts::kNoComplex);
    EXPECT_EQ(text.size(), kManyBytes);
    EXPECT_EQ(complexPoints(text), 0u);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\0'), 0);
}
