// hooks_bench.cpp - what a voice block costs the host's audio thread, beside the plain hooks in the same run: the whole
// playback hook with everything on for 1, 16 and 64 speakers, the worst block of a million, a new speaker, the dropping
// of 513, and the silence after speech, where denormal numbers would cost most.
//   hooks_bench [blocks to search for the worst one, default 1000000]
// Portable: also run under Wine. By the clock, the worst block includes what the system took away. So it is printed
// beside the most that was taken from an equally long spin that computes nothing, and on Linux beside the worst block
// in processor time.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <vector>
#include "audio/voice_hooks.h"
#include "tests/reference/plain_voice_hooks.h"
#include "tests/unit/audio/voice_blocks.h"

namespace {

constexpr int kBlockSamples = 960;  // 20 ms
constexpr int kRepeats = 21;
constexpr double kDeadlineUs = 500.0;
constexpr double kNewSpeakerUs = 50.0;
constexpr std::uint64_t kServer = 1;

double nowUs() {
    using std::chrono::steady_clock;
    return std::chrono::duration<double, std::micro>(steady_clock::now().time_since_epoch()).count();
}

// Processor time of this thread; wall-clock time if the system only counts whole ticks.
double threadUs() {
#ifdef __linux__
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e6 + static_cast<double>(now.tv_nsec) / 1e3;
#else
    return nowUs();
#endif
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

VoiceControls everythingOn() {
    VoiceControls controls;
    controls.audioFlags = kAudioMaster | kAudioDistortSelf | kAudioDistortOthers | kAudioNrSelf | kAudioEqualize;
    controls.transmitGain = 2.0f;
    controls.receiveGain = 0.8f;
    controls.captureMode = 0;
    return controls;
}

// A second of speech in blocks; each is edited in a copy, so that every round hears the same.
std::vector<std::vector<short>> speechBlocks(Sound sound = Sound::kSpeech) {
    VoiceBlocks source(3);
    std::vector<std::vector<short>> blocks;
    for (int i = 0; i < 50; i++) blocks.push_back(source.take(sound, kBlockSamples));
    return blocks;
}

// ns per sample of edit(block number, samples) over all blocks, rounds times.
template <class Edit>
double costOf(const std::vector<std::vector<short>>& blocks, int rounds, Edit edit) {
    short samples[kBlockSamples];
    const double start = threadUs();
    int number = 0;
    for (int round = 0; round < rounds; round++) {
        for (const auto& block : blocks) {
            std::copy(block.begin(), block.end(), samples);
            edit(number++, samples);
        }
    }
    return (threadUs() - start) * 1000.0 / (static_cast<double>(number) * kBlockSamples);
}

// Medians of alternating runs, so that both meet the same machine.
template <class Fast, class Plain>
void compare(const char* name, const std::vector<std::vector<short>>& blocks, Fast fast, Plain plain) {
    std::vector<double> fastNs, plainNs;
    for (int i = 0; i < kRepeats; i++) {
        fastNs.push_back(costOf(blocks, 3, fast));
        plainNs.push_back(costOf(blocks, 1, plain));
    }
    std::printf("%-44s %6.2f ns per sample   plain %6.2f   %5.2f times as fast\n", name, median(fastNs),
                median(plainNs), median(plainNs) / median(fastNs));
}

void comparePlayback(const char* name, int speakers, Sound sound) {
    const VoiceControls controls = everythingOn();
    PlaybackVoices voices;
    PlainPlaybackVoices plainVoices;
    const auto client = [&](int number) { return static_cast<std::uint16_t>(1 + number % speakers); };
    compare(
        name, speechBlocks(sound),
        [&](int i, short* x) {
            editPlaybackVoice(voices, controls, speakerKey(kServer, client(i)), x, kBlockSamples, 1);
        },
        [&](int i, short* x) {
            plainEditPlaybackVoice(plainVoices, controls, kServer, client(i), x, kBlockSamples, 1);
        });
}

void compareCapture(const char* name, std::uint32_t flags) {
    VoiceControls controls = everythingOn();
    controls.audioFlags = flags;
    CapturedVoice voice;
    PlainCapturedVoice plainVoice;
    int edited = 0;
    compare(
        name, speechBlocks(), [&](int, short* x) { editCapturedVoice(voice, controls, x, kBlockSamples, 1, &edited); },
        [&](int, short* x) { plainEditCapturedVoice(plainVoice, controls, x, kBlockSamples, 1, &edited); });
}

// One radio, then nothing: the filters ring out into ever smaller numbers.
void measureSilence() {
    VoiceControls controls = everythingOn();
    CapturedVoice voice;
    std::vector<double> speaking, silent;
    for (int i = 0; i < kRepeats; i++) {
        speaking.push_back(costOf(speechBlocks(), 1, [&](int, short* x) {
            editCapturedVoice(voice, controls, x, kBlockSamples, 1, nullptr);
        }));
        silent.push_back(costOf(speechBlocks(Sound::kSilence), 2, [&](int, short* x) {
            editCapturedVoice(voice, controls, x, kBlockSamples, 1, nullptr);
        }));
    }
    std::printf("%-44s %6.2f ns per sample   speech %5.2f\n", "captured, two seconds of silence after speech",
                median(silent), median(speaking));
}

struct Worst {
    double us = 0.0;
    int late = 0;  // blocks over the deadline
    void add(double took) {
        us = std::max(us, took);
        late += took > kDeadlineUs;
    }
};

void measureWorst(int blocks) {
    const VoiceControls controls = everythingOn();
    const auto source = speechBlocks();
    PlaybackVoices voices;
    for (int i = 0; i < 64; i++) {
        std::vector<short> block = source[0];
        editPlaybackVoice(voices, controls, speakerKey(kServer, static_cast<std::uint16_t>(i)), block.data(),
                          kBlockSamples, 1);
    }
    Worst hook, spin, processor;
    double total = 0.0;
    short samples[kBlockSamples];
    for (int i = 0; i < blocks; i++) {
        const auto& block = source[static_cast<std::size_t>(i) % source.size()];
        std::copy(block.begin(), block.end(), samples);
        const double threadStart = threadUs(), start = nowUs();
        editPlaybackVoice(voices, controls, speakerKey(kServer, static_cast<std::uint16_t>(i % 64)), samples,
                          kBlockSamples, 1);
        const double end = nowUs();
        processor.add(threadUs() - threadStart);
        hook.add(end - start);
        total += end - start;
        double now = end;
        while (now - end < end - start) now = nowUs();
        spin.add(now - end - (end - start));
    }
    std::printf("64 speakers, %d blocks, mean %.1f us\n", blocks, total / blocks);
    const auto print = [](const char* name, const Worst& worst) {
        std::printf("  %-42s worst %8.1f us, %d over %.0f us\n", name, worst.us, worst.late, kDeadlineUs);
    };
    print("block, processor time", processor);
    print("block, by the clock", hook);
    print("taken away from a spin meanwhile", spin);
}

// How much longer a speaker's first block takes than the next ones; the first of all on a thread makes spare speakers.
void measureNewSpeakers() {
    const VoiceControls controls = everythingOn();
    std::vector<double> threads, first, dropping;
    for (int round = 0; round < kRepeats; round++) {
        const auto voices = std::make_unique<PlaybackVoices>();
        short one = 0;
        const auto timed = [&](std::uint16_t client) {
            const double start = threadUs();
            editPlaybackVoice(*voices, controls, speakerKey(kServer, client), &one, 1, 1);
            return threadUs() - start;
        };
        threads.push_back(timed(1));
        for (std::uint16_t client = 2; client <= 513; client++) first.push_back(timed(client));
        dropping.push_back(timed(1));
    }
    // The worst of so many is the machine's (a memory page to be found, an interruption): hence the share of slow ones.
    std::printf(
        "new speaker, block of one sample, processor time: median %.2f us, worst %.2f us, %td of %zu over %.0f us\n",
        median(first), *std::max_element(first.begin(), first.end()),
        std::count_if(first.begin(), first.end(), [](double us) { return us > kNewSpeakerUs; }), first.size(),
        kNewSpeakerUs);
    std::printf("a thread's first block of one sample, processor time: median %.1f us, worst %.1f us of %zu\n",
                median(threads), *std::max_element(threads.begin(), threads.end()), threads.size());
    std::printf(
        "dropping 513 speakers and a new one, processor time: median %.1f us, worst %.1f us of %zu (deadline %.0f)\n",
        median(dropping), *std::max_element(dropping.begin(), dropping.end()), dropping.size(), kDeadlineUs);
}

}  // namespace

int main(int argc, char** argv) {
    const int blocks = argc > 1 ? std::atoi(argv[1]) : 1'000'000;
    comparePlayback("playback, everything on, 1 speaker", 1, Sound::kSpeech);
    comparePlayback("playback, everything on, 16 speakers", 16, Sound::kSpeech);
    comparePlayback("playback, everything on, 64 speakers", 64, Sound::kSpeech);
    compareCapture("captured, radio and noise reduction", 31);
    compareCapture("captured, noise reduction alone", kAudioMaster | kAudioNrSelf);
    compareCapture("captured, gain alone", kAudioMaster);
    measureSilence();
    measureNewSpeakers();
    if (blocks > 0) measureWorst(blocks);
    return 0;
}
