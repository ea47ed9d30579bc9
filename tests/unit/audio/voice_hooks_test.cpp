#include "audio/voice_hooks.h"
#include <emmintrin.h>
#include <gtest/gtest.h>
#include <algorithm>
#include <cmath>
#include <limits>
#include "audio/voice_gain.h"
#include "tests/unit/audio/voice_hooks_rig.h"

namespace {

std::vector<short> speech(int n) {
    return VoiceBlocks(5).take(Sound::kSpeech, n);
}

// A block of this level throughout.
std::vector<short> level(short value, int n = 960) {
    return std::vector<short>(static_cast<std::size_t>(n), value);
}

// Sets the processor's floating-point control register for a scope.
class HostFloatRules {
  public:
    explicit HostFloatRules(unsigned rules) : before_(_mm_getcsr()) { _mm_setcsr(rules); }
    ~HostFloatRules() { _mm_setcsr(before_); }

  private:
    unsigned before_;
};

}  // namespace

TEST(VoiceHooks, LeaveBlocksAndTheEditedFlagAloneWithMasterOff) {
    Hooks hooks;
    const std::vector<short> before = speech(960);
    for (std::uint32_t others = 0; others <= kEverySwitch; others += 2) {
        VoiceControls controls = controlsOf(others);
        controls.transmitGain = controls.receiveGain = 5.0f;
        int edited = 77;
        EXPECT_EQ(hooks.capture(controls, before, 1, edited), before);
        EXPECT_EQ(edited, 77);
        EXPECT_EQ(hooks.play(controls, 4, before, 1), before);
    }
    EXPECT_TRUE(hooks.playback.speakers.empty());
}

TEST(VoiceHooks, LeaveTheOwnVoiceAloneInCaptureModeTwoWhateverTheSwitches) {
    Hooks hooks;
    const std::vector<short> before = speech(960);
    for (std::uint32_t flags = 0; flags <= kEverySwitch; flags++) {
        VoiceControls controls = controlsOf(flags, kCaptureUntouched);
        controls.transmitGain = 3.0f;
        int edited = 2;
        EXPECT_EQ(hooks.capture(controls, before, 2, edited), before);
        EXPECT_EQ(edited, 2);
    }
}

TEST(VoiceHooks, ReportAnEditOfNothingAtZeroDecibelsWithoutEffects) {
    Hooks hooks;
    const std::vector<short> before = speech(960);
    int edited = 0;
    EXPECT_EQ(hooks.capture(controlsOf(kAudioMaster), before, 1, edited), before);
    EXPECT_EQ(edited, 1);
}

TEST(VoiceHooks, StoreTheEditedFlagOnlyInCaptureModeZero) {
    Hooks hooks;
    const VoiceControls editing = controlsOf(kAudioMaster | kAudioDistortSelf);
    int edited = 6;  // the host's own value; replaced, not added to
    EXPECT_NE(hooks.capture(editing, speech(960), 1, edited), speech(960));
    EXPECT_EQ(edited, 1);
    edited = 6;
    EXPECT_NE(hooks.capture(controlsOf(editing.audioFlags, kCaptureUnreported), speech(960), 1, edited), speech(960));
    EXPECT_EQ(edited, 6);
    std::vector<short> block = speech(960);
    editCapturedVoice(hooks.captured, editing, block.data(), 960, 1, nullptr);
    EXPECT_NE(block, speech(960));
}

TEST(VoiceHooks, AddTheBitOfAnEditToTheHostsFlagInBothEditingModesWhereItIsAskedFor) {
    Hooks hooks;
    for (const std::int32_t mode : {kCaptureEdited, kCaptureUnreported, kCaptureUntouched}) {
        VoiceControls controls = controlsOf(kAudioMaster | kAudioDistortSelf, mode);
        controls.marksEdited = true;
        for (const int before : {0, 1, 2, 6}) {
            int edited = before;
            hooks.capture(controls, speech(960), 1, edited);
            EXPECT_EQ(edited, mode == kCaptureUntouched ? before : before | 1) << mode << " " << before;
        }
        std::vector<short> block = speech(960);
        CapturedVoice alone;
        editCapturedVoice(alone, controls, block.data(), 960, 1, nullptr);
        controls.audioFlags = 0;
        int edited = 6;
        hooks.capture(controls, speech(960), 1, edited);
        EXPECT_EQ(edited, 6) << "master is off";
    }
}

