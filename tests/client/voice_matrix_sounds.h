// voice_matrix_sounds.h - what the voice matrix plays: sounds that exercise every part of the voice chain.
// Repeatable: the same arguments give the same samples.
#pragma once
#include <cstdint>
#include <vector>
#include "tests/unit/audio/voice_blocks.h"

// n samples of one channel at 48 kHz; random sounds differ from seed to seed.
using MakeSound = std::vector<short> (*)(int n, std::uint32_t seed);

// A sound unchanged.
template <Sound sound>
std::vector<short> makeSound(int n, std::uint32_t seed) {
    return VoiceBlocks(seed).take(sound, n);
}

// Levels held for a while, up to both ends of the scale.
std::vector<short> makeSteps(int n, std::uint32_t seed);

// Short tones, with silence in between until the squelch has closed: each opens it anew.
std::vector<short> makeBursts(int n, std::uint32_t seed);

// Speech, silence, and at the end kSpeechAgain samples of speech again.
std::vector<short> makeSilenceAfterSpeech(int n, std::uint32_t seed);
inline constexpr int kSpeechAgain = 1024;

// `samples` per channel, as a host hands them over; with two channels, two different voices alternate.
std::vector<short> makeValues(MakeSound make, int samples, int channels);
