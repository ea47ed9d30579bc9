// image_scale.h - pictures at another size or turned. Bicubic (Catmull-Rom); where a picture shrinks the filter widens
// with it, so that fine engraving neither breaks up nor shimmers. Pure functions.
#pragma once
#include "panel/panel_layout.h"
#include "ui/argb_image.h"

// The part of source that begins at origin (source pixels), scale target pixels a source pixel, width x height target
// pixels; what lies outside source is transparent. Empty for a size below 1 or a scale that is not above 0.
ArgbImage scaleImage(const ArgbImage& source, PanelPoint origin, float scale, std::int32_t width, std::int32_t height);

// Transparent pixels on every side of a sprite, so that its edge is smooth wherever it comes to lie.
inline constexpr std::int32_t kSpriteMargin = 3;

// A piece cut out of a picture, to be moved, turned and shaded about a point of it.
struct Sprite {
    ArgbImage image;   // with kSpriteMargin
    PanelPoint pivot;  // pixels from the image's top left corner
    PanelPoint radii;  // of an oval about the pivot, pixels: it turns within its outline; both 0: a rectangle
};

// How a sprite is laid over a picture.
struct SpritePose {
    PanelPoint at;             // target pixels: where the pivot comes to lie
    float turnDegrees = 0.0f;  // clockwise
    float sizeShare = 1.0f;    // of its own size, above 0
    float brightness = 1.0f;   // of its colours, 0..1
};

// Only an oval can be turned.
void stampSprite(const ArgbView& target, const Sprite& sprite, const SpritePose& pose, const PixelRect& clip);
