#include "tests/client/voice_matrix_sounds.h"
#include <array>

namespace {

constexpr int kSpeechFirst = 2048;
constexpr int kStepLength = 500;  // 10 ms, long enough for every filter but the DC blocker to settle
constexpr int kBurstLength = 300;
constexpr int kBurstPeriod = 1800;  // 38 ms: the gate shuts within 25 ms
constexpr int kRightLag = 37;       // samples: not a multiple of any sound's period

void append(std::vector<short>& samples, const std::vector<short>& more) {
    samples.insert(samples.end(), more.begin(), more.end());
}

}  // namespace

std::vector<short> makeSteps(int n, std::uint32_t /*seed*/) {
    constexpr std::array<short, 9> kLevels = {0, 20000, -20000, 32767, -32768, 300, -301, 1, -1};
    std::vector<short> samples;
    for (int i = 0; i < n; i++) samples.push_back(kLevels[static_cast<std::size_t>(i / kStepLength) % kLevels.size()]);
    return samples;
}

std::vector<short> makeBursts(int n, std::uint32_t seed) {
    std::vector<short> samples = makeSound<Sound::kTone>(n, seed);
    for (int i = 0; i < n; i++) {
        if (i % kBurstPeriod >= kBurstLength) samples[static_cast<std::size_t>(i)] = 0;
    }
    return samples;
}

std::vector<short> makeSilenceAfterSpeech(int n, std::uint32_t seed) {
    VoiceBlocks source(seed);
    std::vector<short> samples = source.take(Sound::kSpeech, kSpeechFirst);
    append(samples, source.take(Sound::kSilence, n - kSpeechFirst - kSpeechAgain));
    append(samples, VoiceBlocks(seed + 1).take(Sound::kSpeech, kSpeechAgain));
    return samples;
}

std::vector<short> makeValues(MakeSound make, int samples, int channels) {
    const std::vector<short> left = make(samples, 1);
    if (channels == 1) return left;
    const std::vector<short> right = make(samples + kRightLag, 2);
    std::vector<short> values;
    for (std::size_t i = 0; i < left.size(); i++) values.insert(values.end(), {left[i], right[i + kRightLag]});
    return values;
}
