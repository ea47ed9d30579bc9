// panel_draw.h - draws a PanelPicture over the layers of its theme, all of it or only what changed.
// [ui] Keeps nothing; only the layers remember their digits.
#pragma once
#include <array>
#include <vector>
#include "panel/panel_layers.h"
#include "panel/panel_picture.h"
#include "ui/argb_image.h"

// The two status lines as the glue's fonts paint them, left and right, on transparent ground: each as high as their
// room and as wide as its share of it.
using StatusImages = std::array<ArgbImage, 2>;

// Where two pictures of the same theme and size differ: one rectangle for each part that looks different; they may
// overlap. Empty when they look the same.
std::vector<PixelRect> changedAreas(const PanelLayers& layers, const PanelPicture& before, const PanelPicture& after);

// Draws everything inside clip: first the face, then what stands on it.
void drawPanel(const ArgbView& target, PanelLayers& layers, const PanelPicture& picture, const StatusImages& texts,
               const PixelRect& clip);
