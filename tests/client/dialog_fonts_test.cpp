// dialog_fonts_test.cpp - the settings dialog's texts and pictures in this system's fonts, in memory, without a window.
#include <gtest/gtest.h>
#include <memory>
#include "settings/dialog/dialog_paint_win.h"
#include "settings/interface_texts.h"
#include "tests/client/resource_count_win.h"

namespace {

DialogLayout wholeDialog(unsigned dpi, int page) {
    const auto pixels = [&](int units) { return static_cast<std::int32_t>(units * dpi / 96); };
    return layoutDialog(pixels(kDialogWidth), pixels(kDialogHeight), dpi, page, 0);
}

DialogView viewIn(std::int32_t language) {
    DialogView view;
    view.language = language;
    view.live = {"COM2   122.800 MHz", "VOL 100%", 70, true, ""};
    return view;
}

}  // namespace

TEST(DialogFontsTest, EveryTextFitsInTheFontsOfThisSystem) {
    const HDC dc = CreateCompatibleDC(nullptr);
    TextFonts fonts;
    const auto measure = [&](const DialogText& style, const std::string& piece) {
        return measureLine(dc, fonts, styleOf(style), piece);
    };
    int texts = 0;
    const auto expectFitting = [&](const DialogText& text) {
        EXPECT_TRUE(isFitting(text, measure)) << text.text << " is " << measure(text, text.text) << " wide";
        texts++;
    };
    const int actions = optionCount(*findRow(kKeyCSelector));
    for (const unsigned dpi : {96u, 120u, 144u, 192u}) {
        SCOPED_TRACE(std::to_string(dpi) + " dpi");
        for (std::int32_t language = 0; language < kLanguageCount; language++) {
            for (int page = 0; page < kPageCount; page++) {
                const DialogLayout layout = wholeDialog(dpi, page);
                for (const int state : {kTextSimConnected, kTextStaleData, kTextSimNotConnected}) {
                    DialogView view = viewIn(language);
                    view.live.stateEntry = state;
                    // The longest of ours, and one with the name of somebody's computer.
                    if (state == kTextStaleData) view.live.reason = "the simulator closes the connection at once";
                    if (state == kTextSimNotConnected) view.live.reason = "no answer from computer-of-wolfgang-mommsen";
                    for (const DialogText& text : dialogTexts(layout, view)) {
                        if (state == kTextSimConnected || text.id == kLiveRow) expectFitting(text);
                    }
                }
                for (int action = 1; action < actions; action++) {
                    DialogView view = viewIn(language);
                    view.settings.bind_C = action;
                    for (const DialogText& text : dialogTexts(layout, view)) {
                        if (text.id == kKeyCSelector) expectFitting(text);
                    }
                }
            }
        }
    }
    DeleteDC(dc);
    EXPECT_GT(texts, 4 * kPageCount * kLanguageCount * 20);
}

TEST(DialogFontsTest, APainterLeavesNothingBehind) {
    constexpr int kTurns = 12, kWidth = kDialogWidth / 3, kHeight = kDialogHeight / 3;
    MemorySurface surface;
    ASSERT_TRUE(surface.resize(kWidth, kHeight));
    const auto paintAll = [&] {
        const auto painter = std::make_unique<DialogPainter>();
        for (int page = 0; page < kPageCount; page++) {
            const DialogPicture picture{kWidth, kHeight, 96, page, viewIn(page * 2 + 1), {}};
            painter->paint(surface, layoutDialog(kWidth, kHeight, 96, page, 0), picture);
        }
    };
    paintAll();
    const int before = countResources().gdiObjects;
    for (int i = 0; i < kTurns; i++) paintAll();
    EXPECT_LT(countResources().gdiObjects - before, kTurns);
}
