#include "tests/soak/audio_crew.h"
#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>
#include <vector>
#include "tests/soak/stopwatch_win.h"

namespace {

constexpr int kBlockSamples = 960;         // 20 ms at 48 kHz
constexpr int kLongestSamples = 5760;      // 120 ms, the longest that the client's codec has
constexpr std::size_t kOddEvery = 40;      // rounds, on average, until a block comes in pieces
constexpr std::size_t kLongEvery = 500;    // or is a long one
constexpr std::size_t kChangeEvery = 100;  // rounds until a speaker goes and another comes
constexpr std::size_t kSilenceEvery = 5;   // blocks
constexpr std::size_t kFullScaleEvery = 50;

// Two seconds of something with the strength and the harmonics of a voice.
std::vector<short> makeVoice(Dice& dice) {
    std::vector<short> voice(2 * 48'000);
    for (std::size_t i = 0; i < voice.size(); i++) {
        const double seconds = static_cast<double>(i) / 48'000.0;
        const double syllable = std::abs(std::sin(seconds * 4.0 * std::numbers::pi));
        double sum = 0.0;
        for (int harmonic = 1; harmonic <= 6; harmonic++)
            sum += std::sin(seconds * 130.0 * harmonic * 2.0 * std::numbers::pi) / harmonic;
        const double breath = static_cast<double>(dice.below(400)) - 200.0;
        voice[i] = static_cast<short>(6000.0 * syllable * sum + breath);
    }
    return voice;
}

}  // namespace

void AudioFigures::add(const AudioFigures& others) {
    blocks.add(others.blocks);
    doneBlocks += others.doneBlocks;
    dueBlocks += others.dueBlocks;
    lateBlocks += others.lateBlocks;
    shapedBlocks += others.shapedBlocks;
}

struct AudioCrew::Player {
    Player(const PluginExports& exports, std::uint64_t server, std::uint64_t seed, std::size_t number,
           const std::atomic<bool>& playing)
        : plugin(exports), schid(server), dice(seed), isFirst(number == 0), isPlaying(playing), voice(makeVoice(dice)) {
        const auto first = static_cast<std::uint16_t>(kFirstSpeaker + number * kPilotsEach);
        for (std::size_t i = 0; i < kPilotsEach; i++) pilots[i] = static_cast<std::uint16_t>(first + i);
        thread = std::thread([this] { run(); });
    }

    void run() {
        greet();
        std::uint64_t dueNs = nowNs();
        constexpr std::uint64_t kPeriodNs = kBlockMs * 1'000'000;
        while (isPlaying) {
            waitUntil(dueNs);
            AudioFigures round;
            playRound(dueNs + kPeriodNs, round);
            dueNs += kPeriodNs;
            round.dueBlocks = blocksEach();
            for (const std::uint64_t now = nowNs(); dueNs + kMostBehindMs * 1'000'000 < now; dueNs += kPeriodNs)
                round.dueBlocks += blocksEach();
            MutexLock lock(mutex);
            figures.add(round);
        }
    }
    // Everybody is heard once, so that nobody who comes later is new to the plugin.
    void greet() {
        for (const std::uint16_t pilot : pilots) {
            fill(kBlockSamples);
            plugin.onEditPlaybackVoiceDataEvent(schid, pilot, block.data(), kBlockSamples, 1);
        }
    }
    std::uint64_t blocksEach() const { return kSpeakersEach + (isFirst ? 1 : 0); }

    void playRound(std::uint64_t endNs, AudioFigures& round) {
        // Who speaks are the first of all pilots.
        if (dice.isOneIn(kChangeEvery))
            std::swap(pilots[dice.below(kSpeakersEach)],
                      pilots[kSpeakersEach + dice.below(kPilotsEach - kSpeakersEach)]);
        for (std::size_t i = 0; i < blocksEach(); i++) {
            playBlock(i, round);
            round.doneBlocks++;
            if (nowNs() > endNs) round.lateBlocks++;
        }
    }
    void playBlock(std::size_t speaker, AudioFigures& round) {
        if (dice.isOneIn(kOddEvery * kSpeakersEach)) return playInPieces(speaker);
        const bool isLong = dice.isOneIn(kLongEvery * kSpeakersEach);
        const int samples = isLong ? kLongestSamples : kBlockSamples;
        fill(samples);
        std::copy_n(block.begin(), samples, given.begin());
        const std::uint64_t startNs = nowNs();
        call(speaker, samples, 1);
        if (!isLong) round.blocks.add(nowNs() - startNs);
        if (!std::equal(given.begin(), given.begin() + samples, block.begin())) round.shapedBlocks++;
    }
    void playInPieces(std::size_t speaker) {
        const int channels = dice.isOneIn(2) ? 2 : 1;
        for (int left = kBlockSamples * channels; left > 0;) {
            const int samples = std::min(left, dice.between(1, kBlockSamples * channels));
            fill(samples);
            call(speaker, samples, channels);
            left -= samples;
        }
    }
    void call(std::size_t speaker, int samples, int channels) {
        int edited = 0;
        if (speaker < kSpeakersEach)
            plugin.onEditPlaybackVoiceDataEvent(schid, pilots[speaker], block.data(), samples, channels);
        else
            plugin.onEditCapturedVoiceDataEvent(schid, block.data(), samples, channels, &edited);
    }
    void fill(int samples) {
        const auto count = static_cast<std::size_t>(samples);
        if (dice.isOneIn(kSilenceEvery)) {
            std::fill_n(block.begin(), count, short{0});
        } else if (dice.isOneIn(kFullScaleEvery)) {
            for (std::size_t i = 0; i < count; i++) block[i] = dice.isOneIn(2) ? short{32767} : short{-32768};
        } else {
            std::copy_n(voice.begin() + static_cast<std::ptrdiff_t>(dice.below(voice.size() - count)), count,
                        block.begin());
        }
    }

    const PluginExports plugin;
    const std::uint64_t schid;
    Dice dice;
    const bool isFirst;
    const std::atomic<bool>& isPlaying;
    const std::vector<short> voice;
    std::array<std::uint16_t, kPilotsEach> pilots{};
    std::array<short, kLongestSamples> block{};
    std::array<short, kLongestSamples> given{};  // the block as it went in
    Mutex mutex;                                 // the thread once a round, the owner once a line
    AudioFigures figures GUARDED_BY(mutex);
    std::thread thread;  // last: it starts when all the others are in place
};

AudioCrew::AudioCrew(const PluginExports& plugin, std::uint64_t schid, std::uint64_t seed) {
    Dice seeds(seed);
    for (std::size_t i = 0; i < kAudioThreads; i++)
        players_[i] = std::make_unique<Player>(plugin, schid, seeds.next(), i, isPlaying_);
}

AudioCrew::~AudioCrew() {
    stop();
}

AudioFigures AudioCrew::take() {
    AudioFigures sum;
    for (const auto& player : players_) {
        MutexLock lock(player->mutex);
        sum.add(std::exchange(player->figures, AudioFigures{}));
    }
    return sum;
}

void AudioCrew::stop() {
    isPlaying_ = false;
    for (const auto& player : players_) {
        if (player->thread.joinable()) player->thread.join();
    }
}
