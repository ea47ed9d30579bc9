#include "settings/dialog/dialog_layout.h"
#include <gtest/gtest.h>
#include <algorithm>
#include <cmath>
#include <set>
#include "settings/interface_texts.h"
#include "tests/unit/settings/dialog/dialog_rig.h"
#include "tests/unit/settings/settings_copy.h"
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

// Wider than any of the interface fonts: em widths by kind of letter, and a bit more for bold.
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
    view.live = {"COM2   122.800 MHz", "VOL 100%", 72, true, ""};
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
            const int options = optionCount(*findRow(control.id));
            const int parts = control.look == ControlLook::kSegments   ? options
                              : control.look == ControlLook::kSelector ? 2
                                                                       : 0;
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
    for (int n = 1; n < kPageCount; n++) EXPECT_EQ(rect(kGeneralTab + n).top - rect(kGeneralTab + n - 1).top, 48);
    for (int n = 0; n < kLanguageCount; n++) {
        EXPECT_EQ(rect(kFirstLanguage + n).top, rect(kFirstLanguage).top + n / 3 * 40);
        EXPECT_EQ(rect(kFirstLanguage + n).left, rect(kFirstLanguage + n % 3).left);
    }
    const int options[] = {kAutoSwitchingToggle, kFollowVolumeToggle, kDistortSelfToggle,
                           kDistortOthersToggle, kTailSelfToggle,     kTailOthersToggle};
    for (int i = 0; i < 6; i++) {
        EXPECT_EQ(rect(options[i]).right - rect(options[i]).left, 327);
        EXPECT_EQ(rect(options[i]).bottom - rect(options[i]).top, 46);
        EXPECT_EQ(rect(options[i]).top - rect(options[0]).top, 48 * i);
    }
}

TEST(DialogLayoutTest, EachSettingHasItsControlsOnItsPages) {
    for (int page = 0; page < kPageCount; page++) {
        std::set<int> onPage, expected;
        for (const DialogControl& control : wholeDialog(96, page).controls) {
            if (control.isOnPage) onPage.insert(control.id);
        }
        for (const SettingCopy& setting : settingsCopy()) {
            const ControlCopy& control = setting.control;
            if (std::find(control.pages.begin(), control.pages.end(), page) == control.pages.end()) continue;
            for (int i = 0; i < control.count; i++) expected.insert(control.id + i);
        }
        if (page == 0) expected.insert(kResetPanel);
        if (page == 2) expected.insert({kPreviewMessages, kClearMessages});
        EXPECT_EQ(onPage, expected) << page;
    }
}

TEST(DialogLayoutTest, EachPageHasItsHeadingsAndWhatEveryPageHas) {
    const std::set<int> headings[] = {{9, 10, 18}, {27, 32, 33}, {38, 39, 44, 52}, {}};
    for (int page = 0; page < kPageCount; page++) {
        const DialogLayout layout = wholeDialog(96, page);
        std::set<int> headed;
        for (const DialogPageText& text : layout.pageTexts) {
            if (text.style == DialogTextStyle::kHeading) headed.insert(text.entry);
        }
        EXPECT_EQ(headed, headings[page]);
        for (int tab = 0; tab < kPageCount; tab++) EXPECT_TRUE(findControl(layout, kGeneralTab + tab)) << page;
        for (const int id : {kWindowButton, kLiveRow, kApply, kSaveAndClose, kCancel})
            EXPECT_TRUE(findControl(layout, id)) << page << ' ' << id;
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
    EXPECT_GT(texts, 4 * kPageCount * kLanguageCount * 20);
}

TEST(DialogLayoutTest, EveryActionFitsItsSelector) {
    const DialogLayout layout = wholeDialog(96, 2);
    for (std::int32_t language = 0; language < kLanguageCount; language++) {
        for (std::int32_t action = 0; action < optionCount(*findRow(kKeyCSelector)); action++) {
            DialogView view = viewIn(language);
            view.settings.bind_C = action;
            for (const DialogText& text : dialogTexts(layout, view)) {
                if (text.id == kKeyCSelector) {
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
    EXPECT_FALSE(isFitting(text, generousWidth));  // three lines of 20 in 40 pixels
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
            if (control.isOnPage) {  // beside the scroll bar, however far it is scrolled
                EXPECT_GE(control.rect.left, top.pageView.left) << control.id;
                EXPECT_LE(control.rect.right, top.scrollBar.left) << control.id;
            } else {
                EXPECT_TRUE(isWithin(control.rect, top.client)) << control.id;
            }
            const DialogLayout shown = layoutDialog(1366, 728, 144, page, scrollTo(top, control));
            const DialogControl& there = *findControl(shown, control.id);
            EXPECT_TRUE(isWithin(there.rect, there.isOnPage ? shown.pageView : shown.client)) << control.id;
            EXPECT_EQ(hitDialog(shown, middleOf(there.rect)).id, control.id);
        }
    }
}

TEST(DialogLayoutTest, WhatIsScrolledAwayIsNotHit) {
    const DialogLayout layout = layoutDialog(1366, 728, 144, 0, 1'000'000);
    const DialogControl& first = *findControl(layout, kFirstLanguage);
    ASSERT_LT(first.rect.top, layout.pageView.top);
    EXPECT_NE(hitDialog(layout, {first.rect.left + 5, first.rect.top + 2}).id, kFirstLanguage);
    int labels = 0;
    for (const DialogText& text : dialogTexts(layout, viewIn(kEnglish))) {
        if (text.id != kFirstLanguage) continue;
        labels++;
        EXPECT_TRUE(text.clip.isEmpty() || text.clip.top >= layout.pageView.top);
    }
    EXPECT_GT(labels, 0);
}

TEST(DialogLayoutTest, ShrinksWhenTooNarrowOrVeryLow) {
    const DialogLayout narrow = layoutDialog(640, 660, 96, 0, 0);
    EXPECT_LT(narrow.scale, 0.69f);
    for (const DialogControl& control : narrow.controls) EXPECT_LE(control.rect.right, 640);
    const DialogLayout low = layoutDialog(940, 210, 96, 2, 0);
    EXPECT_FLOAT_EQ(low.scale, 210.5f / 420.0f);
    const DialogControl& live = *findControl(low, kLiveRow);
    EXPECT_TRUE(intersectRects(live.rect, findControl(low, kAboutTab)->rect).isEmpty());
    EXPECT_EQ(layoutDialog(940, 660, 0, 0, 0).scale, 1.0f);  // an unknown resolution
    EXPECT_GT(layoutDialog(0, 0, 96, 9, -5).scale, 0.0f);
}

TEST(DialogLayoutTest, SliderThumbAndValueAgree) {
    const DialogLayout layout = wholeDialog(144, 1);
    for (const int id : {kReceiveVolumeSlider, kTransmitGainSlider, kVolumeMinSlider, kVolumeMaxSlider}) {
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
