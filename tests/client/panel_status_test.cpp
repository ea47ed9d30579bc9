// panel_status_test.cpp - the panel's status lines in the real fonts, in every theme and language: whole or cut.
#include <gtest/gtest.h>
#include <algorithm>
#include <array>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>
#include "panel/panel_geometry.h"
#include "panel/panel_layers.h"
#include "panel/status_strip_win.h"
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
                                        "DISCONNECTED: simulator link lost",
                                        "COM1 ACTIVE unchanged; simulator not reading",
                                        "COM1 STBY refused; shows 121.490"};
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

// Both lines of a strip, as the panel paints them.
struct Painted {
    StatusStrip strip;
    TextFonts fonts;  // for the comparison

    const TextLine& line(std::size_t side) const { return strip.lines()[side]; }
    Columns ink(std::size_t side) const { return inkOf(strip.images()[side]); }
    // As wide as where nothing is cut.
    bool isWhole(std::size_t side) {
        TextLine alone = line(side);
        alone.width = wholeWidthOf(fonts, alone) + 20;
        return widthOf(ink(side)) == widthOf(inkOf(paintTextLine(fonts, alone)));
    }
};

// Every long line of the left side beside the first of the right, and the first beside all others, in every font.
template <class Check>
void forEachPair(std::int32_t theme, float percent, std::span<const char* const> rights, Check check) {
    const PanelLayers layers = layersOf(theme, percent);
    Painted painted;
    const auto checkPair = [&](const char* left, const char* right, std::int32_t language) {
        SCOPED_TRACE(std::string(themeName(theme)) + ", font of language " + std::to_string(language) + ": " + left +
                     " | " + right);
        painted.strip.paint(layers, left, right, language);
        check(layers, painted);
    };
    for (const std::int32_t language : languagesByFont()) {
        for (const char* left : kLongestLeft) checkPair(left, rights.front(), language);
        for (const char* right : rights) checkPair(kLongestLeft[0], right, language);
    }
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

void expectApart(const PanelLayers& layers, const Painted& painted) {
    EXPECT_LE(painted.line(0).width + layers.statusGap + painted.line(1).width, layers.statusRoom.width());
}

}  // namespace

TEST(PanelStatus, TheLongestPairIsWholeFromFullSizeOn) {
    for (std::int32_t theme = 0; theme < kThemeCount; theme++) {
        for (const float percent : {100.0f, 200.0f}) {
            forEachPair(theme, percent, kLongestRight, [](const PanelLayers& layers, Painted& painted) {
                EXPECT_TRUE(painted.isWhole(0)) << "in " << painted.line(0).width << " pixels";
                EXPECT_TRUE(painted.isWhole(1)) << "in " << painted.line(1).width << " pixels";
                EXPECT_LE(painted.ink(0).first, 4);
                EXPECT_LE(painted.line(1).width - 1 - painted.ink(1).last, 4);
                expectApart(layers, painted);
            });
        }
    }
}

// At half size not everything fits in a legible font: then the right line is whole and the left one ends in dots.
TEST(PanelStatus, AtHalfSizeOnlyTheLeftLineIsCutAndEndsInDots) {
    int cut = 0;
    for (std::int32_t theme = 0; theme < kThemeCount; theme++) {
        forEachPair(theme, 50.0f, kLongestRight, [&](const PanelLayers& layers, Painted& painted) {
            EXPECT_TRUE(painted.isWhole(1));
            expectApart(layers, painted);
            if (painted.isWhole(0)) return;
            cut++;
            EXPECT_GT(widthOf(painted.ink(0)), painted.line(0).width * 3 / 4);
            EXPECT_LE(heightOfEnd(painted.strip.images()[0]), 2) << "a letter is cut";
        });
    }
    EXPECT_GT(cut, 0);
}

TEST(PanelStatus, BesideAConfirmedChannelEveryLineOfOursIsWholeAtHalfSizeToo) {
    constexpr const char* kUsualRight[] = {"TS3 channel confirmed", "No matching TS3 channel", ""};
    for (std::int32_t theme = 0; theme < kThemeCount; theme++) {
        forEachPair(theme, 50.0f, kUsualRight, [](const PanelLayers&, Painted& painted) {
            EXPECT_TRUE(painted.isWhole(0)) << "in " << painted.line(0).width << " pixels";
            EXPECT_TRUE(painted.isWhole(1));
        });
    }
}

TEST(PanelStatus, BesideAConfirmedChannelTheLongestReasonIsWholeFromFullSizeOn) {
    for (std::int32_t theme = 0; theme < kThemeCount; theme++) {
        for (const float percent : {100.0f, 200.0f}) {
            const PanelLayers layers = layersOf(theme, percent);
            for (const std::int32_t language : languagesByFont()) {
                Painted painted;
                painted.strip.paint(layers, "DISCONNECTED: the simulator closes the connection at once",
                                    "TS3 channel confirmed", language);
                EXPECT_TRUE(painted.isWhole(0)) << themeName(theme) << " in " << painted.line(0).width << " pixels";
            }
        }
    }
}

// A right line that goes leaves its room, and one that comes takes it.
TEST(PanelStatus, ALineIsPaintedAnewWhenTheOtherOneTakesItsRoom) {
    const PanelLayers layers = layersOf(kBoeingTheme, 50.0f);
    StatusStrip strip;
    strip.paint(layers, kLongestLeft[0], kLongestRight[0], 0);
    const ArgbImage cut = strip.images()[0];
    strip.paint(layers, kLongestLeft[0], "", 0);
    const ArgbImage whole = strip.images()[0];
    EXPECT_GT(widthOf(inkOf(whole)), widthOf(inkOf(cut)));
    EXPECT_TRUE(strip.images()[1].isEmpty());
    strip.paint(layers, kLongestLeft[0], kLongestRight[0], 0);
    EXPECT_EQ(strip.images()[0].pixels, cut.pixels);
}
