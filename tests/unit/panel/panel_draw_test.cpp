// panel_draw_test.cpp - what the panel draws, on the plate that stands in for the artwork, so without a picture file.
#include "panel/panel_draw.h"
#include <gtest/gtest.h>
#include <algorithm>
#include <cmath>
#include <functional>
#include <set>

namespace {

struct Scene {
    std::int32_t theme;
    double percent;
};

PanelPicture pictureOf(const Scene& scene) {
    const ThemeLayout& layout = themeLayout(scene.theme);
    const double scale = 9.0 * scene.percent / static_cast<double>(layout.width);
    PanelPicture picture;
    picture.theme = scene.theme;
    picture.scale = static_cast<float>(scale);
    picture.width = static_cast<std::int32_t>(std::lround(9.0 * scene.percent));
    picture.height = static_cast<std::int32_t>(std::ceil(static_cast<double>(layout.height) * scale - 1e-6));
    picture.frequencies = {FrequencyPicture{122800, FrequencyState::kConfirmed},
                           FrequencyPicture{118005, FrequencyState::kConfirmed}};
    picture.litElements = 1U << kCom1Key | 1U << kActiveKey;
    return picture;
}

PanelLayers layersOf(const PanelPicture& picture) {
    return PanelLayers(ArgbImage(), picture.theme, picture.scale, picture.width, picture.height);
}

StatusImages textsOf(const PanelLayers& layers, const PanelPicture& picture) {
    // A letter is as wide as the panel is large; what is left of the room is the left line's, to its last pixel.
    const auto letters = static_cast<std::int32_t>(picture.channelStatus.size());
    const std::int32_t right = std::min(letters * picture.width / 100, layers.statusRoom.width() / 2);
    const std::int32_t height = layers.statusRoom.height();
    StatusImages images = {ArgbImage(layers.statusRoom.width() - right, height), ArgbImage(right, height)};
    for (std::size_t i = 0; i < images.size(); i++) {
        const std::string& text = i == 0 ? picture.statusText : picture.channelStatus;
        const std::uint32_t ink = text.empty() ? 0 : 0xFF000000U | static_cast<unsigned char>(text.front());
        std::fill(images[i].pixels.begin(), images[i].pixels.end(), ink);
    }
    return images;
}

ArgbImage drawWhole(PanelLayers& layers, const PanelPicture& picture) {
    ArgbImage target(picture.width, picture.height);
    drawPanel(viewOf(target), layers, picture, textsOf(layers, picture), target.bounds());
    return target;
}

struct Change {
    const char* what;
    std::function<void(PanelPicture&)> apply;
};

// Each change affects what one part shows.
const std::vector<Change>& allChanges() {
    static const std::vector<Change> changes = {
        {"active tuned", [](PanelPicture& p) { p.frequencies[0].frequencyKHz = 121500; }},
        {"standby unknown", [](PanelPicture& p) { p.frequencies[1].frequencyKHz = 0; }},
        {"standby pending", [](PanelPicture& p) { p.frequencies[1].state = FrequencyState::kPending; }},
        {"disconnected", [](PanelPicture& p) { p.frequencies = {}; }},
        {"volume", [](PanelPicture& p) { p.volumeAngle = 81.0f; }},
        {"large knob", [](PanelPicture& p) { p.largeKnobAngle = 36.0f; }},
        {"small knob", [](PanelPicture& p) { p.smallKnobAngle = 70.0f; }},
        {"AUTO on", [](PanelPicture& p) { p.litElements |= 1U << kAutoKey; }},
        {"COM1 off", [](PanelPicture& p) { p.litElements &= ~(1U << kCom1Key); }},
        {"key B lit", [](PanelPicture& p) { p.litElements |= 1U << kCustomKeyB; }},
        {"TX", [](PanelPicture& p) { p.txLit = true; }},
        {"RX", [](PanelPicture& p) { p.rxLit = true; }},
        {"TEXT", [](PanelPicture& p) { p.textLit = true; }},
        {"TEXT legend", [](PanelPicture& p) { p.textTinted = true; }},
        {"pinned", [](PanelPicture& p) { p.pinned = true; }},
        {"COM1 half down", [](PanelPicture& p) { p.pressedElement = kCom1Key, p.pressLevel = 0.5f; }},
        {"SWAP down", [](PanelPicture& p) { p.pressedElement = kSwapKey, p.pressLevel = 1.0f; }},
        {"volume knob held", [](PanelPicture& p) { p.pressedElement = kVolumeKnob, p.pressLevel = 0.5f; }},
        {"large knob held", [](PanelPicture& p) { p.pressedElement = kLargeKnob, p.pressLevel = 1.0f; }},
        {"small knob held", [](PanelPicture& p) { p.pressedElement = kSmallKnob, p.pressLevel = 1.0f; }},
        {"status", [](PanelPicture& p) { p.statusText = "CONNECTED"; }},
        {"channel", [](PanelPicture& p) { p.channelStatus = "Tower"; }},
    };
    return changes;
}

constexpr Scene kScenes[] = {{kGeneralTheme, 100}, {kBoeingTheme, 100}, {kAirbusTheme, 100},
                             {kGeneralTheme, 50},  {kBoeingTheme, 61},  {kAirbusTheme, 200}};

// The pixel in the middle of a rectangle of the layout.
std::uint32_t middleOf(const ArgbImage& image, const PanelPicture& picture, const UnitRect& rect) {
    const UnitPoint origin = themeLayout(picture.theme).origin;
    const auto x = static_cast<std::int32_t>((rect.x + rect.width / 2 - origin.x) * picture.scale);
    const auto y = static_cast<std::int32_t>((rect.y + rect.height / 2 - origin.y) * picture.scale);
    return image.row(y)[x];
}

}  // namespace