TEST(VoiceHooks, IgnoreMissingAndEmptyBlocks) {
    Hooks hooks;
    const VoiceControls all = controlsOf(kEverySwitch);
    short sample = 1234;
    for (const int n : {0, -1, -960, std::numeric_limits<int>::min()}) {
        int edited = 9;
        editCapturedVoice(hooks.captured, all, &sample, n, 1, &edited);
        editPlaybackVoice(hooks.playback, all, 1, &sample, n, 1);
        EXPECT_EQ(edited, 9);
    }
    int edited = 9;
    editCapturedVoice(hooks.captured, all, nullptr, 960, 1, &edited);
    editPlaybackVoice(hooks.playback, all, 1, nullptr, 960, 1);
    EXPECT_EQ(edited, 9);
    EXPECT_EQ(sample, 1234);
    EXPECT_TRUE(hooks.playback.speakers.empty());
    EXPECT_EQ(hooks.captured.stamp, 0xFFFFFFFFU);
}

TEST(VoiceHooks, DropAllSpeakersWithTheCallThatFinds513) {
    Hooks hooks;
    const VoiceControls controls = controlsOf(kAudioMaster | kAudioEqualize);
    for (std::uint16_t client = 1; client <= 513; client++) hooks.play(controls, client, level(20000, 96), 1);
    EXPECT_EQ(hooks.playback.speakers.size(), 513U);
    EXPECT_LT(hooks.equalizerGain(1), 1.0f);
    hooks.play(controls, 7, level(0, 96), 1);  // known, and dropped like the others
    EXPECT_EQ(hooks.playback.speakers.size(), 1U);
    EXPECT_EQ(hooks.equalizerGain(7), 1.0f);
    hooks.play(controls, 1, level(0, 96), 1);
    EXPECT_EQ(hooks.equalizerGain(1), 1.0f);
}

TEST(VoiceHooks, StartARadioAfreshForAllSpeakersAfterThe513th) {
    Hooks hooks, fresh;
    const VoiceControls controls = controlsOf(kAudioMaster | kAudioDistortOthers);
    for (std::uint16_t client = 1; client <= 513; client++) hooks.play(controls, client, speech(96), 1);
    EXPECT_NE(hooks.playback.speakers.at(speakerKey(kServer, 3)).effect.hissState, RadioEffectState{}.hissState);
    for (std::uint16_t client = 1; client <= 513; client += 64)
        EXPECT_EQ(hooks.play(controls, client, speech(960), 1), fresh.play(controls, client, speech(960), 1));
}

TEST(VoiceHooks, Keep512SpeakersAsLongAsNoOtherComes) {
    Hooks hooks;
    const VoiceControls controls = controlsOf(kAudioMaster | kAudioEqualize);
    for (int round = 0; round < 2; round++) {
        for (std::uint16_t client = 1; client <= 512; client++) hooks.play(controls, client, level(20000, 96), 1);
    }
    EXPECT_EQ(hooks.playback.speakers.size(), 512U);
    EXPECT_EQ(hooks.equalizerGain(1), hooks.equalizerGain(512));
    Hooks once;
    once.play(controls, 1, level(20000, 96), 1);
    EXPECT_LT(hooks.equalizerGain(1), once.equalizerGain(1));
}

TEST(VoiceHooks, KnowTheSameClientOfTwoServersApart) {
    Hooks hooks;
    const VoiceControls controls = controlsOf(kAudioMaster | kAudioEqualize);
    hooks.play(controls, 5, level(20000), 1, 1);
    hooks.play(controls, 5, level(0), 1, 2);
    EXPECT_EQ(hooks.playback.speakers.at(speakerKey(2, 5)).equalizerGain, 1.0f);
    EXPECT_LT(hooks.playback.speakers.at(speakerKey(1, 5)).equalizerGain, 1.0f);
}

TEST(VoiceHooks, HoldTheEqualizerInSilenceAndBreath) {
    Hooks hooks;
    const VoiceControls controls = controlsOf(kAudioMaster | kAudioEqualize);
    for (int i = 0; i < 50; i++) hooks.play(controls, 1, level(1000), 1);
    const float gain = hooks.equalizerGain(1);
    EXPECT_GT(gain, 2.0f);
    for (int i = 0; i < 50; i++) hooks.play(controls, 1, level(i % 2 ? 180 : 0), 1);
    EXPECT_EQ(hooks.equalizerGain(1), gain);
    hooks.play(controls, 1, level(181), 1);
    EXPECT_GT(hooks.equalizerGain(1), gain);
}

