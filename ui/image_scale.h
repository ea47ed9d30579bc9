// image_scale.h - pictures scaled or turned. Bicubic (Catmull-Rom); where a picture shrinks, the filter widens
// accordingly, so that fine engraving neither breaks up nor shimmers. Pure functions.
#pragma once
#include "ui/argb_image.h"
#include "ui/geometry.h"

// The part of source that begins at origin (source pixels), scale target pixels per source pixel, width x height target
// pixels; what lies outside source is transparent. Empty for a size below 1 or a scale that is not above 0.
ArgbImage scaleImage(const ArgbImage& source, UnitPoint origin, float scale, std::int32_t width, std::int32_t height);

// Transparent pixels on every side of a sprite, so that its edge is smooth at every position.
inline constexpr std::int32_t kSpriteMargin = 3;

// A piece cut out of a picture, to be moved, turned and shaded about one of its points.
struct Sprite {
    ArgbImage image;  // with kSpriteMargin
    UnitPoint pivot;  // pixels from the image's top left corner
    UnitPoint radii;  // pixels, of an oval about the pivot: the sprite turns within it; both 0: a rectangle
};

// How a sprite is laid over a picture.
struct SpritePose {
    UnitPoint at;              // target pixels: where the pivot is placed
    float turnDegrees = 0.0f;  // clockwise
    float sizeShare = 1.0f;    // of its own size, above 0
    float brightness = 1.0f;   // of its colours, 0..1
};

// Only an oval can be turned.
void stampSprite(const ArgbView& target, const Sprite& sprite, const SpritePose& pose, const PixelRect& clip);
