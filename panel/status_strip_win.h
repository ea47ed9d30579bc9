// status_strip_win.h - the panel's two status lines in Windows' fonts: bridge status on the left, channel status on the
// right. What is on the screen already is not painted again.
#pragma once
#include <array>
#include <cstdint>
#include <string_view>
#include "panel/panel_draw.h"
#include "panel/panel_layers.h"
#include "panel/text_line_win.h"

// [ui] Owned by the panel's window.
class StatusStrip {
  public:
    // The lines as they share the room in these layers; texts in UTF-8, in the fonts of an interface language.
    void paint(const PanelLayers& layers, std::string_view statusText, std::string_view channelStatus,
               std::int32_t language);

    // As last painted.
    const StatusImages& images() const { return images_; }
    const std::array<TextLine, 2>& lines() const { return lines_; }  // as wide as their share

  private:
    TextFonts fonts_;                 // of the present size
    std::array<TextLine, 2> wanted_;  // each as if the room were its own
    std::int32_t gap_ = 0;            // they were painted with
    std::array<TextLine, 2> lines_;
    StatusImages images_;
};
