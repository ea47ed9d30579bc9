// voice_session_test.cpp - long evenings with the voice hooks, beside the plain ones.
#include <array>
#include <atomic>
#include <functional>
#include <thread>
#include "tests/unit/audio/voice_hooks_rig.h"
#include "tests/unit/fakes.h"

TEST(VoiceHookThreads, MayRunOnThreadsOfTheirOwnWhileTheSettingsChange) {
    MemoryFiles files;
    SettingsStore settings(files);
    VoiceLevels bridge;
    const auto play = [&](std::uint32_t seed) {
        Hooks hooks;
        VoiceBlocks blocks(seed);
        int edited = 0;
        for (int i = 0; i < 100; i++) {
            const VoiceControls controls = loadVoiceControls(settings, bridge);
            hooks.play(controls, static_cast<std::uint16_t>(i % 3), blocks.takeAny(), 1);
            hooks.capture(controls, blocks.takeAny(), 2, edited);
        }
    };
    std::thread first(play, 1), second(play, 2);
    for (int i = 0; i < 200; i++) {
        bridge.ReceiveGain = static_cast<float>(i) / 100.0f;
        bridge.CaptureMode = i % 3;
        updateSettings(settings, [&](Settings& live) {
            live.nrSelf = i % 2 == 0;
            live.distort_self = i % 3 == 0;
            live.equalize = i % 5 == 0;
            live.transmit_gain = static_cast<float>(i % 19);
        });
    }
    first.join();
    second.join();
}

TEST(VoiceHookThreads, BeginAfreshWithEachSwitchThatIsToggledWhileTheyRun) {
    constexpr std::uint32_t kToggles = 20;
    MemoryFiles files;
    SettingsStore settings(files);
    const VoiceLevels bridge;
    std::atomic<std::uint32_t> seen[2] = {0, 0};  // stored by each thread after the block; the toggles wait for it
    std::atomic<bool> isSpeaking{true};
    const auto speak = [&](std::atomic<std::uint32_t>& mine) {
        Hooks hooks;
        VoiceBlocks blocks(3);
        int edited = 0;
        while (isSpeaking) {
            const VoiceControls controls = loadVoiceControls(settings, bridge);
            const bool isToggled = controls.dspGeneration != hooks.captured.stamp;
            const auto block = blocks.take(Sound::kFullScaleNoise, 960);  // more than the denoiser holds
            const auto heard = hooks.capture(controls, block, 1, edited);
            Hooks fresh;
            EXPECT_EQ(heard == fresh.capture(controls, block, 1, edited), isToggled) << controls.dspGeneration;
            mine = controls.dspGeneration;
        }
    };
    std::thread first(speak, std::ref(seen[0])), second(speak, std::ref(seen[1]));
    for (std::uint32_t toggle = 1; toggle <= kToggles; toggle++) {
        updateSettings(settings, [](Settings& live) { live.nrSelf = !live.nrSelf; });
        EXPECT_EQ(settings.DspGeneration, toggle);
        if (settings.DspGeneration != toggle) break;
        while (seen[0] < toggle || seen[1] < toggle) std::this_thread::yield();
    }
    isSpeaking = false;
    first.join();
    second.join();
}

// Long evenings: switches and gains change, people come and go, blocks of all lengths.
class VoiceSession : public ::testing::TestWithParam<std::uint32_t> {};

TEST_P(VoiceSession, GivesThePlainHooksSamplesToTheLastBit) {
    Hooks hooks;
    VoiceBlocks random(GetParam());
    VoiceControls controls = controlsOf(random.below(32) | kAudioMaster);
    int channels = 1;
    for (int round = 0; round < 2500 && !HasFailure(); round++) {
        if (random.oneIn(40)) {
            controls.audioFlags = random.oneIn(8) ? random.below(32) : random.below(32) | kAudioMaster;
            if (!random.oneIn(4)) controls.dspGeneration++;
        }
        if (random.oneIn(30)) controls.transmitGain = static_cast<float>(random.below(800)) / 100.0f;
        if (random.oneIn(60)) controls.transmitGain = 1.0f;
        if (random.oneIn(30)) controls.receiveGain = static_cast<float>(random.below(200)) / 100.0f;
        if (random.oneIn(30)) controls.captureMode = static_cast<std::int32_t>(random.below(3));
        if (random.oneIn(30)) controls.marksEdited = random.oneIn(2);
        if (random.oneIn(50)) channels = std::array{0, 1, 2, 6}[random.below(4)];
        const auto client = static_cast<std::uint16_t>(random.oneIn(20) ? random.below(9) : random.below(2));
        int edited = static_cast<int>(random.below(4));
        hooks.capture(controls, random.takeAny(), channels, edited);
        hooks.play(controls, client, random.takeAny(), channels);
        ASSERT_EQ(hooks.playback.speakers.size(), hooks.plainPlayback.speakers.size());
    }
    for (const auto& [key, plain] : hooks.plainPlayback.speakers) {
        EXPECT_EQ(hooks.playback.speakers.at(key).equalizerGain, plain.equalizerGain);
        EXPECT_EQ(hooks.playback.speakers.at(key).stamp, plain.stamp);
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, VoiceSession, ::testing::Range(1U, 7U));

TEST(VoiceControls, AreWhatSettingsAndBridgePublish) {
    MemoryFiles files;
    SettingsStore settings(files);
    VoiceLevels bridge;
    const VoiceControls first = loadVoiceControls(settings, bridge);
    EXPECT_EQ(first.audioFlags, 7U);
    EXPECT_EQ(first.transmitGain, 1.0f);
    EXPECT_EQ(first.receiveGain, 1.0f);
    EXPECT_EQ(first.captureMode, 1);
    EXPECT_FALSE(first.marksEdited);
    EXPECT_EQ(first.dspGeneration, 0U);
    updateSettings(settings, [](Settings& live) {
        live.equalize = true;
        live.transmit_gain = 6;
    });
    bridge.ReceiveGain = 0.25f;
    bridge.CaptureMode = 2;
    bridge.MarkEdited = true;
    const VoiceControls second = loadVoiceControls(settings, bridge);
    EXPECT_EQ(second.audioFlags, 23U);
    EXPECT_FLOAT_EQ(second.transmitGain, 1.9952623f);
    EXPECT_EQ(second.receiveGain, 0.25f);
    EXPECT_EQ(second.captureMode, 2);
    EXPECT_TRUE(second.marksEdited);
    EXPECT_EQ(second.dspGeneration, 1U);
}
