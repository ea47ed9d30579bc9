// status_strip.h - how the two status lines share their strip. Pixels; pure functions.
#pragma once
#include <cstdint>

struct StatusWidths {
    std::int32_t left = 0;
    std::int32_t right = 0;

    bool operator==(const StatusWidths&) const = default;
};

// What each line gets of a room of this width, with at least gap between them, if they want so much: the right one
// first, the left one all that is left then. Only where both do not fit does the right one stop at three fifths, so
// that a line that is cut still says something. A line without text wants 0, and then needs no gap.
StatusWidths shareStatusRoom(std::int32_t room, std::int32_t gap, const StatusWidths& wanted);
