// plain_face.h - the panel without its artwork: a plate with outlined keys, so that the radio stays usable when a
// theme's image is missing. Pure functions.
#pragma once
#include "panel/panel_layout.h"
#include "ui/argb_image.h"

ArgbImage paintPlainFace(std::int32_t theme, float scale, std::int32_t width, std::int32_t height);
