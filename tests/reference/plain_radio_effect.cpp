// plain_radio_effect.cpp - the order of operations is part of the result: sums and products run from left to right.
#include "tests/reference/plain_radio_effect.h"
#include <algorithm>
#include <cmath>

namespace {

// 330 Hz, four one-pole stages: 1 / (1 + 2 pi 330/48000).
float highPass(PlainRadioChannel& c, float x) {
    for (std::size_t k = 0; k < 4; k++) {
        const float y = x - c.highPassIn[k] + 0.9585918f * c.highPassOut[k];
        c.highPassIn[k] = x;
        c.highPassOut[k] = y;
        x = y;
    }
    return x;
}

// 2800 Hz, four one-pole stages: 1 - e^(-2 pi 2800/48000).
float lowPass(PlainRadioChannel& c, float x) {
    for (float& m : c.lowPass) {
        m = m + (x - m) * 0.30685714f;
        x = m;
    }
    return x;
}

// 1900 Hz, pole radius 0.97.
float resonate(PlainRadioChannel& c, float x) {
    const float r = x + 1.8803079f * c.resonance1 - 0.9409f * c.resonance2;
    c.resonance2 = c.resonance1;
    c.resonance1 = r;
    return x + 1.1f * r;
}

// Peaking equalizer at 700 Hz: -4 dB, Q 1.
float cutPeak(PlainRadioChannel& c, float x) {
    const float y =
        0.9799019f * x - 1.8831465f * c.peakX1 + 0.9111779f * c.peakX2 + 1.8831465f * c.peakY1 - 0.8910797f * c.peakY2;
    c.peakX2 = c.peakX1;
    c.peakX1 = x;
    c.peakY2 = c.peakY1;
    c.peakY1 = y;
    return y;
}

// The squelch for magnitude a; returns its threshold.
float runGate(PlainRadioChannel& c, float a) {
    c.floor += (a - c.floor) * (c.floor > a ? 0.00004f : 0.000004f);
    const float threshold = std::max(90.0f, 3.0f * c.floor);
    c.voice = a > threshold;
    float target = c.gateGain;
    if (c.voice)
        target = 1.0f;
    else if (a < 0.55f * threshold)
        target = 0.06f;
    c.gateGain += (target - c.gateGain) * (target > c.gateGain ? 0.35f : 0.0015f);
    return threshold;
}

// Level follower, and the dip when the gate has opened: 3 ms attack, 300 ms release, 150 ms recovery.
void runEnvelopes(PlainRadioChannel& c, float a) {
    if (a > c.level)
        c.level += (a - c.level) * 0.006920388f;
    else
        c.level += (a - c.level) * 0.000069442f;
    if (c.gateGain > 0.5f && c.burstArmed) {
        c.burstGain = 0.72f;
        c.burstArmed = false;
    } else if (c.gateGain < 0.25f) {
        c.burstArmed = true;
    }
    c.burstGain += (1.0f - c.burstGain) * 0.000138879f;
}

float compressorGain(const PlainRadioChannel& c, float threshold) {
    float g = 1.0f;
    if (c.level > 2600.0f)
        g = ((c.level - 2600.0f) * 0.16f + 2600.0f) / c.level;
    else if (c.gateGain > 0.5f && c.level > 0.55f * threshold)
        g = std::min(1.4f, 2600.0f / c.level);
    return g * 0.72f;
}

float drawHiss(PlainRadioChannel& c, std::uint32_t& generator) {
    generator ^= generator << 13U;
    generator ^= generator >> 17U;
    generator ^= generator << 5U;
    const float n = static_cast<float>(generator & 0xFFFFU) / 32768.0f - 1.0f;
    const float h = n - c.hissIn + 0.96221393f * c.hissHighPass;
    c.hissIn = n;
    c.hissHighPass = h;
    c.hissLowPass1 += (h - c.hissLowPass1) * 0.3247681f;
    c.hissLowPass2 += (c.hissLowPass1 - c.hissLowPass2) * 0.3247681f;
    const float q = 0.5f * std::min(c.level / 2600.0f, 1.0f);
    return (1.5f - q) * 1300.0f * c.hissLowPass2;
}

// Clamped and rounded half away from zero: in double, the sum with a half is exact wherever it matters. (The C library
// of one of our compilers rounds -0.49999997 to -1.)
short toSample(float x) {
    const double wide = std::clamp(x, -32767.0f, 32767.0f);
    return static_cast<short>(wide + std::copysign(0.5, wide));
}

float saturate(float v) {
    const float u = 2.0f * v / 20000.0f;
    const float w = u / (0.35f * std::fabs(u) + 1.0f) * 20000.0f * 1.18f;
    return static_cast<float>(toSample(w));
}

float blockDc(PlainRadioChannel& c, float w) {
    const float d = w - c.dcX1 + 0.999f * c.dcY1;
    c.dcX1 = w;
    c.dcY1 = d;
    return d;
}

}  // namespace

float plainRadioFilter(PlainRadioChannel& channel, float x) {
    return cutPeak(channel, resonate(channel, lowPass(channel, highPass(channel, x))));
}

void plainApplyRadioEffect(short* samples, int count, int channels, PlainRadioEffectState& state, bool hiss,
                           bool predenoise) {
    if (samples == nullptr || count < 1) return;
    for (int i = 0; i < count; i++) {
        PlainRadioChannel& c = state.channels[channels < 2 ? 0U : static_cast<unsigned>(i) & 1U];
        float x = static_cast<float>(samples[i]);
        if (predenoise) x = denoisePlainSample(c.denoiser, x, c.voice);
        const float y = plainRadioFilter(c, x);
        const float a = std::fabs(y);
        const float threshold = runGate(c, a);
        runEnvelopes(c, a);
        float v = c.burstGain * compressorGain(c, threshold) * c.gateGain * y;
        if (hiss) v = v + drawHiss(c, state.hissState);
        const float d = blockDc(c, saturate(v));
        samples[i] = toSample(d);
    }
}