TEST(PanelDraw, DrawingWhatChangedGivesTheSamePictureAsDrawingAll) {
    for (const Scene& scene : kScenes) {
        const PanelPicture before = pictureOf(scene);
        PanelLayers layers = layersOf(before);
        for (const Change& change : allChanges()) {
            PanelPicture after = before;
            change.apply(after);
            for (const auto& [from, to] : {std::pair(before, after), std::pair(after, before)}) {
                ArgbImage target = drawWhole(layers, from);
                const StatusImages texts = textsOf(layers, to);
                for (const PixelRect& area : changedAreas(layers, from, to))
                    drawPanel(viewOf(target), layers, to, texts, area);
                EXPECT_EQ(target.pixels == drawWhole(layers, to).pixels, true)
                    << change.what << ", theme " << scene.theme << " at " << scene.percent;
            }
        }
    }
}

TEST(PanelDraw, EqualPicturesHaveNothingToDraw) {
    for (const Scene& scene : kScenes) {
        PanelPicture picture = pictureOf(scene);
        const PanelLayers layers = layersOf(picture);
        for (const Change& change : allChanges()) change.apply(picture);
        EXPECT_TRUE(changedAreas(layers, picture, picture).empty());
    }
}

TEST(PanelDraw, EveryPartThatAThemeHasShowsItsChange) {
    for (const std::int32_t theme : {kGeneralTheme, kBoeingTheme, kAirbusTheme}) {
        const PanelPicture before = pictureOf({theme, 100});
        PanelLayers layers = layersOf(before);
        const ArgbImage first = drawWhole(layers, before);
        const std::set<std::string> missingFromGeneral = {"large knob",      "small knob", "large knob held",
                                                          "small knob held", "key B lit",  "TEXT"};
        const std::set<std::string> onlyInGeneral = {"TEXT legend"};
        for (const Change& change : allChanges()) {
            PanelPicture after = before;
            change.apply(after);
            const bool has = !(theme == kGeneralTheme ? missingFromGeneral : onlyInGeneral).contains(change.what);
            EXPECT_EQ(drawWhole(layers, after).pixels != first.pixels, has) << change.what << ", theme " << theme;
        }
    }
}

TEST(PanelDraw, EmptyDisplaysHaveTheDisplaysGroundAndDeadDigitsTheirColour) {
    for (const std::int32_t theme : {kGeneralTheme, kBoeingTheme, kAirbusTheme}) {
        PanelPicture picture = pictureOf({theme, 200});
        picture.frequencies = {};
        PanelLayers layers = layersOf(picture);
        const ArgbImage image = drawWhole(layers, picture);
        for (const UnitRect& display : themeLayout(theme).displays) {
            const UnitRect leftEdge = {display.x, display.y, display.width * 0.05f, display.height};
            EXPECT_EQ(middleOf(image, picture, leftEdge), kDisplayArgb);
        }
        EXPECT_GT(std::count(image.pixels.begin(), image.pixels.end(), kDisconnectedArgb), 1000) << theme;
    }
}

TEST(PanelDraw, ADigitCanBeToldByItsSegments) {
    PanelPicture picture = pictureOf({kAirbusTheme, 200});
    picture.frequencies[0].frequencyKHz = 180000;
    PanelLayers layers = layersOf(picture);
    const ArgbImage image = drawWhole(layers, picture);
    const FrequencyCells cells = layoutFrequency(themeLayout(kAirbusTheme).displays[0]);
    const auto green = [&](std::size_t digit) { return middleOf(image, picture, cells.digits[digit]) >> 8U & 0xFFU; };
    EXPECT_GT(green(1), 0x80U);  // the 8 has its middle segment lit
    EXPECT_LT(green(2), 0x60U);  // the 0 has not
}

