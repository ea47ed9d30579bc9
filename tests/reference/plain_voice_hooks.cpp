#include "tests/reference/plain_voice_hooks.h"
#include <cmath>

namespace {

void plainGain(short* samples, int sampleCount, float gain) {
    for (int i = 0; i < sampleCount; i++) {
        const float product = static_cast<float>(samples[i]) * gain;
        samples[i] = plainToSample(static_cast<double>(product));
    }
}

void plainDenoise(PlainRadioEffectState& effect, short* samples, int sampleCount, int channels) {
    const int clamped = channels < 1 ? 1 : channels > 2 ? 2 : channels;
    for (int i = 0; i < sampleCount; i++) {
        const auto slot = static_cast<std::size_t>(i % clamped);
        const bool speech = samples[i] > 300 || samples[i] < -300;
        const float x = denoisePlainSample(effect.channels[slot].denoiser, static_cast<float>(samples[i]), speech);
        samples[i] = plainToSample(static_cast<double>(x));
    }
}

}  // namespace

short plainToSample(double x) {
    const double whole = std::trunc(x);
    if (whole < -32768.0) return -32768;
    if (whole > 32767.0) return 32767;
    return static_cast<short>(whole);
}

float plainFollowLevel(float gain, const short* samples, int sampleCount, int channels) {
    double squares = 0.0;
    for (int i = 0; i < sampleCount; i++) squares += static_cast<double>(samples[i]) * static_cast<double>(samples[i]);
    const double rms = std::sqrt(squares / sampleCount);
    if (rms <= 180.0) return gain;
    double target = 3277.0 / rms;
    if (target < 0.25) target = 0.25;
    if (target > 4.0) target = 4.0;
    const int clamped = channels < 1 ? 1 : channels > 2 ? 2 : channels;
    const double dt = sampleCount / (clamped * 48000.0);
    const double now = static_cast<double>(gain);
    const double timeConstant = now > target ? 0.025 : 0.4;
    return static_cast<float>(now + (target - now) * (1.0 - std::exp(-dt / timeConstant)));
}

void plainEditCapturedVoice(PlainCapturedVoice& voice, const VoiceControls& controls, short* samples, int sampleCount,
                            int channels, int* edited) {
    if (!(controls.audioFlags & kAudioMaster) || samples == nullptr || sampleCount < 1) return;
    if (controls.captureMode == 2) return;
    if (voice.stamp != controls.dspGeneration) {
        voice.effect = PlainRadioEffectState{};
        voice.stamp = controls.dspGeneration;
    }
    const bool denoise = (controls.audioFlags & kAudioNrSelf) != 0;
    if (controls.audioFlags & kAudioDistortSelf)
        plainApplyRadioEffect(samples, sampleCount, channels, voice.effect, false, denoise);
    else if (denoise)
        plainDenoise(voice.effect, samples, sampleCount, channels);
    if (controls.transmitGain != 1.0f) plainGain(samples, sampleCount, controls.transmitGain);
    if (edited == nullptr) return;
    if (controls.marksEdited) {
        *edited = *edited | 1;
    } else if (controls.captureMode == 0) {
        *edited = 1;
    }
}

void plainEditPlaybackVoice(PlainPlaybackVoices& voices, const VoiceControls& controls, std::uint64_t schid,
                            std::uint16_t clientId, short* samples, int sampleCount, int channels) {
    if (!(controls.audioFlags & kAudioMaster) || samples == nullptr || sampleCount < 1) return;
    if (voices.speakers.size() > 512) voices.speakers.clear();
    PlainSpeaker& speaker = voices.speakers[(schid << 16U) ^ clientId];
    if (speaker.stamp != controls.dspGeneration) {
        speaker = PlainSpeaker{};
        speaker.stamp = controls.dspGeneration;
    }
    if (controls.audioFlags & kAudioDistortOthers)
        plainApplyRadioEffect(samples, sampleCount, channels, speaker.effect, true, false);
    speaker.equalizerGain = controls.audioFlags & kAudioEqualize
                                ? plainFollowLevel(speaker.equalizerGain, samples, sampleCount, channels)
                                : 1.0f;
    plainGain(samples, sampleCount, controls.receiveGain * speaker.equalizerGain);
}
