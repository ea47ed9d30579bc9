// radio_effect_run.cpp - the order of work within a run. Every recurrence of the chain waits about ten cycles for its
// own previous value, so two or three that do not wait for each other share a loop: the run goes through in blocks, and
// the second half of the chain works one block behind the first.
//
//     block b                          block b-1
//     band-pass, resonator        |    squelch gate, burst        one loop
//     peaking cut, forward terms  |    gains, saturation          four values at a time
//     peaking cut, followers, hiss|    DC blocker                 one loop
//     squelch thresholds          |    rounding                   four values at a time
#include "audio/radio_effect_run.h"
#include <algorithm>
#include <cstddef>
#include "audio/radio_effect_bandpass.h"
#include "audio/radio_effect_lanes.h"
#include "audio/radio_effect_recurrences.h"

namespace {

constexpr int kBlock = 16;
constexpr int kBefore = 4;  // room for values before the run
static_assert(kBlock % 4 == 0 && kRadioRun % kBlock == 0);

constexpr int kArray = kRadioRun + kRadioPadding;

// What one stage leaves for the next.
struct Arrays {
    alignas(16) float peakIn[kBefore + kArray];  // after the last two values of the previous run
    alignas(16) float peakForward[kArray];       // forward terms of the peaking cut
    alignas(16) float voice[kArray];             // filtered voice
    alignas(16) float followers[2 * kArray];     // negated noise floor, level
    alignas(16) float shutBelow[kArray];         // the squelch shuts below this magnitude
    alignas(16) float target[kArray];            // where the gate is pulled to
    alignas(16) float rise[kArray];
    alignas(16) float fall[kArray];
    alignas(16) float gate[kArray];
    alignas(16) float burst[kArray];
    alignas(16) float hiss[kArray];                 // filtered noise
    alignas(16) float saturated[kBefore + kArray];  // after the last value of the previous run
    alignas(16) float output[kArray];
};

// Values [first, first + n) of a run.
struct Span {
    int first;
    int n;
};

// The memory of a channel in the form the loops need.
struct Chain {
    BandPass band;
    Resonator resonator;
    PeakCut peak;
    Followers followers;
    float gate;
    float burst;
    bool burstArmed;
    HissFilter hiss;
    float dcY1;
};

Chain loadChain(const RadioChannel& c) {
    return {loadBandPass(c),
            {c.resonance1, c.resonance2},
            {c.peakY1, c.peakY2},
            {_mm_set_ps(0.0f, 0.0f, c.level, -c.floor)},
            c.gateGain,
            c.burstGain,
            c.burstArmed,
            {c.hissHighPass, c.hissLowPass1, c.hissLowPass2},
            c.dcY1};
}

void storeChain(const Chain& s, RadioChannel& c) {
    alignas(16) float followers[4];
    _mm_store_ps(followers, s.followers.lanes);
    storeBandPass(s.band, c);
    c.resonance1 = s.resonator.r1;
    c.resonance2 = s.resonator.r2;
    c.peakY1 = s.peak.y1;
    c.peakY2 = s.peak.y2;
    c.floor = 0.0f - followers[0];  // a subtraction, so that a floor of zero is +0
    c.level = followers[1];
    c.gateGain = s.gate;
    c.burstGain = s.burst;
    c.burstArmed = s.burstArmed;
    c.hissHighPass = s.hiss.highPass;
    c.hissLowPass1 = s.hiss.lowPass1;
    c.hissLowPass2 = s.hiss.lowPass2;
    c.dcY1 = s.dcY1;
}

// The values before the run, for the stages that look back at their input.
void loadInputs(const RadioChannel& c, Arrays& a) {
    a.peakIn[kBefore - 2] = c.peakX2;
    a.peakIn[kBefore - 1] = c.peakX1;
    a.saturated[kBefore - 1] = c.dcX1;
}

void storeInputs(const Arrays& a, const float* noise, int n, RadioChannel& c) {
    c.peakX2 = a.peakIn[kBefore + n - 2];
    c.peakX1 = a.peakIn[kBefore + n - 1];
    c.dcX1 = a.saturated[kBefore + n - 1];
    if (noise != nullptr) c.hissIn = noise[n - 1];
}

// The last group of four may be incomplete: its idle lanes are computed too, and must not hold what was on the stack.
void clearLastGroup(Arrays& a, int n) {
    const __m128 zero = _mm_setzero_ps();
    for (float* x : {a.peakIn + kBefore, a.voice, a.gate, a.burst, a.hiss, a.output}) _mm_storeu_ps(x + n, zero);
    _mm_storeu_ps(a.followers + std::ptrdiff_t{2} * n, zero);
    _mm_storeu_ps(a.followers + std::ptrdiff_t{2} * n + 4, zero);
}

// Band-pass and resonator for the values of `fresh`, gate and burst for those of `old`. x is read kBandPassSkew ahead.
void filterAndGate(Chain& chain, const float* x, int n, Span fresh, Span old, Arrays& a) {
    BandPass band = chain.band;
    Resonator resonator = chain.resonator;
    float gate = chain.gate;
    float burst = chain.burst;
    bool armed = chain.burstArmed;
    const auto resonateAt = [&](int i) { a.peakIn[kBefore + i] = resonate(resonator, _mm_cvtss_f32(outputOf(band))); };
    const auto gateAt = [&](int i) {
        gate = pullGate(gate, a.target[i], a.rise[i], a.fall[i]);
        runBurst(burst, armed, gate);
        a.gate[i] = gate;
        a.burst[i] = burst;
    };
    const int whole = std::clamp(n - kBandPassSkew - fresh.first, 0, fresh.n);  // values whose step fills all lanes
    const int both = std::min(whole, old.n);
    int k = 0;
    for (; k < both; k++) {
        band = stepBandPass(band, x[fresh.first + k + kBandPassSkew]);
        resonateAt(fresh.first + k);
        gateAt(old.first + k);
    }
    for (int j = k; j < old.n; j++) gateAt(old.first + j);
    for (; k < whole; k++) {
        band = stepBandPass(band, x[fresh.first + k + kBandPassSkew]);
        resonateAt(fresh.first + k);
    }
    for (; k < fresh.n; k++) {
        band = stepBandPassEdge(band, x, fresh.first + k + kBandPassSkew, n);
        resonateAt(fresh.first + k);
    }
    chain.band = band;
    chain.resonator = resonator;
    chain.gate = gate;
    chain.burst = burst;
    chain.burstArmed = armed;
}

// Peaking cut, followers and hiss filter for the values of `fresh`, DC blocker for those of `old`.
void followAndBlock(Chain& chain, const float* noise, Span fresh, Span old, Arrays& a) {
    PeakCut peak = chain.peak;
    Followers followers = chain.followers;
    HissFilter filter = chain.hiss;
    float dcY1 = chain.dcY1;
    const auto followAt = [&](int i) {
        const float voice = cutPeak(peak, a.peakForward[i]);
        follow(followers, _mm_set1_ps(voice));
        a.voice[i] = voice;
        _mm_storel_pi(reinterpret_cast<__m64*>(a.followers + std::ptrdiff_t{2} * i), followers.lanes);
        if (noise != nullptr) a.hiss[i] = filterHiss(filter, noise[i] - noise[i - 1]);
    };
    const auto blockAt = [&](int i) {
        const float* in = a.saturated + kBefore + i;
        dcY1 = blockDc(dcY1, in[0] - in[-1]);
        a.output[i] = dcY1;
    };
    const int both = std::min(fresh.n, old.n);
    int k = 0;
    for (; k < both; k++) {
        followAt(fresh.first + k);
        blockAt(old.first + k);
    }
    for (int j = k; j < old.n; j++) blockAt(old.first + j);
    for (; k < fresh.n; k++) followAt(fresh.first + k);
    chain.peak = peak;
    chain.followers = followers;
    chain.hiss = filter;
    chain.dcY1 = dcY1;
}

void findPeakForward(Span s, Arrays& a) {
    for (int i = s.first; i < s.first + s.n; i += 4) {
        const float* x = a.peakIn + kBefore + i;
        const __m128 now = _mm_mul_ps(_mm_set1_ps(0.9799019f), _mm_load_ps(x));
        const __m128 one = _mm_mul_ps(_mm_set1_ps(1.8831465f), _mm_loadu_ps(x - 1));
        const __m128 two = _mm_mul_ps(_mm_set1_ps(0.9111779f), _mm_loadu_ps(x - 2));
        _mm_store_ps(a.peakForward + i, _mm_add_ps(_mm_sub_ps(now, one), two));
    }
}

__m128 thresholdAt(const Arrays& a, int i) {
    const __m128 first = _mm_load_ps(a.followers + std::ptrdiff_t{2} * i);
    const __m128 last = _mm_load_ps(a.followers + std::ptrdiff_t{2} * i + 4);
    const __m128 floor = _mm_sub_ps(_mm_setzero_ps(), _mm_shuffle_ps(first, last, _MM_SHUFFLE(2, 0, 2, 0)));
    return _mm_max_ps(_mm_set1_ps(90.0f), _mm_mul_ps(_mm_set1_ps(3.0f), floor));
}

__m128 levelAt(const Arrays& a, int i) {
    const __m128 first = _mm_load_ps(a.followers + std::ptrdiff_t{2} * i);
    const __m128 last = _mm_load_ps(a.followers + std::ptrdiff_t{2} * i + 4);
    return _mm_shuffle_ps(first, last, _MM_SHUFFLE(3, 1, 3, 1));
}

// The squelch opens above a threshold of three times the noise floor, at least 90, and shuts below 0.55 of it.
void findPull(Span s, Arrays& a, std::uint8_t* voiceFlags) {
    for (int i = s.first; i < s.first + s.n; i += 4) {
        const __m128 magnitude = magnitudeOf(_mm_load_ps(a.voice + i));
        const __m128 threshold = thresholdAt(a, i);
        const __m128 open = _mm_cmpgt_ps(magnitude, threshold);
        const __m128 shutBelow = _mm_mul_ps(_mm_set1_ps(0.55f), threshold);
        const __m128 shut = _mm_cmplt_ps(magnitude, shutBelow);
        const __m128 moves = _mm_or_ps(open, shut);
        _mm_store_ps(a.shutBelow + i, shutBelow);
        _mm_store_ps(a.target + i, selectLanes(open, _mm_set1_ps(1.0f), _mm_set1_ps(0.06f)));
        _mm_store_ps(a.rise + i, _mm_and_ps(moves, _mm_set1_ps(0.35f)));
        _mm_store_ps(a.fall + i, _mm_and_ps(moves, _mm_set1_ps(0.0015f)));
        storeFlags(open, voiceFlags + i);
    }
}

void saturateBlock(Span s, bool hiss, Arrays& a) {
    for (int i = s.first; i < s.first + s.n; i += 4) {
        const __m128 level = levelAt(a, i);
        const __m128 gate = _mm_load_ps(a.gate + i);
        const __m128 gain = compressorGain(level, gate, _mm_load_ps(a.shutBelow + i));
        const __m128 gains = _mm_mul_ps(_mm_mul_ps(_mm_load_ps(a.burst + i), gain), gate);
        __m128 v = _mm_mul_ps(gains, _mm_load_ps(a.voice + i));
        if (hiss) v = _mm_add_ps(v, _mm_mul_ps(hissLevel(level), _mm_load_ps(a.hiss + i)));
        _mm_store_ps(a.saturated + kBefore + i, saturate(v));
    }
}

void writeSamples(Span s, const Arrays& a, short* out) {
    for (int i = s.first; i < s.first + s.n; i += 4) {
        const __m128i samples = roundToSample(_mm_load_ps(a.output + i));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out + i), _mm_packs_epi32(samples, samples));
    }
}

}  // namespace

void runRadio(RadioChannel& channel, const float* x, const float* noise, short* out, std::uint8_t* voiceFlags, int n) {
    Arrays a;
    clearLastGroup(a, n);
    loadInputs(channel, a);
    Chain chain = loadChain(channel);
    for (int t = 0; t < kBandPassSkew; t++) chain.band = stepBandPassEdge(chain.band, x, t, n);
    Span old{0, 0};
    for (int first = 0; first < n || old.n > 0; first += kBlock) {
        const Span fresh{first, std::clamp(n - first, 0, kBlock)};
        filterAndGate(chain, x, n, fresh, old, a);
        findPeakForward(fresh, a);
        saturateBlock(old, noise != nullptr, a);
        followAndBlock(chain, noise, fresh, old, a);
        findPull(fresh, a, voiceFlags);
        writeSamples(old, a, out);
        old = fresh;
    }
    storeChain(chain, channel);
    storeInputs(a, noise, n, channel);
    channel.voice = voiceFlags[n - 1] != 0;
}
