#include "panel/panel_tooltip.h"
#include <gtest/gtest.h>
#include <limits>
#include "panel/panel_layout.h"
#include "tests/unit/bridge/rig.h"

namespace {

TooltipInputs inputsOf() {
    TooltipInputs inputs;
    inputs.sim = connectedState();
    inputs.volumePercent = 60.0f;
    inputs.receiveGain = 0.5f;
    inputs.actionTexts = {"zero", "one", "two", "three", "four", "five", "six", "seven"};
    return inputs;
}

std::string tipOf(std::int32_t element) {
    return panelTooltip(element, inputsOf());
}

}  // namespace

TEST(PanelTooltip, SaysWhatEachElementIs) {
    const struct {
        std::int32_t element;
        std::string text;
    } rows[] = {
        {1, "Swap ACTIVE / STANDBY — simulator confirmation required"},
        {2, "Select COM1 (ACTIVE + STANDBY)"},
        {3, "Select COM2 (ACTIVE + STANDBY)"},
        {4, "RX/TX: ACTIVE"},
        {5, "RX/TX: STANDBY"},
        {8, "SMALL KNOB — fractional part (kHz).\nScroll or drag vertically"},
        {9, "LARGE KNOB — whole MHz.\nScroll or drag vertically"},
        {11, "Settings"},
        {12, "Minimize panel"},
        {13, "Not assigned"},
        {14, "TEXT — open received text messages (PDC)"},
        {19, "Scroll to tune MHz — Tunes ACTIVE directly"},
        {20, "Scroll to tune channel — Tunes ACTIVE directly"},
        {21, "Scroll to tune MHz"},
        {22, "Scroll to tune channel"},
        {23, "Hover digits to tune"},
        {24, "TEXT — received text messages (PDC)"},
    };
    for (const auto& row : rows) EXPECT_EQ(tipOf(row.element), row.text);
}

TEST(PanelTooltip, IsWrittenWithALongDash) {
    EXPECT_EQ(tipOf(kSwapKey).find("\xE2\x80\x94"), 22U);
}

TEST(PanelTooltip, IsEmptyWhereThereIsNoElement) {
    for (const std::int32_t element : {0, -1, 25, 1000, std::numeric_limits<std::int32_t>::min()})
        EXPECT_EQ(tipOf(element), "") << element;
}

TEST(PanelTooltip, EveryElementOfEveryThemeHasOne) {
    for (std::int32_t theme = 0; theme < kThemeCount; theme++)
        for (const PanelHotspot& hotspot : themeLayout(theme).hotspots) EXPECT_NE(tipOf(hotspot.id), "") << hotspot.id;
}

TEST(PanelTooltip, OfAutoAndAlwaysOnTopTellsTheirState) {
    TooltipInputs inputs = inputsOf();
    inputs.settings.enabled = true;
    inputs.settings.pin = true;
    EXPECT_EQ(panelTooltip(kAutoKey, inputs), "Auto frequency: ON");
    EXPECT_EQ(panelTooltip(kPinKey, inputs), "Always on top: ON — Click to disable");
    inputs.settings.enabled = false;
    inputs.settings.pin = false;
    EXPECT_EQ(panelTooltip(kAutoKey, inputs), "Auto frequency: OFF");
    EXPECT_EQ(panelTooltip(kPinKey, inputs), "Always on top: OFF — Click to enable");
}

TEST(PanelTooltip, OfTheVolumeKnobTellsKnobAircraftAndOutput) {
    EXPECT_EQ(tipOf(kVolumeKnob), "VOLUME: 60%\nCOM: 75%   OUTPUT: 50%\n80% = unity; 100% = +6 dB");
    TooltipInputs inputs = inputsOf();
    inputs.settings.radio = 2;
    inputs.volumePercent = 99.6f;
    inputs.receiveGain = 1.9953f;
    EXPECT_EQ(panelTooltip(kVolumeKnob, inputs), "VOLUME: 100%\nCOM: 50%   OUTPUT: 200%\n80% = unity; 100% = +6 dB");
    inputs.volumePercent = 0.4f;
    inputs.receiveGain = 0.0f;
    inputs.sim.radios[1].volume = 0.0f;
    EXPECT_EQ(panelTooltip(kVolumeKnob, inputs), "VOLUME: 0%\nCOM: 0%   OUTPUT: 0%\n80% = unity; 100% = +6 dB");
}

TEST(PanelTooltip, OfAnUnknownVolumeIsNotAvailable) {
    TooltipInputs inputs = inputsOf();
    inputs.sim.radios[0].volume = -1.0f;
    EXPECT_EQ(panelTooltip(kVolumeKnob, inputs), "VOLUME: N/A");
    inputs.sim.radios[0].writable[kSlotVolume] = false;
    EXPECT_EQ(panelTooltip(kVolumeKnob, inputs), "VOLUME: N/A\nVolume controlled by simulator");
    inputs.settings.radio = 2;  // the other radio has its own
    EXPECT_EQ(panelTooltip(kVolumeKnob, inputs), "VOLUME: 60%\nCOM: 50%   OUTPUT: 50%\n80% = unity; 100% = +6 dB");
}

