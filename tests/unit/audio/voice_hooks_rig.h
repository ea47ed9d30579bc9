// voice_hooks_rig.h - the voice hooks of one thread beside the plain ones, for tests: every block goes through both.
#pragma once
#include <gtest/gtest.h>
#include <vector>
#include "audio/capture_mode.h"
#include "audio/voice_hooks.h"
#include "tests/reference/plain_voice_hooks.h"
#include "tests/unit/audio/voice_blocks.h"

inline constexpr std::uint32_t kEverySwitch = 31;
inline constexpr std::uint64_t kServer = 3;

inline VoiceControls controlsOf(std::uint32_t flags, std::int32_t captureMode = kCaptureEdited) {
    VoiceControls controls;
    controls.audioFlags = flags;
    controls.captureMode = captureMode;
    return controls;
}

// Both hooks of one thread, and beside them the plain ones; every block goes through both.
struct Hooks {
    CapturedVoice captured;
    PlaybackVoices playback;
    PlainCapturedVoice plainCaptured;
    PlainPlaybackVoices plainPlayback;

    // Returns the edited block; edited is the host's flag. Fails where the two differ.
    std::vector<short> capture(const VoiceControls& controls, std::vector<short> block, int channels, int& edited) {
        std::vector<short> plain = block;
        const int n = static_cast<int>(block.size());
        int plainEdited = edited;
        editCapturedVoice(captured, controls, block.data(), n, channels, &edited);
        plainEditCapturedVoice(plainCaptured, controls, plain.data(), n, channels, &plainEdited);
        EXPECT_EQ(block, plain);
        EXPECT_EQ(edited, plainEdited);
        return block;
    }
    std::vector<short> play(const VoiceControls& controls, std::uint16_t client, std::vector<short> block, int channels,
                            std::uint64_t schid = kServer) {
        std::vector<short> plain = block;
        const int n = static_cast<int>(block.size());
        editPlaybackVoice(playback, controls, speakerKey(schid, client), block.data(), n, channels);
        plainEditPlaybackVoice(plainPlayback, controls, schid, client, plain.data(), n, channels);
        EXPECT_EQ(block, plain);
        return block;
    }
    float equalizerGain(std::uint16_t client) {
        return playback.speakers.at(speakerKey(kServer, client)).equalizerGain;
    }
};
