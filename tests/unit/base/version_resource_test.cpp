#include "base/version_resource.h"
#include <gtest/gtest.h>
#include <vector>

namespace {

// A version resource as compilers make them: length, value length, type, the key in UTF-16, padding, the fixed part.
std::vector<std::byte> resourceOf(std::uint32_t high, std::uint32_t low) {
    std::vector<std::byte> bytes(40);
    const auto add = [&](std::uint32_t word) {
        for (int shift = 0; shift < 32; shift += 8) bytes.push_back(std::byte(word >> static_cast<unsigned>(shift)));
    };
    for (const std::uint32_t word : {0xFEEF04BDU, 0x00010000U, high, low, high, low}) add(word);
    bytes.resize(bytes.size() + 28);
    return bytes;
}

}  // namespace

TEST(VersionResource, IsReadFromItsFixedPart) {
    const auto version = readVersionResource(resourceOf(0x0003000A, 0x00020007));
    ASSERT_TRUE(version);
    EXPECT_EQ(*version, (ProgramVersion{{3, 10, 2, 7}}));
}

TEST(VersionResource, IsNothingWhenItIsCutShortOrDamaged) {
    const auto whole = resourceOf(0x00030006, 0x00020000);
    for (std::size_t length = 0; length < 40 + 16; length++)
        EXPECT_FALSE(readVersionResource(std::span(whole).first(length))) << length;
    EXPECT_TRUE(readVersionResource(std::span(whole).first(40 + 16)));
    auto damaged = whole;
    damaged[40] = std::byte{0};
    EXPECT_FALSE(readVersionResource(damaged));
    EXPECT_FALSE(readVersionResource({}));
}

TEST(VersionResource, AsATextLeavesTheBuildOut) {
    EXPECT_EQ(versionText(ProgramVersion{{3, 10, 2, 7}}), "3.10.2");
}
