// radio_effect.cpp - cuts a block into runs of one channel each: value i belongs to slot i mod 2 of a stereo block, and
// the hiss generator advances from value to value, whichever slot they belong to.
#include "audio/radio_effect.h"
#include <algorithm>
#include <cstddef>
#include "audio/radio_effect_noise.h"
#include "audio/radio_effect_run.h"

namespace {

constexpr int kMaxSlots = 2;

// The values of one slot in a chunk of the block.
struct SlotRun {
    float in[kRadioRun];
    float noise[1 + kRadioRun];  // after that of the previous value
    short out[kRadioRun + kRadioPadding];
};

void runClean(RadioChannel& channel, SlotRun& slot, const float* noise, int n) {
    std::uint8_t voiceFlags[kRadioRun + kRadioPadding];
    runRadio(channel, slot.in, noise, slot.out, voiceFlags, n);
}

// From one frame of the denoiser to the next: its speech flag for a value is the squelch's state after the value
// before, so what it returns between frames goes through the squelch first and the flags are passed in afterwards.
// Returns how many of the n values are done.
int runToNextFrame(RadioChannel& channel, const float* in, const float* noise, short* out, int n) {
    float x[kDenoiserHop];
    std::uint8_t voiceFlags[1 + kDenoiserHop + kRadioPadding];
    voiceFlags[0] = channel.voice ? 1 : 0;
    int framed = 0;
    if (samplesBeforeFrame(channel.denoiser) == 0) {
        x[0] = denoiseSample(channel.denoiser, in[0], channel.voice);
        framed = 1;
    }
    const int between = std::min(samplesBeforeFrame(channel.denoiser), n - framed);
    takeRun(channel.denoiser, in + framed, x + framed, between);
    runRadio(channel, x, noise, out, voiceFlags + 1, framed + between);
    trackSpeech(channel.denoiser, voiceFlags + framed, between);
    return framed + between;
}

void runDenoised(RadioChannel& channel, SlotRun& slot, const float* noise, int n) {
    for (int i = 0; i < n;)
        i += runToNextFrame(channel, slot.in + i, noise == nullptr ? nullptr : noise + i, slot.out + i, n - i);
}

// Processes one slot's values of a chunk of n: every stride-th sample from the first on. noise holds the generator's
// value for each value of the chunk, or is null.
void runSlot(RadioChannel& channel, short* samples, const float* noise, int n, int stride, bool predenoise) {
    SlotRun slot;
    int length = 0;
    for (int i = 0; i < n; i += stride) slot.in[length++] = static_cast<float>(samples[i]);
    if (length == 0) return;
    slot.noise[0] = channel.hissIn;
    if (noise != nullptr)
        for (int k = 0; k < length; k++) slot.noise[1 + k] = noise[std::ptrdiff_t{k} * stride];
    (predenoise ? runDenoised : runClean)(channel, slot, noise == nullptr ? nullptr : slot.noise + 1, length);
    for (int k = 0; k < length; k++) samples[std::ptrdiff_t{k} * stride] = slot.out[k];
}

}  // namespace

void applyRadioEffect(short* samples, int count, int channels, RadioEffectState& state, bool hiss, bool predenoise) {
    if (samples == nullptr || count < 1) return;
    const int slots = channels < 2 ? 1 : kMaxSlots;
    float noise[kMaxSlots * kRadioRun];
    for (int done = 0; done < count;) {
        const int n = std::min(count - done, slots * kRadioRun);  // in stereo an even number, except in the last chunk
        if (hiss) drawNoise(state.hissState, noise, n);
        for (int s = 0; s < slots; s++)
            runSlot(state.channels[static_cast<std::size_t>(s)], samples + done + s, hiss ? noise + s : nullptr, n - s,
                    slots, predenoise);
        done += n;
    }
}
