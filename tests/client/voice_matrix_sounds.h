// voice_matrix_sounds.h - what the voice matrix plays: sounds that bring every part of the voice chain into motion.
// Repeatable: the same arguments give the same samples.
#pragma once
#include <cstdint>
#include <vector>
#include "tests/unit/audio/voice_blocks.h"

// n samples of one channel at 48 kHz; of random sounds another seed gives others.
using MakeSound = std::vector<short> (*)(int n, std::uint32_t seed);

// A sound as it is.
template <Sound sound>
std::vector<short> makeSound(int n, std::uint32_t seed) {
    return VoiceBlocks(seed).take(sound, n);
}

// Levels held for a while, up to both ends of the scale.
std::vector<short> makeSteps(int n, std::uint32_t seed);

// Short tones in silence that lasts until the squelch has shut: each opens it anew.
std::vector<short> makeBursts(int n, std::uint32_t seed);

// Speech, silence, and speech again at the end, kSpeechAgain of it.
std::vector<short> makeSilenceAfterSpeech(int n, std::uint32_t seed);
inline constexpr int kSpeechAgain = 1024;

// samples of each channel as a host hands them over. With two channels they alternate between two different voices.
std::vector<short> makeValues(MakeSound make, int samples, int channels);
