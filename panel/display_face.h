// display_face.h - the digits of one theme's two frequency displays at one scale. A digit is painted once, when first
// shown, and stamped from then on; cells start on whole pixels at one pitch, so every digit is equally crisp.
// [ui] The painted digits are kept without a lock.
#pragma once
#include <array>
#include "panel/panel_layout.h"
#include "panel/panel_picture.h"
#include "ui/argb_image.h"

class DisplayFace {
  public:
    DisplayFace(std::int32_t theme, float scale);

    // The pixels of display 0 or 1.
    const UnitRect& rect(std::size_t display) const { return rects_[display]; }
    // Draws a frequency into display 0 or 1, whose ground is drawn already.
    void draw(const ArgbView& target, std::size_t display, const FrequencyPicture& frequency, const PixelRect& clip);

  private:
    static constexpr std::size_t kGlyphCount = 12;  // ten digits, the dash, the point
    static constexpr std::size_t kColourCount = 3;  // FrequencyState

    const ArgbImage& glyph(std::size_t index, FrequencyState state);
    ArgbImage paintDigit(std::size_t index, FrequencyState state) const;
    ArgbImage paintPoint(FrequencyState state) const;
    void drawUnderline(const ArgbView& target, std::int32_t left, std::int32_t top, const PixelRect& clip) const;

    std::int32_t theme_;
    std::array<UnitRect, 2> rects_;  // pixels
    UnitRect cell_;                  // of a digit within its glyph, pixels
    UnitRect point_;
    std::int32_t margin_ = 0;  // of a glyph around its cell
    std::int32_t pitch_ = 0;   // from digit to digit
    std::int32_t pointPitch_ = 0;
    std::array<std::array<ArgbImage, kGlyphCount>, kColourCount> glyphs_;  // empty until first shown
};
