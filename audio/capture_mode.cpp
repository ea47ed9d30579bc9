#include "audio/capture_mode.h"

std::int32_t captureModeOf(std::string_view fileText) {
    const char first = fileText.empty() ? '\n' : fileText.front();
    if (first == '0' || first == 'f') return kCaptureEdited;
    if (first == '2' || first == 'o') return kCaptureUntouched;
    return kCaptureUnreported;
}
