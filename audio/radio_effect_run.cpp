// radio_effect_run.cpp - the order of work within a run. Every recurrence of the chain waits some ten cycles for its
// own last value, so those that do not wait for each other share a loop: the run goes through a pipeline of blocks,
// each stage one block behind the one that feeds it.
//
//     block b                 block b-1                block b-2           block b-3
//     band-pass, resonator |  peaking cut,          |  squelch gate,    |  DC blocker     one loop, a value at a time
//                          |  followers, hiss       |  burst            |
//     forward terms        |  squelch thresholds    |  gains,           |  rounding       four values at a time
//     of the peaking cut   |                        |  saturation       |
#include "audio/radio_effect_run.h"
#include <algorithm>
#include "audio/radio_effect_bandpass.h"
#include "audio/radio_effect_lanes.h"
#include "audio/radio_effect_recurrences.h"

namespace {

constexpr int kBlock = 16;
constexpr int kBefore = 4;  // room for values before the run
static_assert(kBlock % 4 == 0 && kRadioRun % kBlock == 0);

constexpr int kArray = kRadioRun + kRadioPadding;

// What one stage leaves to the next.
struct Arrays {
    alignas(16) float peakIn[kBefore + kArray];  // behind the last two values of the run before
    alignas(16) float peakForward[kArray];       // forward terms of the peaking cut
    alignas(16) float voice[kArray];             // filtered voice
    alignas(16) float followers[2 * kArray];     // negated noise floor, level
    alignas(16) float shutBelow[kArray];         // the squelch shuts below this magnitude
    alignas(16) float target[kArray];            // pull on the gate
    alignas(16) float rise[kArray];
    alignas(16) float fall[kArray];
    alignas(16) float gate[kArray];
    alignas(16) float burst[kArray];
    alignas(16) float hiss[kArray];                 // filtered noise
    alignas(16) float saturated[kBefore + kArray];  // behind the last value of the run before
    alignas(16) float output[kArray];
};

// Values [first, first + n) of a run.
struct Span {
    int first;
    int n;
};

// The memory of a channel in the shape the loops want it.
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
    c.floor = 0.0f - followers[0];  // a difference: an empty floor is +0
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

// The last group of four may be part of one: its idle lanes are worked on, and must not be what the stack held.
void clearLastGroup(Arrays& a, int n) {
    const __m128 zero = _mm_setzero_ps();
    for (float* x : {a.peakIn + kBefore, a.voice, a.gate, a.burst, a.hiss, a.output}) _mm_storeu_ps(x + n, zero);
    _mm_storeu_ps(a.followers + 2 * n, zero);
    _mm_storeu_ps(a.followers + 2 * n + 4, zero);
}

// What each recurrence of the chain has to do in one step of the pipeline; each span lies one block behind the one
// before it.
struct Stages {
    Span filtered;  // band-pass, resonator
    Span followed;  // peaking cut, followers, hiss
    Span gated;     // squelch gate, burst
    Span blocked;   // DC blocker

    bool areFull() const {
        return filtered.n == kBlock && followed.n == kBlock && gated.n == kBlock && blocked.n == kBlock;
    }
};

// The four recurrences, one value a call. In one loop none waits for another, so their own waits overlap.
class Recurrences {
  public:
    Recurrences(const Chain& chain, const float* x, const float* noise, int n, Arrays& a)
        : s_(chain), x_(x), noise_(noise), n_(n), a_(a) {}

    const Chain& chain() const { return s_; }

    // The last steps of a run have nothing left to read.
    void filterEdgeAt(int i) {
        s_.band = stepBandPassEdge(s_.band, x_, i + kBandPassSkew, n_);
        a_.peakIn[kBefore + i] = resonate(s_.resonator, _mm_cvtss_f32(outputOf(s_.band)));
    }
    void followAt(int i) {
        const float voice = cutPeak(s_.peak, a_.peakForward[i]);
        followVoice(i, _mm_set1_ps(voice));
    }
    // Both of the above, at two places of the run and inside it; x is read kBandPassSkew ahead.
    void filterAndFollowAt(int i, int behind, TwinPoles& poles) {
        s_.band = stepBandPass(s_.band, x_[i + kBandPassSkew]);
        const __m128 x = outputOf(s_.band);
        const __m128 y = runPoles(poles, _mm_unpacklo_ps(x, _mm_load_ss(a_.peakForward + behind)));
        _mm_store_ss(a_.peakIn + kBefore + i, _mm_add_ss(x, _mm_mul_ss(_mm_set_ss(1.1f), y)));
        followVoice(behind, _mm_shuffle_ps(y, y, _MM_SHUFFLE(1, 1, 1, 1)));
    }
    TwinPoles pair() const { return pairPoles(s_.resonator, s_.peak); }
    void part(const TwinPoles& poles) { partPoles(poles, s_.resonator, s_.peak); }
    void gateAt(int i) {
        s_.gate = pullGate(s_.gate, a_.target[i], a_.rise[i], a_.fall[i]);
        runBurst(s_.burst, s_.burstArmed, s_.gate);
        a_.gate[i] = s_.gate;
        a_.burst[i] = s_.burst;
    }
    void blockAt(int i) {
        const float* in = a_.saturated + kBefore + i;
        s_.dcY1 = blockDc(s_.dcY1, in[0] - in[-1]);
        a_.output[i] = s_.dcY1;
    }

