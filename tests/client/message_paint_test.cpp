// message_paint_test.cpp - how the message window's page is painted, on a picture in memory: no window, no screen.
#include "base/clock_win.h"
#include "messages/local_time_win.h"
#include "tests/client/message_paint_rig.h"

INSTANTIATE_TEST_SUITE_P(At, MessagePaint, testing::Values(96U, 120U, 144U, 192U));

TEST_P(MessagePaint, TheGroundHasItsBandRulesAndFrame) {
    paint();
    EXPECT_EQ(colourAt(300, 300), kBackground);
    EXPECT_EQ(colourAt(300, 5), kHeaderBand);
    EXPECT_EQ(colourAt(300, 42), kHeaderBand);
    const int line = std::max(1, static_cast<int>(std::lround(scale)));
    for (const float y : {44.0f, 62.0f, 360.0f}) {
        const int top = static_cast<int>(std::lround(y * scale));
        const int middle = shown.width / 2;
        EXPECT_NE(shown.row(top - 1)[middle], kLines) << y;
        for (int i = 0; i < line; i++) EXPECT_EQ(shown.row(top + i)[middle], kLines) << y;
        EXPECT_EQ(shown.row(top + line)[middle], kBackground) << y;
    }
    const int right = shown.width - 1, bottom = shown.height - 1;
    for (int x = 0; x <= right; x++) {
        ASSERT_EQ(shown.row(0)[x], kLines) << x;
        ASSERT_EQ(shown.row(bottom)[x], kLines) << x;
    }
    for (int y = 0; y <= bottom; y++) {
        ASSERT_EQ(shown.row(y)[0], kLines) << y;
        ASSERT_EQ(shown.row(y)[right], kLines) << y;
    }
    EXPECT_EQ(shown.row(line)[line], kHeaderBand);
    EXPECT_EQ(shown.row(bottom - line)[right - line], kBackground);
}

TEST_P(MessagePaint, TheDotIsAmberWhileMessagesAreUnreadAndGreenOtherwise) {
    add("hello");
    paint();
    EXPECT_EQ(colourAt(18, 21), kAmber);
    EXPECT_EQ(colourAt(15, 18), kHeaderBand);  // the dot is round and ends there
    EXPECT_EQ(colourAt(22, 25), kHeaderBand);
    const Ink dot = inkIn({10, 12, 18, 20});
    EXPECT_NEAR(dot.right - dot.left, 6.0f, 2.0f / scale);
    EXPECT_NEAR(dot.bottom - dot.top, 6.0f, 2.0f / scale);
    store.unread = 0;
    paint();
    EXPECT_EQ(colourAt(18, 21), kBrightGreen);
}

TEST_P(MessagePaint, TheCloseGlyphIsRedUnderThePointer) {
    const UnitRect glyph = {580, 8, 32, 28};
    paint();
    const Ink usual = inkIn(glyph);
    EXPECT_GT(usual.count, 10);
    EXPECT_LT(distance(usual.strongest, kDimGreen), 60);
    page.hoverClose(true);
    paint();
    const Ink hovered = inkIn(glyph);
    EXPECT_LT(distance(hovered.strongest, kRed), 60);
    EXPECT_NEAR((hovered.left + hovered.right) / 2, 596.0f, 2.0f);  // in the middle of its area
    EXPECT_NEAR((hovered.top + hovered.bottom) / 2, 22.0f, 4.0f);
    EXPECT_GT(hovered.right - hovered.left, 5.0f);
}

TEST_P(MessagePaint, TheEmptyPageHasItsTwoLinesInTheMiddleAndNothingElse) {
    paint();
    const Ink title = inkIn({1, 174, 617, 24});
    EXPECT_NEAR((title.left + title.right) / 2, 310.0f, 3.0f);
    EXPECT_LT(distance(title.strongest, kDimGreen), 60);
    const Ink hint = inkIn({1, 203, 617, 19});
    EXPECT_NEAR((hint.left + hint.right) / 2, 310.0f, 3.0f);
    EXPECT_GT(hint.right - hint.left, 200.0f);
    EXPECT_GT(hint.left, 20.0f);
    for (const UnitRect& empty : {UnitRect{2, 47, 615, 14}, {2, 65, 615, 105}, {2, 226, 615, 130}, {2, 363, 615, 34}})
        EXPECT_EQ(inkIn(empty).count, 0) << empty.y;
}

