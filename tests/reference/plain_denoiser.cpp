#include "tests/reference/plain_denoiser.h"
#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr double kTau = 6.283185307179586476925286766559;

// A quarter turn in double is short of pi/2 by this much, and this is its cosine. C libraries that use the x87, whose
// pi is short, are wrong in the fifth digit.
double cosineOf(double angle) {
    return std::fabs(angle) == kTau / 4 ? 6.123233995736766e-17 : std::cos(angle);
}

void bitReverse(float* re, float* im, int n) {
    for (int i = 1, j = 0; i < n; i++) {
        int bit = n >> 1;
        for (; (j & bit) != 0; bit >>= 1) j ^= bit;
        j ^= bit;
        if (i >= j) continue;
        std::swap(re[i], re[j]);
        std::swap(im[i], im[j]);
    }
}

// The butterflies of one length; the twiddle starts over with each group.
void butterflies(float* re, float* im, int n, int length, int direction) {
    const double angle = -direction * kTau / length;
    const float stepRe = static_cast<float>(cosineOf(angle));
    const float stepIm = static_cast<float>(std::sin(angle));
    const int half = length / 2;
    for (int group = 0; group < n; group += length) {
        float wr = 1.0f, wi = 0.0f;
        for (int i = group; i < group + half; i++) {
            const float ur = re[i], ui = im[i];
            const float tr = wr * re[i + half] - wi * im[i + half];
            const float ti = wr * im[i + half] + wi * re[i + half];
            re[i] = ur + tr;
            im[i] = ui + ti;
            re[i + half] = ur - tr;
            im[i + half] = ui - ti;
            const float nextRe = wr * stepRe - wi * stepIm;
            wi = wr * stepIm + wi * stepRe;
            wr = nextRe;
        }
    }
}

void initialise(PlainDenoiser& state) {
    for (int n = 0; n < kPlainFrame; n++)
        state.window[n] = static_cast<float>(0.5 * (1.0 - std::cos(kTau * n / kPlainFrame)));
    state.gains.fill(1.0f);
    state.initialised = true;
}

void trackNoise(const PlainDenoiser& state, bool speech, float m, float& noise) {
    if (!state.hasNoiseEstimate)
        noise = 0.0f;
    else if (!speech)
        noise += (m - noise) * 0.08f;
    else if (noise > m)
        noise += (m - noise) * 0.02f;
}

void suppressNoise(PlainDenoiser& state, bool speech, float* re, float* im) {
    for (int k = 0; k < kPlainBins; k++) {
        const float m = std::sqrt(re[k] * re[k] + im[k] * im[k]);
        trackNoise(state, speech, m, state.noise[k]);
        float g = m > 0.0001f ? 1.0f - 1.5f * state.noise[k] / m : 0.0f;
        g = std::clamp(g, speech ? 0.35f : 0.15f, 1.0f);
        state.gains[k] += (g - state.gains[k]) * (state.gains[k] > g ? 0.413354f : 0.0519f);
        re[k] *= state.gains[k];
        im[k] *= state.gains[k];
        if (k == 0 || k == kPlainBins - 1) continue;
        re[kPlainFrame - k] = re[k];
        im[kPlainFrame - k] = -im[k];
    }
}

void processFrame(PlainDenoiser& state, bool speech) {
    float re[kPlainFrame], im[kPlainFrame];
    for (int n = 0; n < kPlainFrame; n++) {
        re[n] = state.window[n] * state.input[(state.inputPosition + n) % kPlainFrame];
        im[n] = 0.0f;
    }
    plainFft(re, im, kPlainFrame, 1);
    suppressNoise(state, speech, re, im);
    state.hasNoiseEstimate = true;
    plainFft(re, im, kPlainFrame, -1);
    for (int n = 0; n < kPlainFrame; n++) re[n] *= 1.0f / kPlainFrame;
    for (int n = 0; n < kPlainHop; n++) {
        state.output[state.writePosition] = re[n] + state.overlap[n];
        state.writePosition = (state.writePosition + 1) % kPlainFrame;
        state.outputCount++;
        state.overlap[n] = re[kPlainHop + n];
    }
}

}  // namespace

void plainFft(float* re, float* im, int n, int direction) {
    bitReverse(re, im, n);
    for (int length = 2; length <= n; length *= 2) butterflies(re, im, n, length, direction);
}

float denoisePlainSample(PlainDenoiser& state, float x, bool speech) {
    if (!state.initialised) initialise(state);
    state.speechPresence += ((speech ? 1.0f : 0.0f) - state.speechPresence) * 0.02f;
    state.input[state.inputPosition] = x;
    state.inputPosition = (state.inputPosition + 1) % kPlainFrame;
    if (++state.hopCount == kPlainHop) {
        state.hopCount = 0;
        processFrame(state, state.speechPresence > 0.3f);
    }
    if (state.outputCount == 0) return 0.0f;
    const float y = state.output[state.readPosition];
    state.readPosition = (state.readPosition + 1) % kPlainFrame;
    state.outputCount--;
    return y;
}