  private:
    void followVoice(int i, __m128 voice) {
        follow(s_.followers, voice);
        _mm_store_ss(a_.voice + i, voice);
        _mm_storel_pi(reinterpret_cast<__m64*>(a_.followers + 2 * i), s_.followers.lanes);
        if (noise_ != nullptr) a_.hiss[i] = filterHiss(s_.hiss, noise_[i] - noise_[i - 1]);
    }

    Chain s_;
    const float* const x_;
    const float* const noise_;
    const int n_;
    Arrays& a_;
};

// A step in the middle of a run: all four in one loop.
void stepTogether(Chain& chain, const float* x, const float* noise, int n, const Stages& stages, Arrays& a) {
    Recurrences r(chain, x, noise, n, a);
    TwinPoles poles = r.pair();
    for (int k = 0; k < kBlock; k++) {
        r.filterAndFollowAt(stages.filtered.first + k, stages.followed.first + k, poles);
        r.gateAt(stages.gated.first + k);
        r.blockAt(stages.blocked.first + k);
    }
    r.part(poles);
    chain = r.chain();
}

// A step at the ends of a run, where some have less to do or nothing.
void stepApart(Chain& chain, const float* x, const float* noise, int n, const Stages& stages, Arrays& a) {
    Recurrences r(chain, x, noise, n, a);
    const auto each = [](Span span, auto at) {
        for (int i = span.first; i < span.first + span.n; i++) at(i);
    };
    each(stages.filtered, [&](int i) { r.filterEdgeAt(i); });
    each(stages.followed, [&](int i) { r.followAt(i); });
    each(stages.gated, [&](int i) { r.gateAt(i); });
    each(stages.blocked, [&](int i) { r.blockAt(i); });
    chain = r.chain();
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
    const __m128 first = _mm_load_ps(a.followers + 2 * i);
    const __m128 last = _mm_load_ps(a.followers + 2 * i + 4);
    const __m128 floor = _mm_sub_ps(_mm_setzero_ps(), _mm_shuffle_ps(first, last, _MM_SHUFFLE(2, 0, 2, 0)));
    return _mm_max_ps(_mm_set1_ps(90.0f), _mm_mul_ps(_mm_set1_ps(3.0f), floor));
}

__m128 levelAt(const Arrays& a, int i) {
    const __m128 first = _mm_load_ps(a.followers + 2 * i);
    const __m128 last = _mm_load_ps(a.followers + 2 * i + 4);
    return _mm_shuffle_ps(first, last, _MM_SHUFFLE(3, 1, 3, 1));
}

// The squelch opens above three times the noise floor, at least 90, and shuts below 0.55 of that.
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
    for (int first = 0; first < n + 3 * kBlock; first += kBlock) {
        const auto blockAt = [&](int start) {
            return Span{std::max(start, 0), start < 0 ? 0 : std::clamp(n - start, 0, kBlock)};
        };
        const Stages stages{blockAt(first), blockAt(first - kBlock), blockAt(first - 2 * kBlock),
                            blockAt(first - 3 * kBlock)};
        const bool isInside = stages.areFull() && first + kBlock + kBandPassSkew <= n;
        (isInside ? stepTogether : stepApart)(chain, x, noise, n, stages, a);
        findPeakForward(stages.filtered, a);
        findPull(stages.followed, a, voiceFlags);
        saturateBlock(stages.gated, noise != nullptr, a);
        writeSamples(stages.blocked, a, out);
    }
    storeChain(chain, channel);
    storeInputs(a, noise, n, channel);
    channel.voice = voiceFlags[n - 1] != 0;
}