TEST_P(MessagePaint, EachRowOfTheBodyStandsInItsPlace) {
    add("CLR TO KJFK\n\nSQUAWK 2211");
    paint();
    const float row = 22.5f;
    for (int i = 0; i < 4; i++) {
        const Ink ink = inkIn({2, 73 + static_cast<float>(i) * row, 615, row - 2});
        if (i == 0 || i == 2) {
            EXPECT_NEAR(ink.left, 20.0f, 2.0f) << i;
            EXPECT_GT(ink.bottom - ink.top, 7.0f) << i;
            EXPECT_LT(distance(ink.strongest, kBrightGreen), 60) << i;
        } else {
            EXPECT_EQ(ink.count, 0) << i;
        }
    }
    const float wanted = widthOf({PageFont::kMono, 15.0f, false}, u"SQUAWK 2211");
    paint();
    const Ink last = inkIn({2, 118, 615, 20});
    EXPECT_NEAR(last.right - 20.0f, wanted, 3.0f);
}

TEST_P(MessagePaint, EveryTextOfAFullPageIsSeenInItsPlace) {
    add("PDC 1423\n" + std::string(30, '\n') + "end", "EDDF_DEL");
    add("hello");
    store.unread = 3;
    page.change_page(store, 1);
    paint();
    EXPECT_LT(distance(inkIn({586, 315, 20, 18}).strongest, kAmber), 60);  // the mark for more text below
    EXPECT_EQ(inkIn({586, 293, 20, 18}).count, 0);
    const struct {
        const char* what;
        UnitRect rect;
        std::uint32_t colour;
    } rows[] = {
        {"ACARS", {30, 12, 60, 20}, kAmber},        {"PDC of the header", {112, 12, 40, 20}, kDimGreen},
        {"NEW", {168, 12, 60, 20}, kAmber},         {"TEXT", {440, 12, 50, 20}, kBrightGreen},
        {"label", {16, 46, 59, 15}, kDimGreen},     {"sender", {76, 46, 300, 15}, kBrightGreen},
        {"time", {478, 46, 122, 15}, kBrightGreen}, {"counter", {490, 368, 60, 17}, kBrightGreen},
        {"unread", {402, 368, 78, 17}, kAmber},
    };
    for (const auto& item : rows) {
        const Ink ink = inkIn(item.rect);
        EXPECT_GT(ink.count, 10) << item.what;
        EXPECT_LT(distance(ink.strongest, item.colour), 90) << item.what;
    }
    EXPECT_NEAR(inkIn({500, 46, 110, 15}).right, 600.0f, 3.0f);  // right-aligned and complete
}

TEST_P(MessagePaint, ATextIsAlignedInItsRectangle) {
    const UnitRect rect = {200, 100, 200, 24};
    const Ink left = inkOf(text(u"HELLO", rect));
    const Ink centre = inkOf(text(u"HELLO", rect, PageAlign::kCentre));
    const Ink right = inkOf(text(u"HELLO", rect, PageAlign::kRight));
    EXPECT_NEAR(left.left, 200.0f, 3.0f);
    EXPECT_NEAR((centre.left + centre.right) / 2, 300.0f, 2.0f);
    EXPECT_NEAR(right.right, 400.0f, 3.0f);
    for (const Ink& ink : {left, centre, right}) {
        EXPECT_NEAR(ink.right - ink.left, left.right - left.left, 1.5f);
        EXPECT_GE(ink.top, 100.0f);
        EXPECT_LE(ink.bottom, 124.0f);
    }
}

TEST_P(MessagePaint, TooLongATextEndsAtItsRectangleOrReachesOutOnTheLeft) {
    const std::u16string longText(200, u'W');
    const UnitRect rect = {250, 100, 100, 24};
    const Ink left = inkOf(text(longText, rect));
    EXPECT_NEAR(left.left, 250.0f, 2.0f);
    EXPECT_LE(left.right, 351.0f);
    const std::u16string wide(12, u'W');
    const Ink right = inkOf(text(wide, rect, PageAlign::kRight));
    EXPECT_NEAR(right.right, 350.0f, 2.0f);  // its end must be visible
    EXPECT_LT(right.left, 250.0f);
    PageItem indented = text(longText, rect);
    indented.indent = 40.0f;
    const Ink behind = inkOf(indented);
    EXPECT_NEAR(behind.left, 290.0f, 2.0f);
    EXPECT_LE(behind.right, 351.0f);
}

