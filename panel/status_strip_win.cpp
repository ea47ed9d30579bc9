#include "panel/status_strip_win.h"
#include <algorithm>
#include <cmath>
#include "panel/panel_style.h"
#include "panel/status_strip.h"

namespace {

constexpr float kStatusFontShare = 0.60f;  // em height of a status line, as a share of the strip's height
constexpr std::int32_t kSmallestFont = 9;  // pixels: below this nothing is legible, so the text fills the strip instead

TextLine lineAlone(const PanelLayers& layers, std::string_view text, TextSide side, std::int32_t language) {
    TextLine line;
    line.text = text;
    line.language = language;
    line.width = layers.statusRoom.width();
    line.height = layers.statusRoom.height();
    const float fontPixels = std::floor(static_cast<float>(line.height) * kStatusFontShare + 0.5f);
    line.fontPixels = std::max(static_cast<std::int32_t>(fontPixels), std::min(kSmallestFont, line.height));
    line.colour = panelStyle(layers.theme).statusText;
    line.side = side;
    return line;
}

}  // namespace

void StatusStrip::paint(const PanelLayers& layers, std::string_view statusText, std::string_view channelStatus,
                        std::int32_t language) {
    const std::array<TextLine, 2> wanted = {lineAlone(layers, statusText, TextSide::kLeft, language),
                                            lineAlone(layers, channelStatus, TextSide::kRight, language)};
    if (wanted == wanted_ && layers.statusGap == gap_) return;
    // A panel that is dragged through all sizes would keep fonts of each.
    if (wanted[0].fontPixels != wanted_[0].fontPixels) fonts_.clear();
    wanted_ = {};  // until everything is painted
    const StatusWidths widths = shareStatusRoom(layers.statusRoom.width(), layers.statusGap,
                                                {wholeWidthOf(fonts_, wanted[0]), wholeWidthOf(fonts_, wanted[1])});
    lines_ = wanted;
    lines_[0].width = widths.left;
    lines_[1].width = widths.right;
    for (std::size_t i = 0; i < lines_.size(); i++) images_[i] = paintTextLine(fonts_, lines_[i]);
    wanted_ = wanted;
    gap_ = layers.statusGap;
}
