// panel_layers.h - everything of a theme that is the same in every picture of one size: the face with empty displays,
// the keys and knobs cut out of it, the lit lamps. Made once (tens of milliseconds), so that a frame is mostly copying.
// [ui] Values owned by the panel's window; lengths are pixels unless stated otherwise.
#pragma once
#include <array>
#include <list>
#include <vector>
#include "panel/display_face.h"
#include "panel/lamp_images.h"
#include "panel/panel_layout.h"
#include "ui/argb_image.h"
#include "ui/image_scale.h"

inline constexpr float kPressDepth = 2.5f;  // logical units a pressed key moves down

// One hotspot of the layout.
struct ElementLayer {
    const PanelHotspot* spot = nullptr;
    UnitRect rect;
    Sprite sprite;             // the key, or the knob (of a pair: the outer one)
    Sprite inner;              // the small knob of a pair
    Sprite tinted;             // the key with its icon or legend in colour; empty where it never is
    PlacedImage lit;           // the indicator when lit; empty without one
    bool isLampOnKey = false;  // the indicator is part of the key and moves with it
    PixelRect bounds;          // all that it may change
    PixelRect innerBounds;     // all that the small knob may change
};

struct PanelLayers {
    std::int32_t theme = kGeneralTheme;
    float scale = 1.0f;
    ArgbImage face;
    DisplayFace displays;
    std::vector<ElementLayer> elements;
    PlacedImage txLamp;
    PlacedImage rxLamp;
    PixelRect statusRoom;        // of the two status lines, inside the strip
    std::int32_t statusGap = 0;  // at least, between them

    // art is the theme's artwork, empty when there is none. scale above 0.
    PanelLayers(const ArgbImage& art, std::int32_t theme, float scale, std::int32_t width, std::int32_t height);
};

// The artwork by theme; an empty picture where there is none.
using ThemeArt = std::array<ArgbImage, kThemeCount>;

// The layers last used, few of them: at most two sizes are in use while the user chooses one.
class LayerCache {
  public:
    explicit LayerCache(const ThemeArt& art) : art_(art) {}
    // Valid until the next call.
    PanelLayers& layersFor(std::int32_t theme, float scale, std::int32_t width, std::int32_t height);

  private:
    static constexpr std::size_t kMostLayers = 2;

    const ThemeArt& art_;
    std::list<PanelLayers> layers_;  // the last used first
};