TEST_P(MessagePaint, ANameTooLongEndsInAnEllipsisBeforeTheTimesLabel) {
    for (const char* letter : {"W", "Ж", "放", "i"}) {
        std::string name;
        for (int i = 0; i < 150; i++) name += letter;
        add("hello", name);
        paint();
        const PageLayout& layout = page.layout();
        EXPECT_EQ(layout.sender.back(), u'\u2026') << letter;
        EXPECT_LE(widthOf(layout.senderStyle, layout.sender), 348.0f) << letter;
        EXPECT_GT(widthOf(layout.senderStyle, layout.sender), 330.0f) << letter;  // with as many letters as fit
        paint();
        const Ink ink = inkIn({70, 46, 358, 15});
        EXPECT_GT(ink.right, 400.0f) << letter;
        EXPECT_LT(ink.right, 426.0f) << letter;
    }
}

// In the fonts it is drawn with: each text is inside its place, and none reaches into its neighbour. Target and time
// alone are wider than their rectangle, to the left, where there is room.
TEST_P(MessagePaint, InEveryLanguageNoTextIsCutOrRunsIntoAnother) {
    const std::string names[] = {"EDDF_DEL", std::string(150, 'W'), "Санкт-Петербург-Подход, старший диспетчер смены",
                                 "北京首都国际机场放行许可席位管制员值班主任北京首都国际机场"};
    std::vector<std::pair<std::string, std::int32_t>> pages;
    for (const std::string& name : names) {
        pages.emplace_back(name, 0);
        pages.emplace_back(name, 88);
    }
    for (language = 0; language < kLanguageCount; language++) {
        for (const auto& [name, unread] : pages) {
            add("CLR TO KJFK", name);
            store.unread = unread;
            const std::vector<Extent> extents = paintAndMeasure();
            for (std::size_t i = 0; i < extents.size(); i++) {
                const Extent& one = extents[i];
                EXPECT_LE(one.right, one.rect.x + one.rect.width + 0.5f) << language << " " << one.text;
                for (std::size_t j = i + 1; j < extents.size(); j++) {
                    const Extent& other = extents[j];
                    const bool isBeside = one.rect.y + one.rect.height <= other.rect.y ||
                                          other.rect.y + other.rect.height <= one.rect.y || one.right <= other.left ||
                                          other.right <= one.left;
                    EXPECT_TRUE(isBeside) << language << " " << one.text << " and " << other.text;
                }
            }
        }
    }
}

TEST_P(MessagePaint, AtEveryTextSizeTheRowsEndAboveTheFooterAndInsideThePage) {
    std::string words, chinese;
    for (int i = 0; i < 300; i++) words += "Разрешён вылет, эшелон 350, " + std::to_string(i) + ". ";
    for (int i = 0; i < 900; i++) chinese += "放行";
    for (textScale = 12.0f; textScale <= 22.0f; textScale += 1.0f) {
        for (const std::string& message : {std::string(3000, 'W'), std::string(3000, 'i'), words, chinese}) {
            add(message);
            paint();
            const PageLayout& layout = page.layout();
            const float bottom = 72.0f + static_cast<float>(layout.visibleRows) * textScale * kPageLineHeight;
            EXPECT_LE(bottom, 354.0f) << textScale;
            EXPECT_GT(bottom + textScale * kPageLineHeight, 354.0f) << textScale;  // no row is left out
            EXPECT_EQ(inkIn({2, 355, 615, 4}).count, 0) << textScale;
            EXPECT_EQ(inkIn({2, 64, 16, 290}).count, 0) << textScale;
            EXPECT_EQ(inkIn({608, 64, 10, 290}).count, 0) << textScale;
        }
    }
}

TEST_P(MessagePaint, MeasuresWhatItPaints) {
    const PageTextStyle styles[] = {{PageFont::kMono, 12.0f, false},
                                    {PageFont::kMono, 22.0f, false},
                                    {PageFont::kMono, 13.0f, true},
                                    {PageFont::kChinese, 15.0f, false}};
    for (const PageTextStyle& style : styles) {
        const std::u16string letters = u"HELLO WORLD H";
        const float width = widthOf(style, letters);
        const Ink ink = inkOf(text(letters, {20, 100, 580, 40}, PageAlign::kLeft, style));
        EXPECT_NEAR(ink.right - ink.left, width, style.size * 0.3f) << style.size;
        EXPECT_NEAR(widthOf(style, letters + u"   "), width + 3 * widthOf(style, u" "), 0.6f) << style.size;
        EXPECT_NEAR(widthOf(style, letters + letters), 2 * width, 1.0f) << style.size;
    }
}

