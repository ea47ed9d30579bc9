// window_picture_win.h - what a window of ours shows, by its own hand: WM_PRINTCLIENT into a bitmap. The screen, and
// what stands in front of the window there, do not matter. [host] Used from a test's main thread.
#pragma once
#include <gtest/gtest.h>
#include <windows.h>
#include "panel/argb_image.h"

// All of them colours without their fourth byte.
ArgbImage coloursOf(const ArgbView& view);
ArgbImage printWindow(HWND window);  // empty when there is no such window
ArgbImage printScreen(const RECT& part);

// Makes what need not be equal equal.
void blankPixels(ArgbImage& image, const PixelRect& area);
// Says how many pixels differ, and which one first.
::testing::AssertionResult isSamePicture(const ArgbImage& shown, const ArgbImage& wanted);