TEST(VoiceHooks, BringALoudSpeakerDownToAQuarterWithin25Milliseconds) {
    Hooks hooks;
    const VoiceControls controls = controlsOf(kAudioMaster | kAudioEqualize);
    hooks.play(controls, 1, level(32767, 1200), 1);  // 25 ms
    EXPECT_NEAR(hooks.equalizerGain(1), 0.25 + 0.75 * 0.3678794, 1e-5);
    for (int i = 0; i < 40; i++) hooks.play(controls, 1, level(32767), 1);
    EXPECT_NEAR(hooks.equalizerGain(1), 0.25, 1e-6);
    EXPECT_EQ(hooks.play(controls, 1, level(32767), 1)[0], 8191);
}

TEST(VoiceHooks, TakeAStereoBlockOfTheSameCountAsHalfAsLong) {
    Hooks mono, stereo;
    const VoiceControls controls = controlsOf(kAudioMaster | kAudioEqualize);
    mono.play(controls, 1, level(32767, 480), 1);
    stereo.play(controls, 1, level(32767, 960), 2);
    EXPECT_EQ(mono.equalizerGain(1), stereo.equalizerGain(1));
}

TEST(VoiceHooks, StartTheEqualizerAfreshAfterItWasOff) {
    Hooks hooks;
    for (int i = 0; i < 9; i++) hooks.play(controlsOf(kAudioMaster | kAudioEqualize), 1, level(20000), 1);
    EXPECT_EQ(hooks.play(controlsOf(kAudioMaster), 1, level(20000), 1), level(20000));
    EXPECT_EQ(hooks.equalizerGain(1), 1.0f);
}

TEST(VoiceHooks, MeasureTheEqualizersLevelAfterTheRadio) {
    Hooks hooks;
    std::vector<short> hum = level(0);  // 50 Hz: loud, but the radio's band-pass stops it
    for (std::size_t i = 0; i < hum.size(); i++)
        hum[i] = static_cast<short>(12000.0 * std::sin(2.0 * 3.14159265358979 * static_cast<double>(i) / 960.0));
    for (int i = 0; i < 20; i++) hooks.play(controlsOf(kAudioMaster | kAudioEqualize), 1, hum, 1);
    for (int i = 0; i < 20; i++) hooks.play(controlsOf(kAudioMaster | kAudioEqualize | kAudioDistortOthers), 2, hum, 1);
    EXPECT_LT(hooks.equalizerGain(1), 0.5f);
    EXPECT_GT(hooks.equalizerGain(2), 1.0f);
}

TEST(VoiceHooks, ResetEverySpeakerWhenASwitchChanges) {
    Hooks hooks, fresh;
    VoiceControls controls = controlsOf(kAudioMaster | kAudioDistortOthers | kAudioEqualize);
    for (int i = 0; i < 9; i++) {
        for (std::uint16_t client = 1; client <= 3; client++) hooks.play(controls, client, level(20000), 1);
    }
    controls.dspGeneration++;  // as the settings do with each change
    controls.audioFlags &= ~std::uint32_t{kAudioDistortOthers};
    for (std::uint16_t client = 1; client <= 3; client++) {
        EXPECT_NE(hooks.equalizerGain(client), 1.0f);
        hooks.play(controls, client, level(0), 1);
        EXPECT_EQ(hooks.equalizerGain(client), 1.0f);
    }
    controls.dspGeneration++;
    controls.audioFlags |= kAudioDistortOthers;
    for (std::uint16_t client = 1; client <= 3; client++)
        EXPECT_EQ(hooks.play(controls, client, speech(960), 1), fresh.play(controls, client, speech(960), 1));
}

TEST(VoiceHooks, ResetTheOwnVoiceWhenASwitchChangesAndNotForAGain) {
    Hooks hooks, fresh;
    int edited = 0;
    VoiceControls controls = controlsOf(kAudioMaster | kAudioNrSelf);
    hooks.capture(controls, speech(960), 1, edited);
    controls.transmitGain = 2.0f;
    const auto carriedOn = hooks.capture(controls, speech(960), 1, edited);
    EXPECT_NE(carriedOn, fresh.capture(controls, speech(960), 1, edited));
    controls.dspGeneration++;
    Hooks other;
    EXPECT_EQ(hooks.capture(controls, speech(960), 1, edited), other.capture(controls, speech(960), 1, edited));
}

