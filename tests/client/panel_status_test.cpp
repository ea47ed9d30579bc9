// panel_status_test.cpp - the panel's status lines in the real fonts, in every theme and language: whole or cut.
#include <gtest/gtest.h>
#include <algorithm>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>
#include "panel/panel_geometry.h"
#include "panel/panel_layers.h"
#include "panel/text_line_win.h"
#include "settings/interface_texts.h"
#include "settings/language.h"
#include "tests/client/panel_driver_win.h"

namespace {

// The longest lines that each side can show. A worker's own answers also come on the left.
constexpr const char* kLongestLeft[] = {"Radio spacing unavailable or frequency limit",
                                        "Write timed out; showing simulator readback",
                                        "Writing; awaiting simulator readback",
                                        "Write unavailable / DISCONNECTED",
                                        "Volume controlled by simulator",
                                        "DISCONNECTED: worker program missing",
                                        "DISCONNECTED: worker not running (code 259)",
                                        "DISCONNECTED: waiting for the simulator",
                                        "DISCONNECTED: simulator in menu",
                                        "DISCONNECTED: no answer from 192.168.1.20",
                                        "DISCONNECTED: the simulator sends no data",
                                        "DISCONNECTED: simulator link lost"};
constexpr const char* kLongestRight[] = {"TS3 move requested; awaiting confirmation",
                                         "TS3 move pending; awaiting confirmation",
                                         "TS3 channel join failed (4294967295)", "TS3 channel join not confirmed"};

struct Columns {
    std::int32_t first = 0;  // with a visible pixel
    std::int32_t last = -1;
};

Columns inkOf(const ArgbImage& image) {
    Columns ink{image.width, -1};
    for (std::int32_t y = 0; y < image.height; y++) {
        for (std::int32_t x = 0; x < image.width; x++) {
            if (image.row(y)[x] == 0) continue;
            ink.first = std::min(ink.first, x);
            ink.last = std::max(ink.last, x);
        }
    }
    return ink;
}

std::int32_t widthOf(const Columns& ink) {
    return ink.last - ink.first + 1;
}

PanelLayers layersOf(std::int32_t theme, float percent) {
    Settings settings;
    settings.theme = theme;
    settings.panel_scale = percent;
    const PanelPlacement place = placePanel(settings, {}, 96);
    return {ArgbImage(), theme, place.scale, place.width, place.height};
}

// One language for each font.
std::vector<std::int32_t> languagesByFont() {
    std::vector<std::int32_t> languages;
    std::set<std::string_view> fonts;
    for (std::int32_t language = 0; language < kLanguageCount; language++) {
        if (fonts.insert(fontFamilyOf(language)).second) languages.push_back(language);
    }
    return languages;
}

// Every long line of both sides.
template <class Check>
void forEachLine(std::int32_t theme, float percent, Check check) {
    const PanelLayers layers = layersOf(theme, percent);
    for (const std::int32_t language : languagesByFont()) {
        for (std::size_t side = 0; side < 2; side++) {
            for (const char* text : side == 0 ? std::span<const char* const>(kLongestLeft) : kLongestRight) {
                SCOPED_TRACE(std::string(themeName(theme)) + ", font of language " + std::to_string(language) + ": " +
                             text);
                check(statusLine(layers, side, text, language));
            }
        }
    }
}

ArgbImage paint(const TextLine& line) {
    TextFonts fonts;
    return paintTextLine(fonts, line);
}

// The width of the line when nothing is cut.
std::int32_t wholeWidth(TextLine line) {
    line.width *= 2;
    return widthOf(inkOf(paint(line)));
}

// The number of rows that the ink's last columns span: a letter's height, or a dot's.
std::int32_t heightOfEnd(const ArgbImage& image) {
    const std::int32_t last = inkOf(image).last;
    std::int32_t top = image.height, bottom = -1;
    for (std::int32_t y = 0; y < image.height; y++) {
        for (std::int32_t x = std::max(0, last - 1); x <= last; x++) {
            if (image.row(y)[x] == 0) continue;
            top = std::min(top, y);
            bottom = std::max(bottom, y);
        }
    }
    return bottom - top + 1;
}

}  // namespace

TEST(PanelStatus, TheLongestLinesAreWholeFromFullSizeOn) {
    for (std::int32_t theme = 0; theme < kThemeCount; theme++) {
        for (const float percent : {100.0f, 200.0f}) {
            forEachLine(theme, percent, [](const TextLine& line) {
                const Columns ink = inkOf(paint(line));
                EXPECT_GT(ink.last, ink.first);
                EXPECT_EQ(widthOf(ink), wholeWidth(line)) << "in " << line.width << " pixels";
                const std::int32_t fromItsSide = line.side == TextSide::kRight ? line.width - 1 - ink.last : ink.first;
                EXPECT_LE(fromItsSide, 4);
            });
        }
    }
}

// At half size the longest lines do not fit in a legible font.
TEST(PanelStatus, ALineThatHasNoRoomEndsInDotsInsideItsPlace) {
    int cut = 0;
    for (std::int32_t theme = 0; theme < kThemeCount; theme++) {
        forEachLine(theme, 50.0f, [&](const TextLine& line) {
            const ArgbImage image = paint(line);
            ASSERT_FALSE(image.isEmpty());
            const std::int32_t whole = wholeWidth(line), seen = widthOf(inkOf(image));
            EXPECT_GT(seen, line.width / 2);
            if (seen == whole) return;
            cut++;
            EXPECT_LT(seen, whole);
            EXPECT_LE(heightOfEnd(image), 2) << "a letter is cut";
        });
    }
    EXPECT_GT(cut, 0);
}
