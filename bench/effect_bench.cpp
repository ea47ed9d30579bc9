// effect_bench.cpp - the radio effect on blocks of 20 ms, beside the same effect written plainly (tests/reference), in
// the same run. A block's time divided by 20 ms is the share of a processor that a speaker costs. Denormals are off, as
// in the voice hooks.
#include <benchmark/benchmark.h>
#include <emmintrin.h>
#include <algorithm>
#include <array>
#include <memory>
#include <vector>
#include "audio/radio_effect.h"
#include "tests/reference/plain_radio_effect.h"
#include "tests/unit/audio/voice_blocks.h"

namespace {

constexpr int kBlock = 960;
constexpr int kBlocks = 100;               // two seconds
constexpr unsigned kNoDenormals = 0x8040;  // flush to zero, denormals are zero

std::vector<short> speech() {
    return VoiceBlocks(1).take(Sound::kSpeech, kBlock * kBlocks);
}

void applyPlain(short* x, int n, int channels, PlainRadioEffectState& state, bool hiss, bool predenoise) {
    plainApplyRadioEffect(x, n, channels, state, hiss, predenoise);
}
void applyFast(short* x, int n, int channels, RadioEffectState& state, bool hiss, bool predenoise) {
    applyRadioEffect(x, n, channels, state, hiss, predenoise);
}

// Two seconds of speech, then the blocks of `after` over and over; only the latter are timed.
template <class State, class Apply>
void runBlocks(benchmark::State& run, Apply apply, const std::vector<short>& after) {
    const unsigned control = _mm_getcsr();
    _mm_setcsr(control | kNoDenormals);
    const bool hiss = run.range(0) != 0;
    const bool predenoise = run.range(1) != 0;
    const int channels = static_cast<int>(run.range(2));
    const auto state = std::make_unique<State>();
    std::vector<short> before = speech();
    apply(before.data(), kBlock * kBlocks, channels, *state, hiss, predenoise);
    std::array<short, kBlock> block{};
    std::size_t next = 0;
    for (auto _ : run) {
        std::copy_n(after.begin() + static_cast<std::ptrdiff_t>(next * kBlock), kBlock, block.begin());
        apply(block.data(), kBlock, channels, *state, hiss, predenoise);
        benchmark::DoNotOptimize(block);
        next = (next + 1) % kBlocks;
    }
    run.SetItemsProcessed(run.iterations() * kBlock);
    _mm_setcsr(control);
}

void effectPlain(benchmark::State& run) {
    runBlocks<PlainRadioEffectState>(run, applyPlain, speech());
}
void effectFast(benchmark::State& run) {
    runBlocks<RadioEffectState>(run, applyFast, speech());
}
// Exact silence after speech: the filters decay towards zero, which must not slow them down.
void effectFastSilence(benchmark::State& run) {
    runBlocks<RadioEffectState>(run, applyFast, std::vector<short>(kBlock * kBlocks));
}

void modes(benchmark::internal::Benchmark* bench) {
    bench->ArgNames({"hiss", "predenoise", "channels"});
    for (const int channels : {1, 2})
        for (const auto& [hiss, predenoise] : {std::pair{1, 0}, {0, 0}, {0, 1}})
            bench->Args({hiss, predenoise, channels});
}
BENCHMARK(effectPlain)->Apply(modes);
BENCHMARK(effectFast)->Apply(modes);
BENCHMARK(effectFastSilence)->Apply(modes);

}  // namespace

BENCHMARK_MAIN();
