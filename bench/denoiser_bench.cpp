// denoiser_bench.cpp - what the spectral denoiser costs, beside its plain version and beside peers, in the same run.
//   one second of 48 kHz voice: ours by sample and in runs, the plain one, speexdsp's preprocessor (20 ms frames)
//   one pair of 256-point transforms: ours, the plain one, kissfft, FFTW (both complex and, as ours is, real)
// Run with --benchmark_repetitions=15 --benchmark_report_aggregates_only=true and compare medians: the clock wanders.
#include <benchmark/benchmark.h>
#include <fftw3.h>
#include <kissfft/kiss_fft.h>
#include <kissfft/kiss_fftr.h>
#include <speex/speex_preprocess.h>
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <random>
#include <vector>
#include "audio/fft256.h"
#include "audio/fft256_tables.h"
#include "audio/spectral_denoiser.h"
#include "tests/reference/plain_denoiser.h"

namespace {

constexpr int kRateHz = 48000;
constexpr int kVoiceSamples = kRateHz;  // one second
constexpr int kSpeexFrame = 960;        // 20 ms
static_assert(kVoiceSamples % kSpeexFrame == 0 && kVoiceSamples % kDenoiserHop == 0);

struct Voice {
    std::vector<std::int16_t> pcm;
    std::vector<float> x;
    std::vector<std::uint8_t> flags;  // louder than 300
};

// Syllables of a buzz with pauses between, over steady noise.
Voice voice() {
    std::mt19937 random(1);
    Voice v;
    for (int i = 0; i < kVoiceSamples; i++) {
        const double t = static_cast<double>(i) / kRateHz;
        double buzz = 0.0;
        for (int h = 1; h < 20; h++) buzz += std::sin(kTau * 118.0 * h * t) / h;
        const double syllable = std::max(0.0, std::sin(kTau * 2.5 * t));
        const int sample = static_cast<int>(6000.0 * syllable * buzz) + static_cast<int>(random() % 401) - 200;
        v.pcm.push_back(static_cast<std::int16_t>(std::clamp(sample, -32768, 32767)));
        v.x.push_back(v.pcm.back());
        v.flags.push_back(std::abs(v.pcm.back()) > 300);
    }
    return v;
}

void denoiseInRuns(SpectralDenoiser& state, const Voice& v, float* out) {
    constexpr int n = kDenoiserHop - 1;
    for (int i = 0; i < kVoiceSamples; i += kDenoiserHop) {
        takeRun(state, &v.x[i], out + i, n);
        trackSpeech(state, &v.flags[i], n);
        out[i + n] = denoiseSample(state, v.x[i + n], v.flags[i + n] != 0);
    }
}

void denoiseVoiceInRuns(benchmark::State& bench) {
    const Voice v = voice();
    std::vector<float> out(v.x.size());
    SpectralDenoiser state;
    for (auto _ : bench) {
        denoiseInRuns(state, v, out.data());
        benchmark::DoNotOptimize(out.data());
    }
}
BENCHMARK(denoiseVoiceInRuns)->Unit(benchmark::kMicrosecond);

template <typename State, float (*denoise)(State&, float, bool)>
void denoiseVoice(benchmark::State& bench) {
    const Voice v = voice();
    std::vector<float> out(v.x.size());
    State state;
    for (auto _ : bench) {
        for (int i = 0; i < kVoiceSamples; i++) out[i] = denoise(state, v.x[i], v.flags[i] != 0);
        benchmark::DoNotOptimize(out.data());
    }
}
BENCHMARK_TEMPLATE(denoiseVoice, SpectralDenoiser, denoiseSample)->Unit(benchmark::kMicrosecond);
BENCHMARK_TEMPLATE(denoiseVoice, PlainDenoiser, denoisePlainSample)->Unit(benchmark::kMicrosecond);

// Denoising alone: no gain control, no voice detection, no dereverberation. It edits in place, so it gets a fresh copy.
void denoiseVoiceWithSpeex(benchmark::State& bench) {
    const Voice v = voice();
    const std::unique_ptr<SpeexPreprocessState, decltype(&speex_preprocess_state_destroy)> state(
        speex_preprocess_state_init(kSpeexFrame, kRateHz), speex_preprocess_state_destroy);
    int on = 1, off = 0;
    speex_preprocess_ctl(state.get(), SPEEX_PREPROCESS_SET_DENOISE, &on);
    speex_preprocess_ctl(state.get(), SPEEX_PREPROCESS_SET_AGC, &off);
    speex_preprocess_ctl(state.get(), SPEEX_PREPROCESS_SET_VAD, &off);
    speex_preprocess_ctl(state.get(), SPEEX_PREPROCESS_SET_DEREVERB, &off);
    std::vector<std::int16_t> pcm;
    for (auto _ : bench) {
        pcm = v.pcm;
        for (int i = 0; i < kVoiceSamples; i += kSpeexFrame) speex_preprocess_run(state.get(), &pcm[i]);
        benchmark::DoNotOptimize(pcm.data());
    }
}
BENCHMARK(denoiseVoiceWithSpeex)->Unit(benchmark::kMicrosecond);

// The spectrum of a frame of voice, all 256 bins.
struct Frame {
    alignas(16) float x[kFftSize];
    alignas(16) float re[kFftSize];
    alignas(16) float im[kFftSize];
};
Frame frame() {
    const Voice v = voice();
    Frame f{};
    std::copy_n(v.x.begin() + 5000, kFftSize, f.x);
    std::copy_n(f.x, kFftSize, f.re);
    plainFft(f.re, f.im, kFftSize, 1);
    return f;
}

void fftPair(benchmark::State& bench) {
    Frame f = frame();
    for (auto _ : bench) {
        forwardFft256(f.x, f.re, f.im);
        benchmark::DoNotOptimize(f.re);
        benchmark::ClobberMemory();
        inverseFft256(f.re, f.im, f.x);
        benchmark::ClobberMemory();
        for (float& v : f.x) v *= 1.0f / kFftSize;
    }
}
BENCHMARK(fftPair);

void fftPairPlain(benchmark::State& bench) {
    Frame f = frame();
    for (auto _ : bench) {
        std::copy_n(f.x, kFftSize, f.re);
        std::fill_n(f.im, kFftSize, 0.0f);
        plainFft(f.re, f.im, kFftSize, 1);
        benchmark::ClobberMemory();
        plainFft(f.re, f.im, kFftSize, -1);
        benchmark::DoNotOptimize(f.re);
    }
}
BENCHMARK(fftPairPlain);

void fftPairKissComplex(benchmark::State& bench) {
    const Frame f = frame();
    const kiss_fft_cfg forward = kiss_fft_alloc(kFftSize, 0, nullptr, nullptr);
    const kiss_fft_cfg inverse = kiss_fft_alloc(kFftSize, 1, nullptr, nullptr);
    std::vector<kiss_fft_cpx> x(kFftSize), y(kFftSize), back(kFftSize);
    for (int n = 0; n < kFftSize; n++) x[n] = {f.x[n], 0.0f};
    for (auto _ : bench) {
        kiss_fft(forward, x.data(), y.data());
        benchmark::ClobberMemory();
        kiss_fft(inverse, y.data(), back.data());
        benchmark::DoNotOptimize(back.data());
    }
    kiss_fft_free(forward);
    kiss_fft_free(inverse);
}
BENCHMARK(fftPairKissComplex);

void fftPairKissReal(benchmark::State& bench) {
    const Frame f = frame();
    const kiss_fftr_cfg forward = kiss_fftr_alloc(kFftSize, 0, nullptr, nullptr);
    const kiss_fftr_cfg inverse = kiss_fftr_alloc(kFftSize, 1, nullptr, nullptr);
    std::vector<kiss_fft_cpx> y(kFftBins);
    std::vector<float> back(kFftSize);
    for (auto _ : bench) {
        kiss_fftr(forward, f.x, y.data());
        benchmark::ClobberMemory();
        kiss_fftri(inverse, y.data(), back.data());
        benchmark::DoNotOptimize(back.data());
    }
    kiss_fft_free(forward);
    kiss_fft_free(inverse);
}
BENCHMARK(fftPairKissReal);

void fftPairFftwComplex(benchmark::State& bench) {
    fftwf_complex* x = fftwf_alloc_complex(kFftSize);
    fftwf_complex* y = fftwf_alloc_complex(kFftSize);
    const fftwf_plan forward = fftwf_plan_dft_1d(kFftSize, x, y, FFTW_FORWARD, FFTW_MEASURE);
    const fftwf_plan inverse = fftwf_plan_dft_1d(kFftSize, y, x, FFTW_BACKWARD, FFTW_MEASURE);
    const Frame f = frame();
    for (int n = 0; n < kFftSize; n++) {
        x[n][0] = f.x[n];
        x[n][1] = 0.0f;
    }
    for (auto _ : bench) {
        fftwf_execute(forward);
        fftwf_execute(inverse);
        benchmark::ClobberMemory();
        for (int n = 0; n < kFftSize; n++) x[n][0] *= 1.0f / kFftSize;
    }
    fftwf_destroy_plan(forward);
    fftwf_destroy_plan(inverse);
    fftwf_free(x);
    fftwf_free(y);
}
BENCHMARK(fftPairFftwComplex);

void fftPairFftwReal(benchmark::State& bench) {
    float* x = fftwf_alloc_real(kFftSize);
    fftwf_complex* y = fftwf_alloc_complex(kFftBins);
    const fftwf_plan forward = fftwf_plan_dft_r2c_1d(kFftSize, x, y, FFTW_MEASURE);
    const fftwf_plan inverse = fftwf_plan_dft_c2r_1d(kFftSize, y, x, FFTW_MEASURE);
    const Frame f = frame();
    std::copy_n(f.x, kFftSize, x);
    for (auto _ : bench) {
        fftwf_execute(forward);
        fftwf_execute(inverse);
        benchmark::ClobberMemory();
        for (int n = 0; n < kFftSize; n++) x[n] *= 1.0f / kFftSize;
    }
    fftwf_destroy_plan(forward);
    fftwf_destroy_plan(inverse);
    fftwf_free(x);
    fftwf_free(y);
}
BENCHMARK(fftPairFftwReal);

}  // namespace

BENCHMARK_MAIN();
