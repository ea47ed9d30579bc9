#include "audio/voice_hooks.h"
#include <emmintrin.h>
#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <utility>
#include "audio/voice_gain.h"

namespace {

constexpr double kSampleRateHz = 48000.0;
constexpr int kSpeechLevel = 300;  // -41 dBFS: above it the noise reduction counts a sample as speech

// The processor's floating-point rules while a block is edited: denormals are zero (the decay of silent filters would
// take a hundred times as long), rounding to nearest and no traps, whatever the host has set. Then restores the host's.
class FloatRules {
  public:
    FloatRules() : hosts_(_mm_getcsr()) { _mm_setcsr(kMaskedToNearest | kFlushToZero | kDenormalsAreZero); }
    ~FloatRules() { _mm_setcsr(hosts_); }
    FloatRules(const FloatRules&) = delete;
    FloatRules& operator=(const FloatRules&) = delete;

  private:
    static constexpr unsigned kMaskedToNearest = 0x1F80, kFlushToZero = 0x8000, kDenormalsAreZero = 0x0040;
    const unsigned hosts_;
};

bool has(const VoiceControls& controls, AudioFlag flag) {
    return (controls.audioFlags & flag) != 0;
}

int slotsOf(int channels) {
    return std::clamp(channels, 1, 2);
}

// Denoises one slot: every stride-th value from samples on, up to end. Between the denoiser's frames they go in runs.
void denoiseSlot(SpectralDenoiser& denoiser, short* samples, const short* end, std::ptrdiff_t stride) {
    const auto isSpeech = [](short x) { return std::abs(int{x}) > kSpeechLevel; };
    float in[kDenoiserHop], out[kDenoiserHop];
    std::uint8_t speech[kDenoiserHop];
    auto left = static_cast<int>((end - samples + stride - 1) / stride);
    while (left > 0) {
        const int run = std::min(left, samplesBeforeFrame(denoiser));
        for (int i = 0; i < run; i++) {
            in[i] = samples[i * stride];
            speech[i] = isSpeech(samples[i * stride]);
        }
        takeRun(denoiser, in, out, run);
        trackSpeech(denoiser, speech, run);
        for (int i = 0; i < run; i++) samples[i * stride] = truncateToSample(out[i]);
        left -= run;
        if (left == 0) return;
        samples += run * stride;
        *samples = truncateToSample(denoiseSample(denoiser, *samples, isSpeech(*samples)));
        if (--left > 0) samples += stride;
    }
}

// The slots know nothing of each other, so the second may follow when the first is done.
void denoiseBlock(RadioEffectState& effect, short* samples, int sampleCount, int slots) {
    for (int slot = 0; slot < std::min(slots, sampleCount); slot++)
        denoiseSlot(effect.channels[static_cast<std::size_t>(slot)].denoiser, samples + slot, samples + sampleCount,
                    slots);
}

void startAfresh(SpeakerState& speaker, std::uint32_t generation) {
    speaker.effect = {};
    speaker.equalizerGain = 1.0f;
    speaker.stamp = generation;
}

// With little memory there are fewer spare speakers, or none.
void prepare(PlaybackVoices& voices) try {
    voices.isPrepared = true;
    voices.speakers.reserve(kMaxHeardSpeakers + 1);
    voices.spare.reserve(kMaxHeardSpeakers + 1 + kSpareSpeakers);
    while (voices.spare.size() < kSpareSpeakers)
        voices.spare.push_back(voices.speakers.extract(voices.speakers.try_emplace(0).first));
} catch (const std::bad_alloc&) {
    return;
}

// They become spare ones: to release them would take the allocator's lock.
void dropAll(PlaybackVoices& voices) {
    auto& speakers = voices.speakers;
    while (!speakers.empty() && voices.spare.size() < voices.spare.capacity())
        voices.spare.push_back(speakers.extract(speakers.begin()));
    speakers.clear();
}

SpeakerState& addSpare(PlaybackVoices& voices, SpeakerKey speaker) {
    voices.spare.back().key() = speaker;
    SpeakerState& added = voices.speakers.insert(std::move(voices.spare.back())).position->second;
    voices.spare.pop_back();
    startAfresh(added, 0);
    return added;
}

// Null when there is no memory for another speaker.
SpeakerState* findSpeaker(PlaybackVoices& voices, SpeakerKey speaker) {
    auto& speakers = voices.speakers;
    if (!voices.isPrepared) prepare(voices);
    if (speakers.size() > kMaxHeardSpeakers) dropAll(voices);
    const auto known = speakers.find(speaker);
    if (known != speakers.end()) return &known->second;
    if (!voices.spare.empty()) return &addSpare(voices, speaker);
    try {
        return &speakers.try_emplace(speaker).first->second;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void refresh(CapturedVoice& voice, std::uint32_t generation) {
    if (voice.stamp == generation) return;
    voice.effect = {};
    voice.stamp = generation;
}

void refresh(SpeakerState& speaker, std::uint32_t generation) {
    if (speaker.stamp != generation) startAfresh(speaker, generation);
}

void reportEdited(const VoiceControls& controls, int& edited) {
    if (controls.marksEdited)
        edited |= kEditedBit;
    else if (controls.captureMode == kCaptureEdited)
        edited = 1;
}

// The level is that of the processed voice: the equalizer comes after the radio effect.
void equalize(SpeakerState& speaker, bool isOn, const short* samples, int sampleCount, int channels) {
    if (!isOn) {
        speaker.equalizerGain = 1.0f;
        return;
    }
    const double seconds = sampleCount / (slotsOf(channels) * kSampleRateHz);
    speaker.equalizerGain = followLevel(speaker.equalizerGain, blockRms(samples, sampleCount), seconds);
}

}  // namespace

VoiceControls loadVoiceControls(const SettingsStore& settings, const VoiceLevels& levels) {
    VoiceControls controls;
    controls.dspGeneration = settings.DspGeneration;
    controls.audioFlags = settings.AudioFlags;
    controls.transmitGain = settings.TransmitGain;
    controls.receiveGain = levels.ReceiveGain;
    controls.captureMode = levels.CaptureMode;
    controls.marksEdited = levels.MarkEdited;
    return controls;
}

bool isVoiceEdited(const VoiceControls& controls, const short* samples, int sampleCount) {
    return has(controls, kAudioMaster) && samples && sampleCount >= 1;
}

void editCapturedVoice(CapturedVoice& voice, const VoiceControls& controls, short* samples, int sampleCount,
                       int channels, int* edited) {
    if (!isVoiceEdited(controls, samples, sampleCount) || controls.captureMode == kCaptureUntouched) return;
    const FloatRules rules;
    refresh(voice, controls.dspGeneration);
    const bool denoise = has(controls, kAudioNrSelf);
    if (has(controls, kAudioDistortSelf))
        applyRadioEffect(samples, sampleCount, channels, voice.effect, false, denoise);
    else if (denoise)
        denoiseBlock(voice.effect, samples, sampleCount, slotsOf(channels));
    if (controls.transmitGain != 1.0f) applyGain(samples, sampleCount, controls.transmitGain);
    if (edited) reportEdited(controls, *edited);
}

void editPlaybackVoice(PlaybackVoices& voices, const VoiceControls& controls, SpeakerKey speakerKey, short* samples,
                       int sampleCount, int channels) {
    if (!isVoiceEdited(controls, samples, sampleCount)) return;
    const FloatRules rules;  // first: a table of speakers works out its size with floats, too
    SpeakerState* const speaker = findSpeaker(voices, speakerKey);
    if (!speaker) return;
    refresh(*speaker, controls.dspGeneration);
    if (has(controls, kAudioDistortOthers))
        applyRadioEffect(samples, sampleCount, channels, speaker->effect, true, false);
    equalize(*speaker, has(controls, kAudioEqualize), samples, sampleCount, channels);
    applyGain(samples, sampleCount, controls.receiveGain * speaker->equalizerGain);
}
