// picture_compare.h - two pictures compared pixel by pixel. Values.
#pragma once
#include <gtest/gtest.h>
#include "ui/argb_image.h"

// The colours without their fourth byte, to which GDI gives any value.
ArgbImage coloursOf(ArgbImage image);
// A copy; if GDI has drawn there, call GdiFlush first.
ArgbImage coloursOf(const ArgbView& view);

// Blanks an area that need not be equal.
void blankPixels(ArgbImage& image, const PixelRect& area);
// Says how many pixels differ, and where the first one is.
::testing::AssertionResult isSamePicture(const ArgbImage& shown, const ArgbImage& wanted);
