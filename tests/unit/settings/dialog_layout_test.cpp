#include "settings/dialog_layout.h"
#include <gtest/gtest.h>
#include <cmath>
#include "settings/texts.h"
#include "tests/unit/settings/dialog_rig.h"
#include "tests/unit/settings/text_characters.h"

namespace {

constexpr unsigned kResolutions[] = {96, 120, 144, 192};

DialogLayout wholeDialog(unsigned dpi, int page) {
    const auto pixels = [&](int units) { return static_cast<std::int32_t>(std::lround(units * dpi / 96.0)); };
    return layoutDialog(pixels(kDialogWidth), pixels(kDialogHeight), dpi, page, 0);
}

template <class Check>
void forEachLayout(Check check) {
    for (const unsigned dpi : kResolutions) {
        for (int page = 0; page < kPageCount; page++) {
            SCOPED_TRACE(std::to_string(dpi) + " dpi, page " + std::to_string(page));
            check(wholeDialog(dpi, page));
        }
    }
}

bool isWithin(const PixelRect& inner, const PixelRect& outer) {
    return !inner.isEmpty() && intersectRects(inner, outer) == inner;
}

// Wider than any of the interface fonts: em widths by kind of letter, and some for bold.
std::int32_t generousWidth(const DialogText& style, const std::string& piece) {
    double em = 0.0;
    const auto characters = charactersOf(piece);
    if (!characters) return 1'000'000;
    for (const char32_t c : *characters) {
        if (isHan(c) || isKana(c) || isHangul(c) || isFullWidth(c))
            em += 1.0;
        else if (c == U' ' || c == 0xA0 || c == U'.' || c == U',' || c == U':' || c == U'’' || c == U'·')
            em += 0.28;
        else if (std::u32string_view(U"iljtfrI()/-í").find(c) != std::u32string_view::npos)
            em += 0.37;
        else if (std::u32string_view(U"mwMWшщжмфюыШЩЖМФЮ⇄%").find(c) != std::u32string_view::npos)
            em += c < 0x400 ? 0.92 : 0.80;
        else if (isBetween(c, U'A', U'Z') || isBetween(c, 0xC0, 0xDE) || isBetween(c, 0x410, 0x42F))
            em += 0.68;
        else
            em += 0.565;
    }
    const double bold = style.isBold ? 1.07 : 1.0;
    return static_cast<std::int32_t>(std::ceil(em * bold * style.fontPixels));
}

DialogView viewIn(std::int32_t language) {
    DialogView view;
    view.language = language;
    view.live = {"COM2   122.800 MHz", "VOL 100%", 72, true};
    return view;
}

}  // namespace

TEST(DialogLayoutTest, NothingOverlapsOrLeavesItsPlace) {
    forEachLayout([](const DialogLayout& layout) {
        for (std::size_t i = 0; i < layout.controls.size(); i++) {
            const DialogControl& control = layout.controls[i];
            EXPECT_TRUE(isWithin(control.rect, control.isOnPage ? layout.pageView : layout.client)) << control.id;
            for (std::size_t j = 0; j < i; j++)
                EXPECT_TRUE(intersectRects(control.rect, layout.controls[j].rect).isEmpty())
                    << control.id << " and " << layout.controls[j].id;
            for (const DialogPageText& text : layout.pageTexts)
                EXPECT_TRUE(intersectRects(control.rect, text.rect).isEmpty()) << control.id << ", text " << text.entry;
        }
        for (const DialogPageText& text : layout.pageTexts) EXPECT_TRUE(isWithin(text.rect, layout.pageView));
        EXPECT_TRUE(layout.scrollBar.isEmpty());
        EXPECT_EQ(layout.scrollRange, 0);
    });
}

TEST(DialogLayoutTest, TheMiddleOfEachControlHitsIt) {
    forEachLayout([](const DialogLayout& layout) {
        for (const DialogControl& control : layout.controls) {
            EXPECT_EQ(hitDialog(layout, middleOf(control.rect)).id, control.id);
            const int parts = optionCount(*findRow(control.id)) == 0   ? 0
                              : control.look == ControlLook::kSegments ? 3
                                                                       : 2;
            for (int part = 0; part < parts; part++) {
                const PixelRect rect = partRect(layout, control, part);
                EXPECT_TRUE(isWithin(rect, control.rect)) << control.id;
                EXPECT_EQ(hitDialog(layout, middleOf(rect)), (DialogHit{control.id, part}));
            }
        }
        EXPECT_EQ(hitDialog(layout, {layout.px(400), layout.px(30)}).id, kTitleBarHit);
        EXPECT_EQ(hitDialog(layout, {-1, 5}).id, kNothingHit);
        EXPECT_EQ(hitDialog(layout, {layout.client.right, 5}).id, kNothingHit);
    });
}

