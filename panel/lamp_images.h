// lamp_images.h - what a lit lamp adds to the picture: its glass and the glow around it. Pure functions; pixels.
#pragma once
#include "panel/panel_layout.h"
#include "ui/argb_image.h"

// A picture and where its top left corner belongs.
struct PlacedImage {
    ArgbImage image;
    std::int32_t x = 0;
    std::int32_t y = 0;

    PixelRect bounds() const { return {x, y, x + image.width, y + image.height}; }
};

// A lamp of this style (IndicatorStyle) lit in an ARGB colour; scale is pixels per logical unit.
PlacedImage makeLitLamp(const UnitRect& lamp, std::int32_t style, std::uint32_t colour, float scale);

// The icon of a key (its bright part) in an ARGB colour; the same size as the key's picture.
ArgbImage tintIcon(const ArgbImage& key, std::uint32_t colour);
