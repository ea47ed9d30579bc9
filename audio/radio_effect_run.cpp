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
constexpr int kRing = 2 * kBlock;
constexpr int kBefore = 4;  // room for values before a block
static_assert(kBlock % 4 == 0 && kRadioRun % kBlock == 0);

// What one stage leaves for the next: for the stage behind it a block, for the second half of the chain, which works a
// block behind the first, a ring of two. All of it stays in the processor's first cache, and takes little of the stack
// of a thread that is not ours.
struct Arrays {
    alignas(16) float peakIn[kBefore + kBlock];  // after the last two values of the block before
    alignas(16) float peakForward[kBlock];       // forward terms of the peaking cut
    alignas(16) float voice[kRing];              // filtered voice
    alignas(16) float followers[2 * kRing];      // negated noise floor, level
    alignas(16) float shutBelow[kRing];          // the squelch shuts below this magnitude
    alignas(16) float target[kRing];             // where the gate is pulled to
    alignas(16) float rise[kRing];
    alignas(16) float fall[kRing];
    alignas(16) float gate[kBlock];
    alignas(16) float burst[kBlock];
    alignas(16) float hiss[kRing];                  // filtered noise
    alignas(16) float saturated[kBefore + kBlock];  // after the last value of the block before
    alignas(16) float output[kBlock];
};

// Values [first, first + n) of a run, a block or the beginning of one.
struct Span {
    int first;
    int n;
};

// Where a block begins in the rings.
int ringOf(Span block) {
    return block.first % kRing;
}

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

// The values before the first block, for the stages that look back at their input.
void loadInputs(const RadioChannel& c, Arrays& a) {
    a.peakIn[kBefore - 2] = c.peakX2;
    a.peakIn[kBefore - 1] = c.peakX1;
    a.saturated[kBefore - 1] = c.dcX1;
}

void storeInputs(const Arrays& a, const float* noise, int n, RadioChannel& c) {
    c.peakX2 = a.peakIn[kBefore - 2];
    c.peakX1 = a.peakIn[kBefore - 1];
    c.dcX1 = a.saturated[kBefore - 1];
    if (noise != nullptr) c.hissIn = noise[n - 1];
}

// The last values of both blocks move in front of the next ones. A block of none moves nothing.
void keepInputs(Span fresh, Span old, Arrays& a) {
    a.peakIn[kBefore - 2] = a.peakIn[kBefore + fresh.n - 2];
    a.peakIn[kBefore - 1] = a.peakIn[kBefore + fresh.n - 1];
    a.saturated[kBefore - 1] = a.saturated[kBefore + old.n - 1];
}

// The last group of four may be incomplete: its idle lanes are computed too, and must not hold what was on the stack.
void clearLastGroup(Arrays& a, int n) {
    const __m128 zero = _mm_setzero_ps();
    const int inBlock = n % kBlock / 4 * 4;
    const int inRing = n % kRing / 4 * 4;
    for (float* x : {a.peakIn + kBefore, a.gate, a.burst, a.output}) _mm_store_ps(x + inBlock, zero);
    for (float* x : {a.voice, a.hiss}) _mm_store_ps(x + inRing, zero);
    _mm_store_ps(a.followers + std::ptrdiff_t{2} * inRing, zero);
    _mm_store_ps(a.followers + std::ptrdiff_t{2} * inRing + 4, zero);
}