TEST(DialogLayoutTest, KeepsTheGivenDistancesAndSizes) {
    const DialogLayout layout = wholeDialog(96, 0);
    const auto rect = [&](int id) { return findControl(layout, id)->rect; };
    for (int n = 1; n < 4; n++) EXPECT_EQ(rect(5000 + n).top - rect(5000 + n - 1).top, 48);
    for (int n = 0; n < 9; n++) {
        EXPECT_EQ(rect(5100 + n).top, rect(5100).top + n / 3 * 40);
        EXPECT_EQ(rect(5100 + n).left, rect(5100 + n % 3).left);
    }
    const int options[] = {6020, 6021, 6026, 6027, 6028, 6029};
    for (int i = 0; i < 6; i++) {
        EXPECT_EQ(rect(options[i]).right - rect(options[i]).left, 327);
        EXPECT_EQ(rect(options[i]).bottom - rect(options[i]).top, 46);
        EXPECT_EQ(rect(options[i]).top - rect(options[0]).top, 48 * i);
    }
}

TEST(DialogLayoutTest, EachPageHasItsControls) {
    const std::vector<std::vector<int>> pages = {
        {5100, 5101, 5102, 5103, 5104, 5105, 5106, 5107, 5108, 6000, 6001,
         6002, 6003, 6004, 6005, 6020, 6021, 6026, 6027, 6028, 6029},
        {6021, 6022, 6023, 6024, 6025, 6026, 6027, 6028, 6029, 6030, 6031},
        {6040, 6041, 6042, 6043, 6044, 6045, 6046, 6047, 6048, 6049, 6050, 6060, 6061, 6062, 6063, 6064},
        {}};
    const std::vector<std::vector<int>> headings = {{9, 10, 18}, {27, 32, 33}, {38, 39, 44, 52}, {}};
    for (int page = 0; page < kPageCount; page++) {
        const DialogLayout layout = wholeDialog(96, page);
        std::vector<int> onPage, headed;
        for (const DialogControl& control : layout.controls) {
            if (control.isOnPage) onPage.push_back(control.id);
        }
        for (const DialogPageText& text : layout.pageTexts) {
            if (text.style == DialogTextStyle::kHeading) headed.push_back(text.entry);
        }
        std::sort(onPage.begin(), onPage.end());
        std::sort(headed.begin(), headed.end());
        EXPECT_EQ(onPage, pages[static_cast<std::size_t>(page)]);
        EXPECT_EQ(headed, headings[static_cast<std::size_t>(page)]);
        for (const int id : {5000, 5001, 5002, 5003, 5150, 6006, 6080, 6081, 6082})
            EXPECT_TRUE(findControl(layout, id));
    }
}

TEST(DialogLayoutTest, EveryTextOfEveryLanguageFits) {
    int texts = 0;
    forEachLayout([&](const DialogLayout& layout) {
        for (std::int32_t language = 0; language < kLanguageCount; language++) {
            for (const int state : {70, 71, 72}) {
                DialogView view = viewIn(language);
                view.live.stateEntry = state;
                for (const DialogText& text : dialogTexts(layout, view)) {
                    EXPECT_TRUE(isFitting(text, generousWidth))
                        << text.text << " is " << generousWidth(text, text.text) << " wide in "
                        << text.rect.right - text.rect.left << " x " << text.rect.bottom - text.rect.top;
                    texts++;
                }
            }
        }
    });
    EXPECT_GT(texts, 4 * 4 * 9 * 20);
}

TEST(DialogLayoutTest, EveryActionFitsItsSelector) {
    const DialogLayout layout = wholeDialog(96, 2);
    for (std::int32_t language = 0; language < kLanguageCount; language++) {
        for (std::int32_t action = 0; action < 8; action++) {
            DialogView view = viewIn(language);
            view.settings.bind_C = action;
            for (const DialogText& text : dialogTexts(layout, view)) {
                if (text.id == 6062) {
                    EXPECT_TRUE(isFitting(text, generousWidth)) << text.text;
                }
            }
        }
    }
}

TEST(DialogLayoutTest, ATextTooLongDoesNotCountAsFitting) {
    DialogText text;
    text.text = "Radio distortion on other voices";
    text.fontPixels = 13;
    text.rect = {0, 0, 100, 40};
    EXPECT_FALSE(isFitting(text, generousWidth));
    text.wraps = true;
    EXPECT_FALSE(isFitting(text, generousWidth));  // three lines of 20 in 40
    text.rect.bottom = 60;
    EXPECT_TRUE(isFitting(text, generousWidth));
    text.rect.right = 60;
    EXPECT_FALSE(isFitting(text, generousWidth));  // one word is wider
}

