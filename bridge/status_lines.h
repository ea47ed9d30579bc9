// status_lines.h - the two lines at the foot of the panel: what the bridge is doing, and the move into the channel.
#pragma once
#include <string>
#include <string_view>
#include "base/mutex.h"

struct StatusTexts {
    std::string statusText = "DISCONNECTED";  // bridge status line of the panel, UTF-8
    std::string channelStatus;                // channel-following status line, UTF-8

    bool operator==(const StatusTexts&) const = default;
};

// The status lock guards both texts; it is held for a copy or an assignment. [poll] and [ui] set them; [any] copies.
struct StatusLines {
    Mutex mutex;
    StatusTexts texts GUARDED_BY(mutex);
};

StatusTexts copyStatus(StatusLines& lines);
void setStatusText(StatusLines& lines, std::string_view text);
void setChannelStatus(StatusLines& lines, std::string_view text);
