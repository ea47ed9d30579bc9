// audition.cpp - a voice file through the real chain, as the plugin's hooks run it.
//   audition_chain IN.raw OUT.raw CHANNELS TRACE.csv --received|--own [--nr]
// --received: radio effect with hiss, as others sound. --own: without hiss; --nr puts the noise reduction in front.
// TRACE.csv is the squelch's gate and burst gain over time. Samples without a header: 48 kHz, 16 bits, CHANNELS 1 or 2
// interleaved; tools/audition makes them of anything that sox reads. A stereo file goes through in blocks of 20 ms, as
// the host hands them over: of its frames times two values the hooks edit as many as there are frames, the first half
// of each block.
#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>
#include "audio/voice_hooks.h"
#include "base/number_text.h"
#include "settings/settings_store.h"

namespace {

constexpr int kRateHz = 48000;
constexpr int kTraceFrames = 240;  // 5 ms; in mono blocks of any length give the same samples
constexpr int kHostFrames = 960;   // 20 ms

struct Clip {
    std::vector<short> samples;  // interleaved
    int channels = 1;
};

bool readClip(const char* path, Clip& clip) {
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    clip.samples.resize(bytes.size() / sizeof(short));
    std::memcpy(clip.samples.data(), bytes.data(), clip.samples.size() * sizeof(short));
    if (!clip.samples.empty()) return true;
    std::fprintf(stderr, "%s: no samples\n", path);
    return false;
}

bool writeClip(const char* path, const Clip& clip) {
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(clip.samples.data()),
               static_cast<std::streamsize>(clip.samples.size() * sizeof(short)));
    return static_cast<bool>(file.flush());
}

// The hook for one block; the first channel's memory after it.
class Chain {
  public:
    Chain(bool received, bool noiseReduction) : received_(received) {
        controls_.audioFlags = kAudioMaster | (received ? kAudioDistortOthers : kAudioDistortSelf);
        if (noiseReduction) controls_.audioFlags |= kAudioNrSelf;
        controls_.captureMode = 0;
    }

    // frames: what the host calls the sample count, whatever the channels.
    const RadioChannel& run(short* samples, int frames, int channels) {
        constexpr SpeakerKey kSpeaker = 1;
        if (received_) {
            editPlaybackVoice(playback_, controls_, kSpeaker, samples, frames, channels);
            return playback_.speakers.at(kSpeaker).effect.channels[0];
        }
        int edited = 0;
        editCapturedVoice(captured_, controls_, samples, frames, channels, &edited);
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
    const int block = clip.channels == 1 ? kTraceFrames : kHostFrames;
    const int frames = static_cast<int>(clip.samples.size()) / clip.channels;
    for (int at = 0; at < frames; at += block) {
        short* const samples = clip.samples.data() + std::ptrdiff_t{at} * clip.channels;
        const RadioChannel& radio = chain.run(samples, std::min(block, frames - at), clip.channels);
        const double seconds = static_cast<double>(at) / kRateHz;
        std::fprintf(trace, "%s,%s,%s\n", formatFixed(seconds, 4).c_str(),
                     formatFixed(static_cast<double>(radio.gateGain), 4).c_str(),
                     formatFixed(static_cast<double>(radio.burstGain), 4).c_str());
    }
    return std::fclose(trace) == 0;
}

int usage() {
    std::fputs("usage: audition_chain IN.raw OUT.raw CHANNELS TRACE.csv --received|--own [--nr]\n", stderr);
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 6 || argc > 7) return usage();
    const std::string_view channels = argv[3];
    const std::string_view side = argv[5];
    const bool noiseReduction = argc == 7 && std::string_view(argv[6]) == "--nr";
    if ((side != "--received" && side != "--own") || (argc == 7 && !noiseReduction)) return usage();
    if (channels != "1" && channels != "2") return usage();
    if (side == "--received" && noiseReduction) {
        std::fputs("--nr goes with --own: received voices pass no noise reduction\n", stderr);
        return 2;
    }
    Clip clip;
    clip.channels = channels == "2" ? 2 : 1;
    if (!readClip(argv[1], clip)) return 1;
    Chain chain(side == "--received", noiseReduction);
    return audition(clip, chain, argv[4]) && writeClip(argv[2], clip) ? 0 : 1;
}
