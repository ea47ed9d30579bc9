// capture_mode.h - "capture_mode.txt", which other programs may leave in the data folder: how the own voice is edited.
#pragma once
#include <cstdint>
#include <string_view>

inline constexpr const char* kCaptureModeFile = "capture_mode.txt";

enum CaptureModes : std::int32_t {
    kCaptureEdited = 0,      // the own voice is edited and reported as edited
    kCaptureUnreported = 1,  // edited, but the host's own flag stands; also without a file
    kCaptureUntouched = 2,   // left alone
};

// From the first character of the file's first line: "0" or "f" 0, "2" or "o" 2, anything else 1.
std::int32_t captureModeOf(std::string_view fileText);