TEST(DialogLayoutTest, ScrollsALowWindowUntilEverythingWasSeen) {
    for (int page = 0; page < kPageCount - 1; page++) {
        const DialogLayout top = layoutDialog(1366, 728, 144, page, 0);
        EXPECT_GT(top.scrollRange, 0);
        const DialogLayout bottom = layoutDialog(1366, 728, 144, page, 1'000'000);
        EXPECT_EQ(bottom.scroll, bottom.scrollRange);
        EXPECT_TRUE(isWithin(bottom.scrollThumb, bottom.scrollBar));
        EXPECT_GT(bottom.scrollThumb.top, top.scrollThumb.top);
        for (const DialogControl& control : top.controls) {
            EXPECT_TRUE(isWithin(
                control.isOnPage ? intersectRects(control.rect, {0, -9999, top.client.right, 9999}) : control.rect,
                control.isOnPage ? PixelRect{0, -9999, top.client.right, 9999} : top.client));
            const DialogLayout shown = layoutDialog(1366, 728, 144, page, scrollTo(top, control));
            const DialogControl& there = *findControl(shown, control.id);
            EXPECT_TRUE(isWithin(there.rect, there.isOnPage ? shown.pageView : shown.client)) << control.id;
            EXPECT_EQ(hitDialog(shown, middleOf(there.rect)).id, control.id);
        }
    }
}

TEST(DialogLayoutTest, WhatIsScrolledAwayIsNotHit) {
    const DialogLayout layout = layoutDialog(1366, 728, 144, 0, 1'000'000);
    const DialogControl& first = *findControl(layout, 5100);
    ASSERT_LT(first.rect.top, layout.pageView.top);
    EXPECT_NE(hitDialog(layout, {first.rect.left + 5, first.rect.top + 2}).id, 5100);
    for (const DialogText& text : dialogTexts(layout, viewIn(kEnglish))) {
        if (text.id == 5100) {
            EXPECT_TRUE(text.clip.isEmpty() || text.clip.top >= layout.pageView.top);
        }
    }
}

TEST(DialogLayoutTest, ShrinksWhenTooNarrowOrVeryLow) {
    const DialogLayout narrow = layoutDialog(640, 660, 96, 0, 0);
    EXPECT_LT(narrow.scale, 0.69f);
    for (const DialogControl& control : narrow.controls) EXPECT_LE(control.rect.right, 640);
    const DialogLayout low = layoutDialog(940, 210, 96, 2, 0);
    EXPECT_FLOAT_EQ(low.scale, 210.5f / 420.0f);
    const DialogControl& live = *findControl(low, kLiveRow);
    EXPECT_TRUE(intersectRects(live.rect, findControl(low, 5003)->rect).isEmpty());
    EXPECT_EQ(layoutDialog(940, 660, 0, 0, 0).scale, 1.0f);  // an unknown resolution
    EXPECT_GT(layoutDialog(0, 0, 96, 9, -5).scale, 0.0f);
}

TEST(DialogLayoutTest, SliderThumbAndValueAgree) {
    const DialogLayout layout = wholeDialog(144, 1);
    for (const int id : {6022, 6023, 6024, 6025}) {
        const DialogControl& control = *findControl(layout, id);
        const SliderRange& range = findRow(id)->range;
        for (float value = range.min; value <= range.max; value += range.step) {
            const std::int32_t x = thumbX(layout, control, range, value);
            EXPECT_FLOAT_EQ(snapToStep(range, levelAt(layout, control, range, x)), snapToStep(range, value)) << id;
        }
        EXPECT_EQ(levelAt(layout, control, range, -100), range.min);
        EXPECT_EQ(levelAt(layout, control, range, 100'000), range.max);
    }
}

TEST(DialogLayoutTest, StandsInTheMiddleOfTheWorkArea) {
    EXPECT_EQ(placeDialog({0, 0, 1920, 1040}, 96), (PixelRect{490, 190, 1430, 850}));
    EXPECT_EQ(placeDialog({0, 0, 2560, 1400}, 144), (PixelRect{575, 205, 1985, 1195}));  // 1410 x 990
    EXPECT_EQ(placeDialog({-1920, 0, 0, 1080}, 96), (PixelRect{-1430, 210, -490, 870}));
    EXPECT_EQ(placeDialog({0, 0, 1366, 728}, 144), (PixelRect{0, 0, 1366, 728}));
    EXPECT_EQ(placeDialog({100, 0, 900, 600}, 96), (PixelRect{100, 0, 900, 600}));
    EXPECT_EQ(placeDialog({0, 0, 1920, 1040}, 0), placeDialog({0, 0, 1920, 1040}, 96));
}
