#include "worker/readable_text.h"
#include <gtest/gtest.h>
#include "base/log_line.h"

namespace {

// The system's code page of this test: Latin-1.
std::string latin1(const std::string& narrow) {
    std::string utf8;
    for (const char c : narrow) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            utf8 += c;
        } else {
            utf8 += static_cast<char>(0xC0 | byte >> 6U);
            utf8 += static_cast<char>(0x80 | (byte & 0x3FU));
        }
    }
    return utf8;
}

using Lines = std::vector<std::string>;

}  // namespace

TEST(ReadableText, SplitsLinesOfEitherKind) {
    EXPECT_EQ(splitLines(""), Lines{});
    EXPECT_EQ(splitLines("a"), Lines{"a"});
    EXPECT_EQ(splitLines("a\n\nb\r\n"), (Lines{"a", "", "b\r"}));
    EXPECT_EQ(splitLines("\xEF\xBB\xBF"
                         "a\nb"),
              (Lines{"a", "b"}));
    EXPECT_EQ(readableLine("b\r", latin1), "b");
}

TEST(ReadableText, ReadsUtf16ByItsMark) {
    using namespace std::string_view_literals;
    // The second byte of U+5C0F is a backslash, U+1F600 is a pair of surrogates.
    const Lines expected = {"a\xE5\xB0\x8F\r", "\xC3\xBC\xF0\x9F\x98\x80"};
    EXPECT_EQ(splitLines("\xFF\xFE"
                         "a\0\x0F\x5C\r\0\n\0\xFC\0\x3D\xD8\x00\xDE"sv),
              expected);
    EXPECT_EQ(splitLines("\xFE\xFF\0a\x5C\x0F\0\r\0\n\0\xFC\xD8\x3D\xDE\x00"sv), expected);
    EXPECT_EQ(splitLines("\xFF\xFE"sv), Lines{});
    EXPECT_EQ(splitLines("\xFF\xFE"
                         "a"sv),
              Lines{});
    // A surrogate alone, at the end and in the middle.
    EXPECT_EQ(splitLines("\xFF\xFE\x3D\xD8"sv), Lines{"\xEF\xBF\xBD"});
    EXPECT_EQ(splitLines("\xFF\xFE\x3D\xD8"
                         "a\0"sv),
              Lines{"\xEF\xBF\xBD"
                    "a"});
}

TEST(ReadableText, TakesALineThatIsNotUtf8ForTheCodePage) {
    EXPECT_EQ(readableLine("M\xC3\xBCller", latin1), "M\xC3\xBCller");
    EXPECT_EQ(readableLine("M\xFCller", latin1), "M\xC3\xBCller");
    EXPECT_EQ(readableLine("\xEF\xBF\xBD", latin1), "\xEF\xBF\xBD");  // U+FFFD itself
    // A decoder that returns nonsense.
    EXPECT_EQ(readableLine("\xFF", [](const std::string& narrow) { return narrow; }), "\xEF\xBF\xBD");
}

TEST(ReadableText, ShowsNoControlCharacters) {
    EXPECT_EQ(readableLine("a\tb\x01\x1B[2Jc\x7F\rd\n", latin1), "a b??[2Jc??d?");
    EXPECT_EQ(readableLine("\xE2\x80\xAE"
                           "exe",
                           latin1),
              "?exe");  // right-to-left override
    EXPECT_EQ(readableLine(std::string("a\0b", 3), latin1), "(3 bytes that are no text)");
}

TEST(ReadableText, OfEveryByteIsUtf8) {
    for (int first = 0; first < 256; first++) {
        for (int second = 0; second < 256; second++) {
            const std::string bytes = {static_cast<char>(first), static_cast<char>(second)};
            const auto shown = readableLine(bytes, latin1);
            EXPECT_EQ(readableLine(shown, [](const std::string&) { return "not UTF-8"; }), shown)
                << first << ' ' << second;
        }
    }
}
