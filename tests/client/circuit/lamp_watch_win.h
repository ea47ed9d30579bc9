// lamp_watch_win.h - which lamps of the plugin's panel are lit, as the pilot sees them on the screen. For the flight's
// record, not for its checks: another window may be in front.
// [host] One thread, which sees screen pixels (useDevicePixels).
#pragma once
#include <array>
#include <cstdint>
#include "panel/panel_layout.h"

struct PanelLamp {
    const char* name;
    bool isLit = false;
};

class LampWatch {
  public:
    explicit LampWatch(std::int32_t theme);  // a theme that has a TEXT lamp
    // Looks at the panel; nothing is lit while there is none.
    const std::array<PanelLamp, 3>& look();

  private:
    const ThemeLayout& layout_;
    std::array<UnitRect, 3> glasses_;
    std::array<PanelLamp, 3> lamps_{{{"TX"}, {"RX"}, {"TEXT"}}};
};
