// panel_tooltip.h - the tip for each element of the radio panel, and where it goes. Pure functions.
#pragma once
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include "bridge/sim_state.h"
#include "settings/settings.h"
#include "ui/geometry.h"

// What the texts are made of.
struct TooltipInputs {
    Settings settings;
    SimState sim;
    float volumePercent = 0.0f;                   // panel volume of the selected radio, 0..100
    float receiveGain = 1.0f;                     // current receive output gain, linear
    std::array<std::string_view, 8> actionTexts;  // for each bind_* code, in the interface language
};

// UTF-8, lines parted by \n; empty where an element has none.
std::string panelTooltip(std::int32_t element, const TooltipInputs& inputs);

// The tip's top left corner, screen pixels: right of and below the cursor, so that it covers nothing of what it
// explains. Where that would leave the work area (of the cursor's monitor; without size: unknown) it is on the cursor's
// other side, as far as it fits.
PixelPoint tipPlace(PixelPoint cursor, PixelSize tip, const PixelRect& workArea);