TEST(PanelDraw, LampsLightUpInTheirColours) {
    for (const std::int32_t theme : {kGeneralTheme, kBoeingTheme, kAirbusTheme}) {
        PanelPicture picture = pictureOf({theme, 100});
        picture.txLit = picture.rxLit = true;
        PanelLayers layers = layersOf(picture);
        const ArgbImage image = drawWhole(layers, picture);
        const std::uint32_t tx = middleOf(image, picture, themeLayout(theme).txLamp);
        const std::uint32_t rx = middleOf(image, picture, themeLayout(theme).rxLamp);
        EXPECT_GT(tx >> 16U & 0xFFU, tx & 0xFFU) << theme;        // more red than blue
        EXPECT_GT(rx >> 8U & 0xFFU, rx >> 16U & 0xFFU) << theme;  // more green than red
    }
}

TEST(PanelDraw, AHeldKnobIsShadedAsAPressedKeyIsAndStaysInItsPlace) {
    for (const std::int32_t theme : {kBoeingTheme, kAirbusTheme}) {
        for (const std::int32_t knob : {kVolumeKnob, kLargeKnob, kSmallKnob}) {
            PanelPicture picture = pictureOf({theme, 200});
            PanelLayers layers = layersOf(picture);
            const UnitRect rect = findHotspot(themeLayout(theme), knob)->rect;
            // Beside the pointer: the volume knob's middle, the large knob's ring left of the small knob, its middle.
            UnitRect face = rect;
            if (knob == kLargeKnob) face.width *= 0.4f;
            const ArgbImage before = drawWhole(layers, picture);
            picture.pressedElement = knob;
            picture.pressLevel = 1.0f;
            const ArgbImage held = drawWhole(layers, picture);
            picture.pressedElement = kSwapKey;
            const ArgbImage pressed = drawWhole(layers, picture);
            const auto green = [&](const ArgbImage& image, const UnitRect& part) {
                return static_cast<float>(middleOf(image, picture, part) >> 8U & 0xFFU);
            };
            const UnitRect key = findHotspot(themeLayout(theme), kSwapKey)->rect;
            const float shade = green(pressed, key) / green(before, key);
            EXPECT_LT(shade, 0.9f);
            EXPECT_NEAR(green(held, face) / green(before, face), shade, 0.05f) << theme << ", knob " << knob;
            // Nothing outside of what was grasped has changed: of the pair, one knob.
            const bool isSmall = knob == kSmallKnob;
            UnitRect other = rect;
            if (isSmall) other.width *= 0.4f;
            if (knob == kVolumeKnob) other = findHotspot(themeLayout(theme), kLargeKnob)->rect;
            EXPECT_EQ(middleOf(held, picture, other), middleOf(before, picture, other)) << theme << ", knob " << knob;
            const UnitRect above = {rect.x, rect.y - 10, rect.width, 10};
            EXPECT_EQ(middleOf(held, picture, above), middleOf(before, picture, above));
        }
    }
}

TEST(PanelDraw, LayersOfTinyPanelsAreDrawnWithoutHarm) {
    for (const std::int32_t theme : {kGeneralTheme, kBoeingTheme, kAirbusTheme}) {
        PanelPicture picture;
        picture.theme = theme;
        picture.scale = 1.0f / 2000.0f;
        for (const Change& change : allChanges()) change.apply(picture);
        PanelLayers layers = layersOf(picture);
        EXPECT_EQ(drawWhole(layers, picture).pixels.size(), 1u);
    }
}

TEST(LayerCache, KeepsWhatWasUsedLastAndMakesTheRestAnew) {
    const ThemeArt art;
    LayerCache cache(art);
    constexpr std::uint32_t kMark = 0x12345678;
    cache.layersFor(kBoeingTheme, 0.1f, 180, 80).face.pixels[0] = kMark;
    cache.layersFor(kBoeingTheme, 0.2f, 359, 159).face.pixels[0] = kMark;
    EXPECT_EQ(cache.layersFor(kBoeingTheme, 0.1f, 180, 80).face.pixels[0], kMark);
    cache.layersFor(kAirbusTheme, 0.1f, 158, 93);
    EXPECT_EQ(cache.layersFor(kBoeingTheme, 0.1f, 180, 80).face.pixels[0], kMark);
    EXPECT_NE(cache.layersFor(kBoeingTheme, 0.2f, 359, 159).face.pixels[0], kMark);
    for (int i = 1; i < 40; i++) {
        const PanelLayers& layers = cache.layersFor(i % 3, 0.01f * static_cast<float>(i), 20 * i, 10 * i);
        EXPECT_EQ(layers.face.width, 20 * i);
        EXPECT_EQ(layers.theme, i % 3);
    }
}
