#include "messages/message_geometry.h"
#include <algorithm>
#include <cmath>

namespace {

constexpr float kGapBelowPanel = 12.0f;
constexpr std::int32_t kFromRight = 660;  // without a panel
constexpr std::int32_t kFromBottom = 480;
constexpr float kCloseNear = 8.0f;  // the close button's edges: from the top, and from the window's right edge
constexpr float kCloseFar = 40.0f;

std::int32_t rounded(float length) {
    return static_cast<std::int32_t>(std::lround(length));
}

// Never below low, even if low is above high.
std::int32_t limited(std::int32_t value, std::int32_t low, std::int32_t high) {
    return std::max(low, std::min(value, high));
}

}  // namespace

PixelRect placeMessageWindow(const PixelRect& panel, const PixelRect& workArea, std::uint32_t dpi) {
    const float scale = messageScale(dpi);
    const std::int32_t width = rounded(static_cast<float>(kMessageWidth) * scale);
    const std::int32_t height = rounded(static_cast<float>(kMessageHeight) * scale);
    const std::int32_t middle = panel.left + (panel.right - panel.left) / 2;
    const std::int32_t x = limited(middle - width / 2, workArea.left, workArea.right - width);
    const std::int32_t y =
        limited(panel.bottom + rounded(kGapBelowPanel * scale), workArea.top, workArea.bottom - height);
    return {x, y, x + width, y + height};
}

PixelRect placeMessageWindow(std::int32_t screenWidth, std::int32_t screenHeight) {
    const std::int32_t x = screenWidth - kFromRight;
    const std::int32_t y = screenHeight - kFromBottom;
    return {x, y, x + kMessageWidth, y + kMessageHeight};
}

bool isOnCloseButton(PixelPoint at, std::int32_t windowWidth, std::uint32_t dpi) {
    const float scale = messageScale(dpi);
    const auto x = static_cast<float>(windowWidth - at.x);
    const auto y = static_cast<float>(at.y);
    return x <= kCloseFar * scale && x > kCloseNear * scale && y >= kCloseNear * scale && y < kCloseFar * scale;
}

bool isOnHeader(PixelPoint at, std::uint32_t dpi) {
    return static_cast<float>(at.y) < kHeaderHeight * messageScale(dpi);
}
