// voice_levels.h - what the poll loop asks of the voice hooks, besides the settings: [poll] stores, [any] loads.
#pragma once
#include <atomic>
#include <cstdint>
#include "audio/capture_mode.h"

struct VoiceLevels {
    std::atomic<float> ReceiveGain{1.0f};                       // linear
    std::atomic<std::int32_t> CaptureMode{kCaptureUnreported};  // CaptureModes
    std::atomic<bool> MarkEdited{false};                        // asksForMark
};
