// audition.cpp - a voice file through the real chain, as the plugin's hooks run it.
//   audition_chain IN.wav OUT.wav TRACE.csv --received|--own [--nr]
// --received: radio effect with hiss, as others sound. --own: without hiss; --nr puts the noise reduction in front.
// TRACE.csv is the squelch's gate and burst gain over time. Mono or stereo, 48 kHz, anything that libsndfile reads.
#include <sndfile.h>
#include <algorithm>
#include <cstdio>
#include <string_view>
#include <vector>
#include "audio/voice_hooks.h"
#include "base/number_text.h"
#include "settings/settings_store.h"

namespace {

constexpr int kRateHz = 48000;
constexpr int kTraceFrames = 240;  // 5 ms; blocks of any length give the same samples

struct Clip {
    std::vector<short> samples;  // interleaved
    int channels = 1;
};

bool readClip(const char* path, Clip& clip) {
    SF_INFO info = {};
    SNDFILE* file = sf_open(path, SFM_READ, &info);
    if (!file) {
        std::fprintf(stderr, "%s: %s\n", path, sf_strerror(nullptr));
        return false;
    }
    clip.channels = info.channels;
    clip.samples.resize(static_cast<std::size_t>(info.frames) * static_cast<std::size_t>(info.channels));
    const auto read = sf_readf_short(file, clip.samples.data(), info.frames);
    sf_close(file);
    if (read == info.frames && info.samplerate == kRateHz && info.channels <= 2) return true;
    std::fprintf(stderr, "%s: must be mono or stereo at 48000 Hz\n", path);
    return false;
}

bool writeClip(const char* path, const Clip& clip) {
    SF_INFO info = {};
    info.samplerate = kRateHz;
    info.channels = clip.channels;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    SNDFILE* file = sf_open(path, SFM_WRITE, &info);
    if (!file) {
        std::fprintf(stderr, "%s: %s\n", path, sf_strerror(nullptr));
        return false;
    }
    const auto count = static_cast<sf_count_t>(clip.samples.size());
    const bool written = sf_write_short(file, clip.samples.data(), count) == count;
    return sf_close(file) == 0 && written;
}

// The hook for one block; the first channel's memory after it.
class Chain {
  public:
    Chain(bool received, bool noiseReduction) : received_(received) {
        controls_.audioFlags = kAudioMaster | (received ? kAudioDistortOthers : kAudioDistortSelf);
        if (noiseReduction) controls_.audioFlags |= kAudioNrSelf;
        controls_.captureMode = 0;
    }

    const RadioChannel& run(short* samples, int count, int channels) {
        constexpr SpeakerKey kSpeaker = 1;
        if (received_) {
            editPlaybackVoice(playback_, controls_, kSpeaker, samples, count, channels);
            return playback_.speakers.at(kSpeaker).effect.channels[0];
        }
        int edited = 0;
        editCapturedVoice(captured_, controls_, samples, count, channels, &edited);
        return captured_.effect.channels[0];
    }

  private:
    bool received_;
    VoiceControls controls_;
    CapturedVoice captured_;
    PlaybackVoices playback_;
};

bool audition(Clip& clip, Chain& chain, const char* tracePath) {
    std::FILE* trace = std::fopen(tracePath, "w");
    if (!trace) return false;
    std::fputs("seconds,gate,burst\n", trace);
    const int block = kTraceFrames * clip.channels;
    const int total = static_cast<int>(clip.samples.size());
    for (int at = 0; at < total; at += block) {
        const RadioChannel& radio = chain.run(clip.samples.data() + at, std::min(block, total - at), clip.channels);
        const double seconds = static_cast<double>(at / clip.channels) / kRateHz;
        std::fprintf(trace, "%s,%s,%s\n", formatFixed(seconds, 4).c_str(),
                     formatFixed(static_cast<double>(radio.gateGain), 4).c_str(),
                     formatFixed(static_cast<double>(radio.burstGain), 4).c_str());
    }
    return std::fclose(trace) == 0;
}

int usage() {
    std::fputs("usage: audition_chain IN.wav OUT.wav TRACE.csv --received|--own [--nr]\n", stderr);
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 5 || argc > 6) return usage();
    const std::string_view side = argv[4];
    const bool noiseReduction = argc == 6 && std::string_view(argv[5]) == "--nr";
    if ((side != "--received" && side != "--own") || (argc == 6 && !noiseReduction)) return usage();
    if (side == "--received" && noiseReduction) {
        std::fputs("--nr goes with --own: received voices pass no noise reduction\n", stderr);
        return 2;
    }
    Clip clip;
    if (!readClip(argv[1], clip)) return 1;
    Chain chain(side == "--received", noiseReduction);
    return audition(clip, chain, argv[3]) && writeClip(argv[2], clip) ? 0 : 1;
}
