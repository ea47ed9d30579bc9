#include "panel/status_strip.h"
#include <algorithm>

StatusWidths shareStatusRoom(std::int32_t room, std::int32_t gap, const StatusWidths& wanted) {
    if (wanted.right <= 0) return {std::max(room, 0), 0};
    if (wanted.left <= 0) return {0, std::clamp(wanted.right, 0, std::max(room, 0))};
    const std::int32_t both = std::max(room - gap, 0);
    const std::int32_t most = std::max(both - wanted.left, both * 3 / 5);
    const std::int32_t right = std::min(wanted.right, most);
    return {both - right, right};
}
