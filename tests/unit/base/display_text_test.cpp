#include "base/display_text.h"
#include <gtest/gtest.h>
#include "base/utf8.h"

namespace {

// Every surrogate has its other half.
bool isWellFormed(std::u16string_view text) {
    for (std::size_t i = 0; i < text.size(); i++) {
        if (text[i] >= 0xDC00 && text[i] <= 0xDFFF) return false;
        if (text[i] < 0xD800 || text[i] > 0xDBFF) continue;
        if (++i == text.size() || text[i] < 0xDC00 || text[i] > 0xDFFF) return false;
    }
    return true;
}

}  // namespace

TEST(DisplayText, KeepsWhatIsUtf8) {
    EXPECT_EQ(displayText(""), u"");
    EXPECT_EQ(displayText("CLR TO KJFK ~!"), u"CLR TO KJFK ~!");
    EXPECT_EQ(displayText("Zoë ±°"), u"Zoë ±°");
    EXPECT_EQ(displayText("放行许可"), u"放行许可");
    EXPECT_EQ(displayText("🛬 \U0010FFFD \U00010000"), u"🛬 \U0010FFFD \U00010000");
    EXPECT_EQ(displayText("שלום سلام"), u"שלום سلام");
}

TEST(DisplayText, ShowsOneReplacementForEachDamagedCharacter) {
    const struct {
        const char* utf8;
        const char16_t* text;
    } rows[] = {
        {"\x80", u"\uFFFD"},
        {"a\xFFz", u"a\uFFFDz"},
        {"\xC3(", u"\uFFFD("},
        {"\xC0\xAF", u"\uFFFD\uFFFD"},                      // an overlong form of '/'
        {"\xE0\x80\xAF", u"\uFFFD\uFFFD\uFFFD"},            // another
        {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},            // a surrogate
        {"\xED\xBF\xBFx", u"\uFFFD\uFFFD\uFFFDx"},          //
        {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},  // above U+10FFFF
        {"\xF8\x88\x80\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"\xE6\x94", u"\uFFFD"},          // cut short: one beginning gives one mark
        {"\xF0\x9F\x9B", u"\uFFFD"},      //
        {"\xF0\x9F\x9Bx", u"\uFFFDx"},    //
        {"\xEF\xBF\xBF", u"\uFFFD"},      // not a character: U+FFFF
        {"\xF0\x9F\xBF\xBE", u"\uFFFD"},  // U+1FFFE
    };
    for (const auto& row : rows) EXPECT_EQ(displayText(row.utf8), row.text) << testing::PrintToString(row.utf8);
}

TEST(DisplayText, KnowsEveryLineEnd) {
    EXPECT_EQ(displayText("a\nb\r\nc\rd"), u"a\nb\nc\nd");
    EXPECT_EQ(displayText("\r\r\n\n"), u"\n\n\n");
    EXPECT_EQ(displayText("a\vb\fc\u0085d\u2028e\u2029f"), u"a\nb\nc\nd\ne\nf");
    EXPECT_EQ(displayText("a\tb"), u"a b");
    EXPECT_EQ(displayLine("a\r\nb\tc\nd"), u"a b c d");
}

TEST(DisplayText, LeavesOutWhatWouldHarmThePicture) {
    EXPECT_EQ(displayText(std::string_view("a\0b\x01\x1B[0m\x7F", 9)), u"ab[0m");
    EXPECT_EQ(displayText("\u0080\u009F\u00A0"), u"\u00A0");
    EXPECT_EQ(displayText("\u202Aa\u202Bb\u202Cc\u202Dd\u202Ee"), u"abcde");
    EXPECT_EQ(displayText("\u2066a\u2067b\u2068c\u2069d\u200Ee\u200Ff\u061Cg"), u"abcdefg");
    EXPECT_EQ(displayText("\uFEFFa\uFFF9b\uFFFAc\uFFFB\u206Ad\u206F"), u"abcd");
    EXPECT_EQ(displayText("\u2029\u202F\u2065"), u"\n\u202F\u2065");  // the neighbours of the characters left out
}

TEST(DisplayText, IsWellFormedForAnyTwoBytesAndAfterAnyCut) {
    for (int first = 0; first < 256; first++) {
        for (int second = 0; second < 256; second++) {
            const std::string bytes = {static_cast<char>(first), static_cast<char>(second), '\x9F', '\x80'};
            for (std::size_t size = 0; size <= bytes.size(); size++) {
                const std::u16string text = displayText(std::string_view(bytes).substr(0, size));
                ASSERT_TRUE(isWellFormed(text)) << first << " " << second;
                ASSERT_EQ(text.find(u'\0'), std::u16string::npos);
            }
        }
    }
}

TEST(DisplayText, ReadsNoMoreOfALineThanAllowedAndCutsNoCharacter) {
    EXPECT_EQ(displayLine("abc", 2), u"ab");
    EXPECT_EQ(displayLine("a放b", 3), u"a");
    EXPECT_EQ(displayLine(std::string(10'000, 'W'), 512).size(), 512U);
}

TEST(DisplayText, FindsWideCharacters) {
    EXPECT_FALSE(holdsWide(u""));
    EXPECT_FALSE(holdsWide(u"CLR Привет \u2E7F"));
    EXPECT_TRUE(holdsWide(u"CLR \u2E80"));
    EXPECT_TRUE(holdsWide(u"🛬"));
}

TEST(CharacterEnd, KeepsTogetherWhatIsOneCharacter) {
    const struct {
        const char16_t* text;
        std::size_t end;
    } rows[] = {
        {u"ab", 1},        {u"放行", 1},          {u"🛬🛬", 2},  {u"e\u0301x", 2},        {u"Z\u0338\u035Bx", 3},
        {u"か\u3099x", 2}, {u"\u2764\uFE0Fx", 2}, {u"👍🏽x", 4}, {u"👨\u200D✈\uFE0Fx", 5},  // a pilot
        {u"👨\u200D", 3},   {u"a\u200D b", 2},                                                  // a space stays alone
        {u" \u0301x", 1},  {u"\n\u0301x", 1},     {u"\u0301x", 1},   {u"\u200Dx", 1},
    };
    for (const auto& row : rows) EXPECT_EQ(characterEnd(row.text, 0), row.end) << testing::PrintToString(row.text);
}

TEST(CharacterEnd, IsBoundedAndGoesOnPastASurrogateAlone) {
    std::u16string marks(1000, u'\u0301');
    marks[0] = u'Z';
    EXPECT_EQ(characterEnd(marks, 0), kMaxCharacterUnits);
    const std::u16string alone = {char16_t(0xD800), u'a', char16_t(0xDC00), char16_t(0xD800)};
    EXPECT_EQ(characterEnd(alone, 0), 1U);
    EXPECT_EQ(characterEnd(alone, 2), 3U);
    EXPECT_EQ(characterEnd(alone, 3), 4U);
}
