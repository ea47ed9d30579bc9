#include "ui/word_wrap.h"
#include <gtest/gtest.h>
#include <random>
#include "tests/unit/ui/plain_word_wrap.h"

namespace {

// A fixed pitch, doubled for wide characters.
float cells(std::u16string_view text) {
    float width = 0.0f;
    for (const char16_t unit : text) width += isWide(unit) ? 2.0f : 1.0f;
    return width;
}

using Lines = std::vector<std::u16string>;

Lines wrap(const std::u16string& text, float maxWidth, const MeasureText& measure = cells) {
    Lines lines;
    for (const auto line : wrapText(text, maxWidth, measure)) lines.emplace_back(line);
    return lines;
}

// Proportional: from zero (marks) to three cells, depending on the character.
float proportional(std::u16string_view text) {
    float width = 0.0f;
    for (const char16_t unit : text) width += static_cast<float>(unit * 7U % 13U) / 4.0f;
    return width;
}

// In steps: many texts have the same width, as when a font rounds.
float stepped(std::u16string_view text) {
    return static_cast<float>(text.size() / 3);
}

std::u16string randomText(std::mt19937& random, std::size_t length) {
    static const std::u16string kAlphabet[] = {u"a",  u"b",    u"W",       u"i",      u" ",      u" ", u"\n", u"放",
                                               u"行", u"🛬", u"e\u0301", u"\uFE0F", u"\u200D", u"-", u"Ж",  u"ab cd"};
    std::u16string text;
    while (text.size() < length) text += kAlphabet[random() % std::size(kAlphabet)];
    return text;
}

struct CountedCells {
    int calls = 0;
    std::size_t units = 0;
    MeasureText measure() {
        return [this](std::u16string_view text) {
            calls++;
            units += text.size();
            return cells(text);
        };
    }
};

}  // namespace

TEST(WordWrap, BreaksBeforeTheWordThatDoesNotFit) {
    EXPECT_EQ(wrap(u"one two three", 20), (Lines{u"one two three"}));
    EXPECT_EQ(wrap(u"one two three", 13), (Lines{u"one two three"}));
    EXPECT_EQ(wrap(u"one two three", 12), (Lines{u"one two ", u"three"}));
    EXPECT_EQ(wrap(u"one two three", 7), (Lines{u"one two ", u"three"}));
    EXPECT_EQ(wrap(u"one two three", 6), (Lines{u"one ", u"two ", u"three"}));
}

TEST(WordWrap, KeepsLineFeedsAndEmptyLines) {
    EXPECT_EQ(wrap(u"", 5), Lines{});
    EXPECT_EQ(wrap(u"\n", 5), Lines{u""});
    EXPECT_EQ(wrap(u"a\n", 5), Lines{u"a"});
    EXPECT_EQ(wrap(u"a\nb", 5), (Lines{u"a", u"b"}));
    EXPECT_EQ(wrap(u"\n\na\n\nb\n\n", 5), (Lines{u"", u"", u"a", u"", u"b", u""}));
    EXPECT_EQ(wrap(u"abcde\nf", 5), (Lines{u"abcde", u"f"}));
    EXPECT_EQ(wrap(u"abcdefg\nh", 5), (Lines{u"abcde", u"fg", u"h"}));
}

TEST(WordWrap, KeepsSpacesOnTheLineTheyFollow) {
    EXPECT_EQ(wrap(u"   ", 2), Lines{u"   "});
    EXPECT_EQ(wrap(u"ab    cd", 3), (Lines{u"ab    ", u"cd"}));
    EXPECT_EQ(wrap(u"  abcd", 4), (Lines{u"  ", u"abcd"}));
    EXPECT_EQ(wrap(u" abc", 4), Lines{u" abc"});
    EXPECT_EQ(wrap(u"ab   \ncd", 3), (Lines{u"ab   ", u"cd"}));
}

TEST(WordWrap, BreaksBetweenAnyTwoWideCharacters) {
    EXPECT_EQ(wrap(u"放行许可", 4), (Lines{u"放行", u"许可"}));
    EXPECT_EQ(wrap(u"放行许可", 5), (Lines{u"放行", u"许可"}));
    EXPECT_EQ(wrap(u"ab放行cd", 4), (Lines{u"ab放", u"行cd"}));
    EXPECT_EQ(wrap(u"放abc行", 4), (Lines{u"放", u"abc", u"行"}));
    EXPECT_EQ(wrap(u"\u2E7F\u2E7F\u2E7F a", 3), (Lines{u"\u2E7F\u2E7F\u2E7F ", u"a"}));  // one word: just not wide
}

