// plain_voice_hooks.h - the voice hooks value by value around the plain effect and denoiser: the oracle for
// audio/voice_hooks.h, whose samples, states and gains must be the same to the last bit.
#pragma once
#include <cstdint>
#include <map>
#include "audio/voice_hooks.h"
#include "tests/reference/plain_radio_effect.h"

struct PlainCapturedVoice {
    PlainRadioEffectState effect;
    std::uint32_t stamp = 0xFFFFFFFF;
};

struct PlainSpeaker {
    PlainRadioEffectState effect;
    float equalizerGain = 1.0f;
    std::uint32_t stamp = 0;
};

struct PlainPlaybackVoices {
    std::map<std::uint64_t, PlainSpeaker> speakers;
};

// Like editCapturedVoice and editPlaybackVoice, but these allocate and ignore processor modes.
void plainEditCapturedVoice(PlainCapturedVoice& voice, const VoiceControls& controls, short* samples, int sampleCount,
                            int channels, int* edited);
void plainEditPlaybackVoice(PlainPlaybackVoices& voices, const VoiceControls& controls, std::uint64_t schid,
                            std::uint16_t clientId, short* samples, int sampleCount, int channels);

// A product as 16 bits, and the equalizer gain after a block.
short plainToSample(double x);
float plainFollowLevel(float gain, const short* samples, int sampleCount, int channels);
