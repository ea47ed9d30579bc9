#include "audio/spectral_denoiser.h"
#include <emmintrin.h>
#include <algorithm>
#include <cassert>
#include <cstring>
#include "audio/fft256.h"
#include "audio/fft256_tables.h"

namespace {

static_assert(kDenoiserFrame == kFftSize && kDenoiserHop == kFftSize / 2 && kDenoiserBins == kFftBins);

constexpr float kPresenceFollow = 0.02f;  // per sample: about 1 ms
constexpr float kSpeechPresence = 0.3f;   // above: the frame is speech
constexpr float kLearnInPause = 0.08f;    // per frame, towards the magnitude
constexpr float kLearnInSpeech = 0.02f;   // the same, downwards only
constexpr float kOverSubtraction = 1.5f;  // a little more than the noise, against musical tones
constexpr float kSilentMagnitude = 0.0001f;
constexpr float kPauseFloor = 0.15f;    // -16.5 dB
constexpr float kSpeechFloor = 0.35f;   // -9.1 dB
constexpr float kGainFall = 0.413354f;  // per frame
constexpr float kGainRise = 0.0519f;    // the same: slower, so that a syllable does not let noise in

// The spectrum of one frame. The mirrored bins are stored four at a time, so there is room for one more at the end.
struct Spectrum {
    alignas(16) float re[kDenoiserFrame + 4];
    alignas(16) float im[kDenoiserFrame + 4];
};

inline __m128 select(__m128 mask, __m128 yes, __m128 no) {
    return _mm_or_ps(_mm_and_ps(mask, yes), _mm_andnot_ps(mask, no));
}

// value + (target - value) * rate, in this order.
inline __m128 approach(__m128 value, __m128 target, __m128 rate) {
    return _mm_add_ps(value, _mm_mul_ps(_mm_sub_ps(target, value), rate));
}

struct FrameKind {
    bool speech;
    bool first;  // nothing learned yet
};

// The noise estimate after a frame in which the bins have magnitude m.
inline __m128 followNoise(__m128 noise, __m128 m, FrameKind frame) {
    if (frame.first) return _mm_setzero_ps();
    if (!frame.speech) return approach(noise, m, _mm_set1_ps(kLearnInPause));
    return select(_mm_cmpgt_ps(noise, m), approach(noise, m, _mm_set1_ps(kLearnInSpeech)), noise);
}

inline __m128 followGain(__m128 gain, __m128 noise, __m128 m, FrameKind frame) {
    const __m128 one = _mm_set1_ps(1.0f);
    const __m128 heard = _mm_cmpgt_ps(m, _mm_set1_ps(kSilentMagnitude));
    const __m128 ratio = _mm_div_ps(_mm_mul_ps(_mm_set1_ps(kOverSubtraction), noise), m);
    const __m128 raw = _mm_and_ps(heard, _mm_sub_ps(one, ratio));  // 0 where there is nothing
    const __m128 floor = _mm_set1_ps(frame.speech ? kSpeechFloor : kPauseFloor);
    const __m128 target = _mm_min_ps(_mm_max_ps(raw, floor), one);
    const __m128 falls = _mm_cmpgt_ps(gain, target);
    return approach(gain, target, select(falls, _mm_set1_ps(kGainFall), _mm_set1_ps(kGainRise)));
}

// Noise estimate, gain and spectrum of four bins, or of any lanes that hold one.
inline void suppressNoise(__m128& re, __m128& im, __m128& noise, __m128& gain, FrameKind frame) {
    const __m128 m = _mm_sqrt_ps(_mm_add_ps(_mm_mul_ps(re, re), _mm_mul_ps(im, im)));
    noise = followNoise(noise, m, frame);
    gain = followGain(gain, noise, m, frame);
    re = _mm_mul_ps(re, gain);
    im = _mm_mul_ps(im, gain);
}

inline __m128 reversed(__m128 x) {
    return _mm_shuffle_ps(x, x, _MM_SHUFFLE(0, 1, 2, 3));
}

// Bins k..k+3 and their conjugates at 256 - k and below.
inline void storeMirrored(Spectrum& spectrum, int k, __m128 re, __m128 im) {
    const int mirror = kDenoiserFrame - k - 3;
    _mm_store_ps(spectrum.re + k, re);
    _mm_store_ps(spectrum.im + k, im);
    _mm_storeu_ps(spectrum.re + mirror, reversed(re));
    _mm_storeu_ps(spectrum.im + mirror, reversed(_mm_xor_ps(im, _mm_set1_ps(-0.0f))));
}

void suppressNoise(SpectralDenoiser& state, Spectrum& spectrum, FrameKind frame) {
    float* noise = state.noise.data();
    float* gains = state.gains.data();
    for (int k = 0; k < kDenoiserHop; k += 4) {
        __m128 re = _mm_load_ps(spectrum.re + k), im = _mm_load_ps(spectrum.im + k);
        __m128 n = _mm_loadu_ps(noise + k), g = _mm_loadu_ps(gains + k);
        suppressNoise(re, im, n, g, frame);
        _mm_storeu_ps(noise + k, n);
        _mm_storeu_ps(gains + k, g);
        storeMirrored(spectrum, k, re, im);
    }
    constexpr int kLast = kDenoiserHop;  // bin 128 stands alone: it is its own mirror
    __m128 re = _mm_load_ss(spectrum.re + kLast), im = _mm_load_ss(spectrum.im + kLast);
    __m128 n = _mm_load_ss(noise + kLast), g = _mm_load_ss(gains + kLast);
    suppressNoise(re, im, n, g, frame);
    _mm_store_ss(noise + kLast, n);
    _mm_store_ss(gains + kLast, g);
    _mm_store_ss(spectrum.re + kLast, re);
    _mm_store_ss(spectrum.im + kLast, im);
}

// The last 256 samples, oldest first, windowed. A frame runs every 128 samples: the oldest is at 0 or at 128.
void windowInput(const SpectralDenoiser& state, float* x) {
    for (int n = 0; n < kDenoiserFrame; n += 4) {
        const int at = (state.inputPosition + n) % kDenoiserFrame;
        _mm_store_ps(x + n, _mm_mul_ps(_mm_load_ps(&kHannWindow[n]), _mm_loadu_ps(&state.input[at])));
    }
}

// The first half of a frame is added to the second half of the one before it.
void overlapAdd(SpectralDenoiser& state, const float* x) {
    const __m128 scale = _mm_set1_ps(1.0f / kDenoiserFrame);
    float* out = state.output.data() + state.writePosition;
    float* overlap = state.overlap.data();
    for (int n = 0; n < kDenoiserHop; n += 4) {
        const __m128 rising = _mm_mul_ps(_mm_load_ps(x + n), scale);
        const __m128 falling = _mm_mul_ps(_mm_load_ps(x + kDenoiserHop + n), scale);
        _mm_storeu_ps(out + n, _mm_add_ps(rising, _mm_loadu_ps(overlap + n)));
        _mm_storeu_ps(overlap + n, falling);
    }
    state.writePosition = (state.writePosition + kDenoiserHop) % kDenoiserFrame;
    state.outputCount += kDenoiserHop;
}

// Not inlined: its arrays would cost every sample a stack frame.
[[gnu::noinline]] void processFrame(SpectralDenoiser& state) {
    alignas(16) float x[kDenoiserFrame];
    Spectrum spectrum;
    windowInput(state, x);
    forwardFft256(x, spectrum.re, spectrum.im);
    suppressNoise(state, spectrum, {state.speechPresence > kSpeechPresence, !state.hasNoiseEstimate});
    state.hasNoiseEstimate = true;
    inverseFft256(spectrum.re, spectrum.im, x);
    overlapAdd(state, x);
}

inline float followPresence(float presence, float flag) {
    return presence + (flag - presence) * kPresenceFollow;
}

}  // namespace