// The generation that a voice has before its first block counts as its own: 2^32 toggles away from the first one.
TEST(VoiceHooks, BeginWithAFreshOwnVoiceInEveryGenerationButOne) {
    int edited = 0;
    Hooks used;
    used.capture(controlsOf(kEverySwitch), speech(960), 1, edited);
    for (const std::uint32_t generation : {0U, 1U, 0xFFFFFFFEU, 0xFFFFFFFFU}) {
        VoiceControls controls = controlsOf(kEverySwitch);
        controls.dspGeneration = generation;
        Hooks fresh, marked;
        marked.captured.effect = used.captured.effect;  // not what a fresh voice has
        marked.plainCaptured.effect = used.plainCaptured.effect;
        const auto begun = fresh.capture(controls, speech(960), 1, edited);
        const bool isBegunAfresh = marked.capture(controls, speech(960), 1, edited) == begun;
        EXPECT_EQ(isBegunAfresh, generation != 0xFFFFFFFFU) << generation;
        EXPECT_EQ(marked.captured.stamp, generation);
    }
}

TEST(VoiceHooks, AlternateTheTwoSlotsOfAStereoBlock) {
    for (const std::uint32_t flags : {kAudioMaster | kAudioNrSelf, kAudioMaster | kAudioDistortSelf,
                                      kAudioMaster | kAudioDistortSelf | kAudioNrSelf}) {
        Hooks stereo, left, right;
        VoiceBlocks loud(1), faint(2);
        int edited = 0;
        for (int round = 0; round < 20; round++) {
            const auto l = loud.take(Sound::kSpeech, 480), r = faint.take(Sound::kRoomNoise, 480);
            std::vector<short> both, expected;
            for (std::size_t i = 0; i < 480; i++) both.insert(both.end(), {l[i], r[i]});
            const auto l2 = left.capture(controlsOf(flags), l, 1, edited);
            const auto r2 = right.capture(controlsOf(flags), r, 1, edited);
            for (std::size_t i = 0; i < 480; i++) expected.insert(expected.end(), {l2[i], r2[i]});
            ASSERT_EQ(stereo.capture(controlsOf(flags), both, 2, edited), expected) << flags << " " << round;
        }
    }
}

TEST(VoiceHooks, EditSampleCountValuesAndNoneBeyondAlsoInStereo) {
    VoiceControls controls = controlsOf(kEverySwitch);
    controls.transmitGain = controls.receiveGain = 2.0f;
    for (int n = 1; n <= 300; n += 13) {
        Hooks hooks;
        std::vector<short> block = level(9000, 600);
        editCapturedVoice(hooks.captured, controls, block.data(), n, 2, nullptr);
        editPlaybackVoice(hooks.playback, controls, 1, block.data(), n, 2);
        for (std::size_t i = static_cast<std::size_t>(n); i < block.size(); i++) ASSERT_EQ(block[i], 9000) << n;
    }
}

TEST(VoiceHooks, TakeAnyChannelCountAsOneOrTwo) {
    const VoiceControls controls = controlsOf(kEverySwitch);
    const auto played = [&](std::uint32_t flags, int channels) {
        Hooks hooks;
        VoiceControls c = controls;
        c.audioFlags = flags;
        int edited = 0;
        std::vector<short> all;
        for (int i = 0; i < 4; i++) {
            for (const auto& block :
                 {hooks.capture(c, speech(333), channels, edited), hooks.play(c, 1, speech(333), channels)})
                all.insert(all.end(), block.begin(), block.end());
        }
        return all;
    };
    for (const std::uint32_t flags : {kEverySwitch, std::uint32_t{kAudioMaster | kAudioNrSelf | kAudioEqualize}}) {
        EXPECT_EQ(played(flags, 0), played(flags, 1));
        EXPECT_EQ(played(flags, -3), played(flags, 1));
        EXPECT_EQ(played(flags, 6), played(flags, 2));
        EXPECT_NE(played(flags, 1), played(flags, 2));
    }
}