// Band-pass and resonator for the values of `fresh`, gate and burst for those of `old`. x is read kBandPassSkew ahead.
void filterAndGate(Chain& chain, const float* x, int n, Span fresh, Span old, Arrays& a) {
    BandPass band = chain.band;
    Resonator resonator = chain.resonator;
    float gate = chain.gate;
    float burst = chain.burst;
    bool armed = chain.burstArmed;
    const float* const target = a.target + ringOf(old);
    const float* const rise = a.rise + ringOf(old);
    const float* const fall = a.fall + ringOf(old);
    const auto resonateAt = [&](int k) { a.peakIn[kBefore + k] = resonate(resonator, _mm_cvtss_f32(outputOf(band))); };
    const auto gateAt = [&](int k) {
        gate = pullGate(gate, target[k], rise[k], fall[k]);
        runBurst(burst, armed, gate);
        a.gate[k] = gate;
        a.burst[k] = burst;
    };
    const int whole = std::clamp(n - kBandPassSkew - fresh.first, 0, fresh.n);  // values whose step fills all lanes
    const int both = std::min(whole, old.n);
    int k = 0;
    for (; k < both; k++) {
        band = stepBandPass(band, x[fresh.first + k + kBandPassSkew]);
        resonateAt(k);
        gateAt(k);
    }
    for (int j = k; j < old.n; j++) gateAt(j);
    for (; k < whole; k++) {
        band = stepBandPass(band, x[fresh.first + k + kBandPassSkew]);
        resonateAt(k);
    }
    for (; k < fresh.n; k++) {
        band = stepBandPassEdge(band, x, fresh.first + k + kBandPassSkew, n);
        resonateAt(k);
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
    float* const voices = a.voice + ringOf(fresh);
    float* const levels = a.followers + std::ptrdiff_t{2} * ringOf(fresh);
    float* const hiss = a.hiss + ringOf(fresh);
    const auto followAt = [&](int k) {
        const float voice = cutPeak(peak, a.peakForward[k]);
        follow(followers, _mm_set1_ps(voice));
        voices[k] = voice;
        _mm_storel_pi(reinterpret_cast<__m64*>(levels + std::ptrdiff_t{2} * k), followers.lanes);
        if (noise == nullptr) return;
        const float* in = noise + fresh.first + k;
        hiss[k] = filterHiss(filter, in[0] - in[-1]);
    };
    const auto blockAt = [&](int k) {
        const float* in = a.saturated + kBefore + k;
        dcY1 = blockDc(dcY1, in[0] - in[-1]);
        a.output[k] = dcY1;
    };
    const int both = std::min(fresh.n, old.n);
    int k = 0;
    for (; k < both; k++) {
        followAt(k);
        blockAt(k);
    }
    for (int j = k; j < old.n; j++) blockAt(j);
    for (; k < fresh.n; k++) followAt(k);
    chain.peak = peak;
    chain.followers = followers;
    chain.hiss = filter;
    chain.dcY1 = dcY1;
}

void findPeakForward(Span s, Arrays& a) {
    for (int k = 0; k < s.n; k += 4) {
        const float* x = a.peakIn + kBefore + k;
        const __m128 now = _mm_mul_ps(_mm_set1_ps(0.9799019f), _mm_load_ps(x));
        const __m128 one = _mm_mul_ps(_mm_set1_ps(1.8831465f), _mm_loadu_ps(x - 1));
        const __m128 two = _mm_mul_ps(_mm_set1_ps(0.9111779f), _mm_loadu_ps(x - 2));
        _mm_store_ps(a.peakForward + k, _mm_add_ps(_mm_sub_ps(now, one), two));
    }
}

// i: in the ring.
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
    for (int k = 0; k < s.n; k += 4) {
        const int i = ringOf(s) + k;
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
        storeFlags(open, voiceFlags + s.first + k);
    }
}

void saturateBlock(Span s, bool hiss, Arrays& a) {
    for (int k = 0; k < s.n; k += 4) {
        const int i = ringOf(s) + k;
        const __m128 level = levelAt(a, i);
        const __m128 gate = _mm_load_ps(a.gate + k);
        const __m128 gain = compressorGain(level, gate, _mm_load_ps(a.shutBelow + i));
        const __m128 gains = _mm_mul_ps(_mm_mul_ps(_mm_load_ps(a.burst + k), gain), gate);
        __m128 v = _mm_mul_ps(gains, _mm_load_ps(a.voice + i));
        if (hiss) v = _mm_add_ps(v, _mm_mul_ps(hissLevel(level), _mm_load_ps(a.hiss + i)));
        _mm_store_ps(a.saturated + kBefore + k, saturate(v));
    }
}

void writeSamples(Span s, const Arrays& a, short* out) {
    for (int k = 0; k < s.n; k += 4) {
        const __m128i samples = roundToSample(_mm_load_ps(a.output + k));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out + s.first + k), _mm_packs_epi32(samples, samples));
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
        keepInputs(fresh, old, a);
        old = fresh;
    }
    storeChain(chain, channel);
    storeInputs(a, noise, n, channel);
    channel.voice = voiceFlags[n - 1] != 0;
}
