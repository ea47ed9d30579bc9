#include "bridge/status_lines.h"

StatusTexts copyStatus(StatusLines& lines) {
    const MutexLock lock(lines.mutex);
    return lines.texts;
}

void setStatusText(StatusLines& lines, std::string_view text) {
    const MutexLock lock(lines.mutex);
    lines.texts.statusText = text;
}

void setChannelStatus(StatusLines& lines, std::string_view text) {
    const MutexLock lock(lines.mutex);
    lines.texts.channelStatus = text;
}