float denoiseSample(SpectralDenoiser& state, float x, bool speech) {
    if (!state.initialised) {
        state.gains.fill(1.0f);
        state.initialised = true;
    }
    state.speechPresence = followPresence(state.speechPresence, speech ? 1.0f : 0.0f);
    state.input[state.inputPosition] = x;
    state.inputPosition = (state.inputPosition + 1) % kDenoiserFrame;
    if (++state.hopCount == kDenoiserHop) {
        state.hopCount = 0;
        processFrame(state);
    }
    if (state.outputCount == 0) return 0.0f;
    const float y = state.output[state.readPosition];
    state.readPosition = (state.readPosition + 1) % kDenoiserFrame;
    state.outputCount--;
    return y;
}

int samplesBeforeFrame(const SpectralDenoiser& state) {
    return kDenoiserHop - 1 - state.hopCount;
}

// No frame falls inside a run, and positions at a frame are multiples of 128: neither ring wraps before a run's end.
void takeRun(SpectralDenoiser& state, const float* in, float* out, int n) {
    assert(n >= 0 && n <= samplesBeforeFrame(state));
    std::copy_n(in, n, state.input.data() + state.inputPosition);
    state.inputPosition += n;
    state.hopCount += n;
    if (state.outputCount == 0) {
        std::fill_n(out, n, 0.0f);
        return;
    }
    std::copy_n(state.output.data() + state.readPosition, n, out);
    state.readPosition = (state.readPosition + n) % kDenoiserFrame;
    state.outputCount -= n;
}

// Under a steady flag the presence reaches a value where it stays; from there the rest of the steady run is skipped.
void trackSpeech(SpectralDenoiser& state, const std::uint8_t* flags, int n) {
    float presence = state.speechPresence;
    for (int i = 0; i < n; i++) {
        const float next = followPresence(presence, static_cast<float>(flags[i]));
        if (next == presence) {
            while (i + 1 < n && flags[i + 1] == flags[i]) i++;
        }
        presence = next;
    }
    state.speechPresence = presence;
}
