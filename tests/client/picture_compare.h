// picture_compare.h - two pictures held against each other, pixel for pixel. Values.
#pragma once
#include <gtest/gtest.h>
#include "ui/argb_image.h"

// The colours without their fourth byte: GDI leaves it at any value.
ArgbImage coloursOf(ArgbImage image);
// A copy; after GDI has drawn there, GdiFlush first.
ArgbImage coloursOf(const ArgbView& view);

// Makes what need not be equal equal.
void blankPixels(ArgbImage& image, const PixelRect& area);
// Says how many pixels differ, and which one first.
::testing::AssertionResult isSamePicture(const ArgbImage& shown, const ArgbImage& wanted);
