#include "ui/shorten_text.h"
#include <gtest/gtest.h>

namespace {

// Ten for each UTF-16 unit, a blank half of that.
float widthOf(std::u16string_view text) {
    float width = 0.0f;
    for (const char16_t unit : text) width += unit == u' ' ? 5.0f : 10.0f;
    return width;
}

}  // namespace

TEST(ShortenText, EndsInAnEllipsisOnlyWhereTheTextIsTooLong) {
    const struct {
        const char16_t* text;
        float room;
        const char16_t* shown;
    } rows[] = {
        {u"", 0, u""},
        {u"TOWER", 50, u"TOWER"},
        {u"TOWER", 49.9f, u"TOW\u2026"},
        {u"TOWER", 20, u"T\u2026"},
        {u"TOWER", 19, u"\u2026"},
        {u"TOWER", 0, u"\u2026"},
        {u"AB CDE", 46, u"AB C\u2026"},
        {u"AB CDE", 44, u"AB\u2026"},                // no blank before the ellipsis
        {u"AB   ", 34, u"AB\u2026"},                 // nor at the end
        {u"A\U0001F6EC", 29, u"A\u2026"},            // a pair stays whole
        {u"Ze\u0301\u0301\u0301X", 45, u"Z\u2026"},  // and so does a letter with its marks
        {u"Ze\u0301\u0301\u0301X", 59, u"Z\u2026"},
        {u"Ze\u0301\u0301\u0301", 50, u"Ze\u0301\u0301\u0301"},
    };
    for (const auto& row : rows) {
        const std::u16string shown = shortenText(row.text, row.room, widthOf);
        EXPECT_EQ(shown, row.shown) << row.room;
        EXPECT_TRUE(widthOf(shown) <= row.room || shown == u"\u2026" || shown.empty()) << row.room;
    }
}

TEST(ShortenText, TakesAsMuchAsFitsOfALongText) {
    int measured = 0;
    const std::u16string text(5000, u'W');
    for (const float room : {15.0f, 100.0f, 347.0f, 12345.0f}) {
        const std::u16string shown = shortenText(text, room, [&](std::u16string_view piece) {
            measured++;
            return widthOf(piece);
        });
        EXPECT_EQ(shown.size(), static_cast<std::size_t>(room / 10)) << room;
        EXPECT_EQ(shown.back(), u'\u2026');
    }
    EXPECT_LE(measured, 4 * 15);  // measuring is costly
}
