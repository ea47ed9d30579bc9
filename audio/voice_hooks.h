// voice_hooks.h - what happens to each block of voice the host hands over: the radio sound, noise reduction, the
// speakers' equalizer and the gains, all in place.
// [audio] Every function here: no lock, no system call, and no allocation except with the first block played on a
// thread, which makes kSpareSpeakers in advance, and for the first kMaxHeardSpeakers + 1 beyond those. Nothing is ever
// released. Samples are signed 16 bit at 48 kHz, interleaved when channels is 2. Exactly sampleCount values are edited,
// also in stereo. Nothing throws; when in doubt a hook leaves the block unchanged.
#pragma once
#include <cstdint>
#include <unordered_map>
#include <vector>
#include "audio/radio_effect.h"
#include "audio/talk_tracker.h"
#include "audio/voice_levels.h"
#include "settings/settings_store.h"

inline constexpr std::size_t kMaxHeardSpeakers = 512;  // with more, the table of a thread starts afresh
inline constexpr std::size_t kFirstSpeakerBuckets = 8;
inline constexpr std::size_t kSpareSpeakers = 64;  // half a megabyte; more than most evenings have

// What the settings and the poll loop ask of the hooks, loaded once per block.
struct VoiceControls {
    std::uint32_t audioFlags = 0;  // AudioFlag bits; none: nothing is edited
    float transmitGain = 1.0f;     // linear
    float receiveGain = 1.0f;      // linear
    std::int32_t captureMode = 1;  // CaptureModes
    bool marksEdited = false;      // asksForMark
    std::uint32_t dspGeneration = 0;
};

// [audio] Loads each value once. The generation is loaded first, and the settings raise it last: a state that was reset
// for it never runs with older switches.
VoiceControls loadVoiceControls(const SettingsStore& settings, const VoiceLevels& levels);

// Whether a block is edited at all: master is on and there are samples. If not, no state is needed.
bool isVoiceEdited(const VoiceControls& controls, const short* samples, int sampleCount);

// The user's own voice on one capture thread.
struct CapturedVoice {
    RadioEffectState effect;
    std::uint32_t stamp = 0xFFFFFFFF;  // generation of effect; no settings have had the initial one
};

// One speaker on one playback thread.
struct SpeakerState {
    RadioEffectState effect;
    float equalizerGain = 1.0f;  // linear, 0.25..4
    std::uint32_t stamp = 0;     // generation of effect
};

// Everyone heard on one playback thread. Speakers are never dropped one by one: the call that finds more than
// kMaxHeardSpeakers of them drops all.
struct PlaybackVoices {
    using Speakers = std::unordered_map<SpeakerKey, SpeakerState>;
    Speakers speakers{kFirstSpeakerBuckets};  // load factor at most 1
    // Made in advance, or dropped: the allocator has locks and calls the system.
    std::vector<Speakers::node_type> spare{};
    bool isPrepared = false;  // once a block has been played
};

// The user's own voice, after capture. *edited (edited may be null) is set to 1 with kCaptureEdited, else left as it
// was; with marksEdited both modes add kEditedBit to it instead. kCaptureUntouched leaves everything alone.
void editCapturedVoice(CapturedVoice& voice, const VoiceControls& controls, short* samples, int sampleCount,
                       int channels, int* edited);

// A remote speaker's voice, before playback. When there is no memory for a new speaker, the block stays unchanged.
void editPlaybackVoice(PlaybackVoices& voices, const VoiceControls& controls, SpeakerKey speaker, short* samples,
                       int sampleCount, int channels);