TEST_P(MessagePaint, TheCursorStandsBehindTheLastLetter) {
    add("hello");
    paint();
    const PageItem cursor = *page.cursor(0);
    const Ink row = inkIn({2, 73, 615, 20});
    EXPECT_GE(cursor.rect.x, row.right - 1.0f);
    EXPECT_LE(cursor.rect.x, row.right + 4.0f);
    EXPECT_GE(cursor.rect.y, 72.0f);
    EXPECT_LE(cursor.rect.y + cursor.rect.height, 94.5f);
}

TEST_P(MessagePaint, HostileMessagesStayInTheirRows) {
    const std::string hostile[] = {
        std::string(8192, 'x'),   std::string(8192, ' '), std::string(8192, '\n'),    std::string(8192, '\xFF'),
        "\u202E\u202E\u2067 rtl", "\U0001F6EC \xF0\x9F",  "\u05E9\u05DC\u05D5\u05DD", std::string(100, '\r') + "x",
    };
    for (const float size : {12.0f, 22.0f}) {
        textScale = size;
        for (const std::string& message : hostile) {
            add(message, message);
            paint();
            EXPECT_EQ(inkIn({2, 64, 16, 294}).count, 0) << message.substr(0, 20);    // left of the body
            EXPECT_EQ(inkIn({608, 64, 10, 294}).count, 0) << message.substr(0, 20);  // and right of its marks
            EXPECT_EQ(inkIn({2, 363, 12, 34}).count, 0) << message.substr(0, 20);
            EXPECT_GT(inkIn({490, 368, 60, 17}).count, 10) << message.substr(0, 20);  // the counter
        }
    }
}

TEST_P(MessagePaint, EveryLanguageHasItsHintPainted) {
    for (language = 0; language < kLanguageCount; language++) {
        paint();
        const Ink hint = inkIn({1, 203, 617, 19});
        EXPECT_GT(hint.right - hint.left, 100.0f) << language;
        EXPECT_GT(hint.left, 5.0f) << language;
        EXPECT_LT(hint.right, 615.0f) << language;
    }
}

// --- the wall clock ---

namespace {

TIME_ZONE_INFORMATION centralEurope() {
    TIME_ZONE_INFORMATION zone = {};
    zone.Bias = -60;
    zone.DaylightBias = -60;
    zone.StandardDate = {0, 10, 0, 5, 3, 0, 0, 0};  // the last Sunday of October, 3:00
    zone.DaylightDate = {0, 3, 0, 5, 2, 0, 0, 0};
    return zone;
}

std::string textOf(const TimeOfDay& time) {
    char text[16];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d", time.hour, time.minute, time.second);
    return text;
}

}  // namespace

TEST(LocalTime, IsTheZonesWithItsSummerTime) {
    const TIME_ZONE_INFORMATION zone = centralEurope();
    constexpr double kNoonInJanuary = 1768478645.0;  // 2026-01-15 12:04:05 UTC
    constexpr double kNoonInJuly = 1784117045.0;     // 2026-07-15 12:04:05 UTC
    EXPECT_EQ(textOf(localTimeIn(zone, kNoonInJanuary)), "13:04:05");
    EXPECT_EQ(textOf(localTimeIn(zone, kNoonInJuly)), "14:04:05");
    EXPECT_EQ(textOf(localTimeIn(zone, kNoonInJuly + 0.999)), "14:04:05");
    EXPECT_EQ(textOf(localTimeIn(zone, kNoonInJuly + 10 * 3600)), "00:04:05");  // the next day
    TIME_ZONE_INFORMATION west = {};
    west.Bias = 210;
    EXPECT_EQ(textOf(localTimeIn(west, kNoonInJuly)), "08:34:05");
}

TEST(LocalTime, IsTheSystemsWithoutAZone) {
    const auto systemTime = [] {
        SYSTEMTIME time = {};
        GetLocalTime(&time);
        return textOf({time.wHour, time.wMinute, time.wSecond});
    };
    const std::string before = systemTime();
    const std::string time = textOf(localTimeOf(SystemClock().unixSeconds()));
    EXPECT_TRUE(time == before || time == systemTime()) << time << ", not " << before;
}