TEST(WordWrap, BreaksAWordTooWideForALineBetweenItsCharacters) {
    EXPECT_EQ(wrap(u"abcdefgh", 3), (Lines{u"abc", u"def", u"gh"}));
    EXPECT_EQ(wrap(u"x abcdefgh i", 4), (Lines{u"x ", u"abcd", u"efgh ", u"i"}));
    EXPECT_EQ(wrap(u"abcdef g", 4), (Lines{u"abcd", u"ef g"}));
}

TEST(WordWrap, StandsASingleCharacterTooWideOnALineByItself) {
    EXPECT_EQ(wrap(u"放行", 1), (Lines{u"放", u"行"}));
    EXPECT_EQ(wrap(u"abc", 0.5f), (Lines{u"a", u"b", u"c"}));
    EXPECT_EQ(wrap(u"a b", 0.5f), (Lines{u"a ", u"b"}));
}

TEST(WordWrap, SplitsNoPairAndNoMarkFromItsLetter) {
    EXPECT_EQ(wrap(u"🛬🛬🛬", 5), (Lines{u"🛬", u"🛬", u"🛬"}));
    EXPECT_EQ(wrap(u"e\u0301e\u0301e\u0301", 3), (Lines{u"e\u0301", u"e\u0301", u"e\u0301"}));
    EXPECT_EQ(wrap(u"👨\u200D✈\uFE0F👨", 4), (Lines{u"👨\u200D✈\uFE0F", u"👨"}));
}

TEST(WordWrap, EqualsThePlainRulesForAnyTextAndWidth) {
    std::mt19937 random(20260928);
    const MeasureText measures[] = {cells, proportional, stepped};
    for (int round = 0; round < 6000; round++) {
        const std::u16string text = randomText(random, random() % 120);
        const float maxWidth = static_cast<float>(random() % 60) / 2.0f;
        for (const MeasureText& measure : measures)
            ASSERT_EQ(wrap(text, maxWidth, measure), plainWrap(text, maxWidth, measure))
                << maxWidth << " " << testing::PrintToString(text);
    }
}

TEST(WordWrap, EqualsThePlainRulesForLongTexts) {
    std::mt19937 random(7);
    for (int round = 0; round < 20; round++) {
        const std::u16string text = randomText(random, 3000);
        for (const float maxWidth : {1.0f, 40.0f, 83.0f, 400.0f, 10'000.0f})
            ASSERT_EQ(wrap(text, maxWidth, proportional), plainWrap(text, maxWidth, proportional)) << round;
    }
}

TEST(WordWrap, StopsAfterAsManyLinesAsWanted) {
    std::mt19937 random(11);
    for (int round = 0; round < 300; round++) {
        const std::u16string text = randomText(random, random() % 200);
        const Lines all = wrap(text, 20);
        for (const std::size_t maxLines : {std::size_t{0}, std::size_t{1}, std::size_t{3}, all.size()}) {
            const auto some = wrapText(text, 20, cells, kMessageWrap, maxLines);
            ASSERT_EQ(some.size(), std::min(maxLines, all.size()));
            for (std::size_t i = 0; i < some.size(); i++) ASSERT_EQ(some[i], all[i]);
        }
    }
}

TEST(WordWrap, AsksForFewWidths) {
    std::u16string words;
    while (words.size() < 8192) words += u"the quick brown fox ";
    std::u16string letters;
    while (letters.size() < 8192) letters += u"a ";
    const struct {
        const char* name;
        std::u16string text;
    } rows[] = {{"one word", std::u16string(8192, u'W')},
                {"Chinese", std::u16string(2730, u'放')},
                {"spaces", std::u16string(8192, u' ')},
                {"line feeds", std::u16string(8192, u'\n')},
                {"words", words},
                {"letters", letters}};
    for (const auto& row : rows) {
        CountedCells counted;
        const std::size_t lines = wrap(row.text, 80, counted.measure()).size();
        EXPECT_LE(static_cast<std::size_t>(counted.calls), 3 * lines + 8) << row.name;
        EXPECT_LE(counted.units, 100U * static_cast<std::size_t>(counted.calls)) << row.name;  // and none of long texts
    }
}

TEST(WordWrap, LinesAreStretchesOfTheTextInOrder) {
    std::mt19937 random(3);
    const std::u16string text = randomText(random, 2000);
    const char16_t* at = text.data();
    for (const auto line : wrapText(text, 30, cells)) {
        if (line.data() != at) {
            EXPECT_EQ(*at, u'\n');
            at++;
        }
        ASSERT_EQ(line.data(), at);
        at += line.size();
    }
    EXPECT_GE(at + 1, text.data() + text.size());
}