TEST(VoiceHooks, HearTheSpeakerAbove300AndNoiseUpToIt) {
    const auto remaining = [](short amplitude) {
        Hooks hooks;
        std::vector<short> square(48'000);
        for (std::size_t i = 0; i < square.size(); i++)
            square[i] = i / 24 % 2 ? amplitude : static_cast<short>(-amplitude);
        int edited = 0;
        const auto out = hooks.capture(controlsOf(kAudioMaster | kAudioNrSelf), square, 1, edited);
        return blockRms(out.data() + 40'000, 8000) / amplitude;
    };
    EXPECT_LT(remaining(300), 0.2);  // the denoiser's floor in pauses is 0.15
    EXPECT_GT(remaining(301), 0.9);
}

TEST(VoiceHooks, GiveTheSameSamplesForAnySplitOfTheOwnVoice) {
    VoiceBlocks random(11);
    const std::vector<short> whole = VoiceBlocks(3).take(Sound::kSpeech, 20'000);
    for (const std::uint32_t flags : {kAudioMaster | kAudioNrSelf, kAudioMaster | kAudioNrSelf | kAudioDistortSelf}) {
        Hooks once, split;
        int edited = 0;
        const std::vector<short> expected = once.capture(controlsOf(flags), whole, 1, edited);
        std::vector<short> got;
        for (std::size_t at = 0; at < whole.size();) {
            const std::size_t n = std::min<std::size_t>(1 + random.below(400), whole.size() - at);
            const auto from = whole.begin() + static_cast<std::ptrdiff_t>(at);
            const auto part =
                split.capture(controlsOf(flags), {from, from + static_cast<std::ptrdiff_t>(n)}, 1, edited);
            got.insert(got.end(), part.begin(), part.end());
            at += n;
        }
        EXPECT_EQ(got, expected) << flags;
    }
}

TEST(VoiceHooks, MultiplyByTheReceiveGainAndTheEqualizersInOneStep) {
    Hooks hooks;
    VoiceControls controls = controlsOf(kAudioMaster);
    controls.receiveGain = 0.5f;
    EXPECT_EQ(hooks.play(controls, 1, level(1001), 1), level(500));
    controls.receiveGain = 0.0f;
    EXPECT_EQ(hooks.play(controls, 1, level(1001), 1), level(0));
    controls.receiveGain = 1e38f;
    EXPECT_EQ(hooks.play(controls, 1, level(-1001), 1), level(-32768));
    controls.receiveGain = 1.0f;
    EXPECT_EQ(hooks.play(controls, 1, level(-1001), 1), level(-1001));
}

TEST(VoiceHooks, GiveTheSameSamplesAndPutTheRegisterBackWhateverTheHostsFloatRules) {
    constexpr unsigned kUp = 0x5F80, kChopped = 0x7F80, kFlushing = 0x9FC0, kDivideTraps = 0x1D80, kMarked = 0x1FBF;
    for (const unsigned rules : {0x1F80U, kUp, kChopped, kFlushing, kDivideTraps, kMarked}) {
        Hooks hooks;
        VoiceBlocks blocks(9);
        for (int i = 0; i < 30; i++) {
            const bool isQuiet = i > 3;
            std::vector<short> own = blocks.take(isQuiet ? Sound::kSilence : Sound::kSpeech, 960), heard = own;
            std::vector<short> plainOwn = own, plainHeard = own;
            VoiceControls controls = controlsOf(kEverySwitch, i % 3);
            if (i == 20) controls.audioFlags = 0;
            {
                const HostFloatRules host(rules);
                editCapturedVoice(hooks.captured, controls, own.data(), 960, 1, nullptr);
                editPlaybackVoice(hooks.playback, controls, 1, heard.data(), 960, 1);
                editPlaybackVoice(hooks.playback, controls, 1, nullptr, 960, 1);
                const unsigned after = _mm_getcsr();
                EXPECT_EQ(after, rules);
            }
            plainEditCapturedVoice(hooks.plainCaptured, controls, plainOwn.data(), 960, 1, nullptr);
            plainEditPlaybackVoice(hooks.plainPlayback, controls, 0, 1, plainHeard.data(), 960, 1);
            ASSERT_EQ(own, plainOwn) << std::hex << rules << " block " << i;
            ASSERT_EQ(heard, plainHeard) << std::hex << rules << " block " << i;
        }
    }
}
