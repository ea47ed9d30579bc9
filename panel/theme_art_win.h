// theme_art_win.h - the artwork of the three themes, from the DLL's resources.
#pragma once
#include <windows.h>
#include "panel/panel_layers.h"

// The theme's PNG is the RCDATA resource with this id + the theme's index (resources/panel_art.rc).
inline constexpr int kFirstArtResource = 2001;

// [ui] Decodes all three; needs GDI+ and COM. A slot stays empty when its resource is missing or damaged.
ThemeArt loadThemeArt(HINSTANCE module);
