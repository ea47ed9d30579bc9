// segment_glyphs.h - digits of the frequency displays as filled outlines, which need no font and stay crisp at every
// scale: seven segments in a slanted cell. Pure geometry in the caller's units, y down.
#pragma once
#include <array>
#include <cstdint>
#include <span>
#include "panel/panel_layout.h"

inline constexpr int kSegmentCount = 7;

// Bit k set: segment k of this character is lit (a top, b upper right, c lower right, d bottom, e lower left, f upper
// left, g middle). 0..9, '-' and ' '; anything else is blank.
std::uint8_t segmentsOf(char digit);

// The outline of one segment within a cell: convex, a narrow gap away from its neighbours.
struct SegmentOutline {
    std::array<UnitPoint, 6> corners;
    int count = 0;
};

// slant: how far the digit's top leans to the right of its bottom, as a share of its height (0 upright). The leaning
// digit is as wide as the cell, so it may take at most half of that. No corners for a segment outside 0..6.
SegmentOutline segmentOutline(const UnitRect& cell, int segment, float slant);