TEST(PanelTooltip, OfAVolumeTheSimulatorControlsSaysSo) {
    TooltipInputs inputs = inputsOf();
    inputs.sim.radios[0].writable[kSlotVolume] = false;
    EXPECT_EQ(panelTooltip(kVolumeKnob, inputs),
              "VOLUME: 60%\nCOM: 75%   OUTPUT: 50%\n80% = unity; 100% = +6 dB\nVolume controlled by simulator");
}

TEST(PanelTooltip, OfAVolumeThatDoesNotFollowTheAircraftIsAlwaysKnown) {
    TooltipInputs inputs = inputsOf();
    inputs.settings.follow_volume = false;
    inputs.sim.radios[0].writable[kSlotVolume] = false;
    inputs.sim.radios[0].volume = -1.0f;
    EXPECT_EQ(panelTooltip(kVolumeKnob, inputs), "VOLUME: 60%\nCOM: 0%   OUTPUT: 50%\n80% = unity; 100% = +6 dB");
}

TEST(PanelTooltip, OfCustomKeysIsTheActionBoundToThem) {
    TooltipInputs inputs = inputsOf();
    for (std::int32_t code = 0; code < 8; code++) {
        inputs.settings.bind_B = code;
        inputs.settings.bind_C = (code + 1) % 8;
        inputs.settings.bind_D = (code + 2) % 8;
        inputs.settings.bind_E = (code + 3) % 8;
        for (std::int32_t key = kCustomKeyB; key <= kCustomKeyE; key++)
            EXPECT_EQ(panelTooltip(key, inputs),
                      inputs.actionTexts[static_cast<std::size_t>((code + key - kCustomKeyB) % 8)]);
    }
    inputs.settings.bind_A = 5;
    EXPECT_EQ(panelTooltip(kCustomKeyA, inputs), "TEXT — open received text messages (PDC)");
}

TEST(PanelTooltip, OfACustomKeyBoundToNothingKnownIsThatOfNone) {
    TooltipInputs inputs = inputsOf();
    for (const std::int32_t code :
         {-1, 8, std::numeric_limits<std::int32_t>::max(), std::numeric_limits<std::int32_t>::min()}) {
        inputs.settings.bind_C = code;
        EXPECT_EQ(panelTooltip(kCustomKeyC, inputs), "zero") << code;
    }
}

TEST(PanelTooltip, AnUnknownRadioIsCom1) {
    TooltipInputs inputs = inputsOf();
    inputs.settings.radio = -9;
    EXPECT_EQ(panelTooltip(kVolumeKnob, inputs), tipOf(kVolumeKnob));
}

TEST(PanelTooltip, Stands14PixelsRightOfAnd22BelowTheCursorOnEveryMonitor) {
    const struct {
        PixelRect workArea;
        PixelPoint cursor, tip;
    } rows[] = {{{0, 0, 1920, 1040}, {0, 0}, {14, 22}},
                {{0, 0, 1920, 1040}, {959, 540}, {973, 562}},
                {{-1920, -300, 0, 780}, {-1920, -300}, {-1906, -278}},
                {{1920, 0, 3840, 1080}, {3000, 20}, {3014, 42}},
                {{}, {5000, 4000}, {5014, 4022}}};  // unknown
    for (const auto& row : rows)
        EXPECT_EQ(tipPlace(row.cursor, {200, 60}, row.workArea), row.tip) << row.cursor.x << ',' << row.cursor.y;
}

TEST(PanelTooltip, GoesToTheCursorsOtherSideWhereItWouldLeaveTheWorkArea) {
    constexpr PixelRect kArea{-1920, 100, 0, 1140};
    const struct {
        PixelPoint cursor, tip;
    } rows[] = {{{-214, 500}, {-200, 522}},  // it just fits
                {{-213, 500}, {-427, 522}},  // left of the cursor: -213 - 14 - 200
                {{-900, 1058}, {-886, 1080}},
                {{-900, 1059}, {-886, 977}},  // above it: 1059 - 22 - 60
                {{-1, 1139}, {-215, 1057}}};  // both
    for (const auto& row : rows)
        EXPECT_EQ(tipPlace(row.cursor, {200, 60}, kArea), row.tip) << row.cursor.x << ',' << row.cursor.y;
}

TEST(PanelTooltip, IsInsideTheWorkAreaWhereverTheCursorIs) {
    constexpr PixelRect kArea{60, 40, 700, 400};  // task bars on all sides
    constexpr PixelSize kTip{300, 80};
    for (std::int32_t x = -50; x <= 800; x += 10)
        for (std::int32_t y = -50; y <= 500; y += 10) {
            const PixelPoint place = tipPlace({x, y}, kTip, kArea);
            const PixelRect tip{place.x, place.y, place.x + kTip.width, place.y + kTip.height};
            EXPECT_EQ(intersectRects(tip, kArea), tip) << x << ',' << y;
        }
}

TEST(PanelTooltip, ThatFitsNowhereBeginsWhereTheWorkAreaDoes) {
    EXPECT_EQ(tipPlace({100, 50}, {400, 200}, {10, 20, 300, 150}), (PixelPoint{10, 20}));
}
