// capture_mode.h - "capture_mode.txt", which other programs may leave in the data folder: how to edit the user's voice.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string_view>

inline constexpr const char* kCaptureModeFile = "capture_mode.txt";
inline constexpr std::size_t kMaxCaptureModeBytes = 4096;  // no more of the file is read: two lines are looked at

enum CaptureModes : std::int32_t {
    kCaptureEdited = 0,      // the user's own voice is edited and reported as edited
    kCaptureUnreported = 1,  // edited, but the host's flag is left as it is; also without a file
    kCaptureUntouched = 2,   // left alone
};

// Of the host's flag of a captured block, when the plugin returns it: the samples were changed. Bit 1 is the host's
// word that the block is about to be sent; without it the block is not sent.
inline constexpr int kEditedBit = 1;

// From the first character of the file's first line: "0" or "f" gives 0, "2" or "o" gives 2, anything else 1.
std::int32_t captureModeOf(std::string_view fileText);

// Whether the file's second line is the word "mark": modes 0 and 1 then set kEditedBit and leave the other bits.
bool asksForMark(std::string_view fileText);
