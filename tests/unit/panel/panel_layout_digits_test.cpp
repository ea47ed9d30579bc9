#include <gtest/gtest.h>
#include <vector>
#include "panel/panel_layout.h"

namespace {

constexpr UnitRect kActiveDisplay{160, 240, 696, 125};
constexpr UnitRect kStandbyDisplay{1200, 240, 685, 125};

// Calculated by hand from the display's size: 85 high, 45.05 wide, 10.3615 apart, a point of 11.713.
constexpr float kHeight = 85.0f;
constexpr float kWidth = 45.05f;
constexpr float kGap = 10.3615f;
constexpr float kPoint = 11.713f;
constexpr float kWhole = 6 * kWidth + 6 * kGap + kPoint;
constexpr float kRounding = 0.002f;
constexpr float kNear = 0.01f;

float leftOf(const UnitRect& display) {
    return display.x + (display.width - kWhole) / 2;
}

PanelElement hit(float x, float y) {
    return hit_test(kGeneralTheme, {x, y});
}

struct DisplayCase {
    UnitRect display;
    PanelElement mhz, channel;
};
const DisplayCase kDisplays[] = {{kActiveDisplay, kActiveMhzDigits, kActiveChannelDigits},
                                 {kStandbyDisplay, kStandbyMhzDigits, kStandbyChannelDigits}};

}  // namespace

TEST(FrequencyCells, AreSixDigitsAndAPointCentredInTheDisplay) {
    for (const UnitRect& display : {kActiveDisplay, kStandbyDisplay}) {
        const FrequencyCells cells = layoutFrequency(display);
        float x = leftOf(display);
        std::vector<UnitRect> row(cells.digits.begin(), cells.digits.begin() + 3);
        row.push_back(cells.point);
        row.insert(row.end(), cells.digits.begin() + 3, cells.digits.end());
        for (std::size_t i = 0; i < row.size(); i++) {
            const float width = i == 3 ? kPoint : kWidth;
            EXPECT_NEAR(row[i].x, x, kRounding) << i;
            EXPECT_NEAR(row[i].y, 240 + 20, kRounding) << i;
            EXPECT_NEAR(row[i].width, width, kRounding) << i;
            EXPECT_NEAR(row[i].height, kHeight, kRounding) << i;
            x += width + kGap;
        }
        EXPECT_NEAR(x - kGap + leftOf(display), display.x + display.x + display.width, kRounding);
    }
}

TEST(FrequencyCells, FieldsShareTheRowWithoutAHole) {
    const FrequencyCells cells = layoutFrequency(kActiveDisplay);
    EXPECT_EQ(cells.mhzField.x, cells.digits[0].x);
    EXPECT_NEAR(cells.mhzField.width, 3 * (kWidth + kGap), kRounding);
    EXPECT_EQ(cells.pointField.x, cells.point.x);
    EXPECT_NEAR(cells.pointField.width, kPoint + kGap, kRounding);
    EXPECT_EQ(cells.channelField.x, cells.digits[3].x);
    EXPECT_NEAR(cells.channelField.width, 3 * kWidth + 2 * kGap, kRounding);
    for (const UnitRect& field : {cells.mhzField, cells.pointField, cells.channelField}) {
        EXPECT_EQ(field.y, cells.digits[0].y);
        EXPECT_EQ(field.height, cells.digits[0].height);
    }
}

TEST(FrequencyCells, OfADisplayWithoutSizeHaveNone) {
    for (const UnitRect& digit : layoutFrequency({}).digits) EXPECT_EQ(digit, UnitRect{});
}

TEST(FrequencyDigits, OfGeneralTuneMhzLeftOfThePointAndChannelsRightOfIt) {
    const float y = 240 + 62.5f;
    for (const DisplayCase& row : kDisplays) {
        const float left = leftOf(row.display);
        for (int digit = 0; digit < 3; digit++)
            EXPECT_EQ(hit(left + kWidth / 2 + static_cast<float>(digit) * (kWidth + kGap), y), row.mhz) << digit;
        const float channel = left + 3 * (kWidth + kGap) + kPoint + kGap;
        for (int digit = 0; digit < 3; digit++)
            EXPECT_EQ(hit(channel + kWidth / 2 + static_cast<float>(digit) * (kWidth + kGap), y), row.channel) << digit;
    }
}

TEST(FrequencyDigits, OfGeneralIncludeTheGapsBetweenThem) {
    const float y = 240 + 62.5f;
    for (const DisplayCase& row : kDisplays) {
        const float left = leftOf(row.display);
        for (int digit = 0; digit < 3; digit++)  // the third gap is the one before the point
            EXPECT_EQ(hit(left + kWidth + kGap / 2 + static_cast<float>(digit) * (kWidth + kGap), y), row.mhz);
        const float channel = left + 3 * (kWidth + kGap) + kPoint + kGap;
        for (int digit = 0; digit < 2; digit++)
            EXPECT_EQ(hit(channel + kWidth + kGap / 2 + static_cast<float>(digit) * (kWidth + kGap), y), row.channel);
    }
}

TEST(FrequencyDigits, OfGeneralEndAtTheirFieldsEdges) {
    const float middle = 240 + 62.5f;
    for (const DisplayCase& row : kDisplays) {
        const float left = leftOf(row.display);
        const float point = left + 3 * (kWidth + kGap);
        const float channel = point + kPoint + kGap;
        const float right = channel + 3 * kWidth + 2 * kGap;
        const struct {
            float x;
            PanelElement before, after;
        } borders[] = {{left, kFrequencyDisplay, row.mhz},
                       {point, row.mhz, kFrequencyDisplay},
                       {channel, kFrequencyDisplay, row.channel},
                       {right, row.channel, kFrequencyDisplay}};
        for (const auto& border : borders) {
            EXPECT_EQ(hit(border.x - kNear, middle), border.before) << border.x;
            EXPECT_EQ(hit(border.x + kNear, middle), border.after) << border.x;
        }
        for (const float x : {left + kWidth / 2, channel + kWidth / 2}) {
            EXPECT_EQ(hit(x, 260 - kNear), kFrequencyDisplay);
            EXPECT_NE(hit(x, 260 + kNear), kFrequencyDisplay);
            EXPECT_NE(hit(x, 345 - kNear), kFrequencyDisplay);
            EXPECT_EQ(hit(x, 345 + kNear), kFrequencyDisplay);
        }
    }
}

TEST(FrequencyDigits, OfGeneralLeaveTheRestOfTheDisplayToTheDisplay) {
    for (const UnitRect& display : {kActiveDisplay, kStandbyDisplay}) {
        const float right = display.x + display.width;
        EXPECT_EQ(hit(display.x, 240), kFrequencyDisplay);
        EXPECT_EQ(hit(right - kNear, 365 - kNear), kFrequencyDisplay);
        EXPECT_EQ(hit(leftOf(display) - 5, 300), kFrequencyDisplay);
        EXPECT_EQ(hit(right, 300), kBackground);
        EXPECT_EQ(hit(display.x + 50, 365), kBackground);
        EXPECT_EQ(hit(display.x - kNear, 300), kBackground);
        EXPECT_EQ(hit(display.x + 50, 240 - kNear), kBackground);
    }
}
