#include "audio/capture_mode.h"
#include "base/ascii_text.h"

namespace {

std::string_view secondLineOf(std::string_view text) {
    const auto end = text.find('\n');
    if (end == std::string_view::npos) return {};
    text.remove_prefix(end + 1);
    return text.substr(0, text.find('\n'));
}

}  // namespace

std::int32_t captureModeOf(std::string_view fileText) {
    const char first = fileText.empty() ? '\n' : fileText.front();
    if (first == '0' || first == 'f') return kCaptureEdited;
    if (first == '2' || first == 'o') return kCaptureUntouched;
    return kCaptureUnreported;
}

bool asksForMark(std::string_view fileText) {
    return withoutBlanks(secondLineOf(fileText)) == "mark";
}
