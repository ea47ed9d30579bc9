// move_status.h - the stages of a move into a channel, in the words of the panel's channel status line.
#pragma once
#include <optional>
#include <string>
#include "channels/follow_frequency.h"

// Nothing for a stage that has nothing to say: the line stays as it is.
std::optional<std::string> channelStatusOf(const MoveReport& report);
