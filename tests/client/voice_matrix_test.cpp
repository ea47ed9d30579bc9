// voice_matrix_test.cpp - the voice hooks of the real DLL beside the plain ones, sound by sound: every switch, block
// length and channel count, under each of the floating-point modes that a host may have set. The samples must be the
// same to the last bit, and the control register must be the host's own again after every call.
#include <emmintrin.h>
#include <algorithm>
#include <cmath>
#include <memory>
#include <sstream>
#include <thread>
#include <vector>
#include "tests/client/voice_matrix_sounds.h"
#include "tests/client/voice_test.h"

namespace {

// How much of a sound is played, and in which cells.
struct Extent {
    int samples;  // of each channel
    std::vector<int> lengths;
    std::vector<int> channels;
};
const std::vector<int> kLengths = {1, 7, 160, 333, 480, 960, 1920, 4096};  // values per block
const Extent kUsual = {8192, kLengths, {1, 2}};                            // 64 frames of the denoiser
const Extent kIntoSilence = {10'240, kLengths, {1, 2}};                    // the filters' memory goes denormal
const Extent kMinute = {60 * 48'000, {960}, {1}};                          // and everything else does, too

// A sound that is played under all switches.
struct MatrixSound {
    const char* name;
    MakeSound make;
    const Extent& extent;
};
const MatrixSound kSounds[] = {
    {"speech", makeSound<Sound::kSpeech>, kUsual},
    {"room noise", makeSound<Sound::kRoomNoise>, kUsual},
    {"full-scale noise", makeSound<Sound::kFullScaleNoise>, kUsual},
    {"a tone", makeSound<Sound::kTone>, kUsual},
    {"steps", makeSteps, kUsual},
    {"full-scale squares", makeSound<Sound::kFullScaleSquare>, kUsual},
    {"impulses", makeSound<Sound::kImpulses>, kUsual},
    {"bursts", makeBursts, kUsual},
    {"silence after speech", makeSilenceAfterSpeech, kIntoSilence},
};

// One start of the plugin. The gains are above 1, where no two samples become equal.
struct Switches {
    bool distortSelf, nrSelf;      // of the own voice
    bool distortOthers, equalize;  // of the received ones
    bool gains;                    // of both
};

// Each side's switches in all combinations, with and without the gains; the other side's differ once and agree once.
// clang-format off
const Switches kWithoutGains[] = {
    // own          received       gains
    {false, false,  true,  true,   false},
    {true,  false,  false, true,   false},
    {false, true,   true,  false,  false},
    {true,  true,   false, false,  false},
};
const Switches kWithGains[] = {
    {false, false,  false, false,  true},
    {true,  false,  true,  false,  true},
    {false, true,   false, true,   true},
    {true,  true,   true,  true,   true},
};
const Switches kEffects[] = {
    {true,  false,  true,  false,  false},
    {false, true,   true,  true,   false},
    {true,  true,   false, false,  false},
};
// clang-format on

constexpr int kBeyond = 64;  // values after those of a cell, which no hook may touch
constexpr short kUntouched = 12'345;
constexpr int kHostsEdited = 5;
constexpr std::uint16_t kSpeaker = 10;

// The floating-point control register when the host calls.
struct HostRules {
    unsigned control;
    const char* name;
};
constexpr HostRules kUsualRules = {0x1F80, "usual"};
constexpr HostRules kAllRules[] = {kUsualRules, {0x9FC0, "flush to zero, denormals are zero"}, {0x5F80, "round up"}};

// How the values of a sound are passed to the hooks.
struct Cell {
    int length;  // values per block
    int channels;
};

// What came of them.
struct Played {
    std::vector<short> own, received;
    int edited = kHostsEdited;
    int changedRules = 0;  // calls that did not restore the register

    bool operator==(const Played&) const = default;
};

std::string linesOf(const Switches& s) {
    const auto line = [](const char* key, bool on) { return std::string(key) + (on ? "=1\r\n" : "=0\r\n"); };
    return line("distort_self", s.distortSelf) + line("nrSelf", s.nrSelf) + line("distort_others", s.distortOthers) +
           line("equalize", s.equalize) +
           (s.gains ? "transmit_gain=6\r\nfollow_volume=0\r\nreceive_volume=90\r\n" : "");
}

std::uint32_t flagsOf(const Switches& s) {
    return kAudioMaster | (s.distortSelf ? kAudioDistortSelf : 0U) | (s.nrSelf ? kAudioNrSelf : 0U) |
           (s.distortOthers ? kAudioDistortOthers : 0U) | (s.equalize ? kAudioEqualize : 0U);
}

// Block by block, alternating between the own voice and the received one.
template <class Capture, class Play>
void playBlocks(int length, Played& played, Capture capture, Play play) {
    const int count = static_cast<int>(played.own.size()) - kBeyond;
    for (int at = 0; at < count; at += length) {
        const int n = std::min(length, count - at);
        capture(played.own.data() + at, n);
        play(played.received.data() + at, n);
    }
}

// To be run on a thread of its own, so that the state is fresh; nobody needs the register afterwards.
void playPlugin(const PluginExports& plugin, const Cell& cell, const HostRules& rules, Played& played) {
    const auto underRules = [&](auto call) {
        _mm_setcsr(rules.control);
        call();
        if (_mm_getcsr() != rules.control) played.changedRules++;
    };
    playBlocks(
        cell.length, played,
        [&](short* samples, int n) {
            underRules([&] { plugin.onEditCapturedVoiceDataEvent(kSchid, samples, n, cell.channels, &played.edited); });
        },
        [&](short* samples, int n) {
            underRules([&] { plugin.onEditPlaybackVoiceDataEvent(kSchid, kSpeaker, samples, n, cell.channels); });
        });
}

void playPlain(const VoiceControls& controls, const Cell& cell, Played& played) {
    PlainCapturedVoice own;
    PlainPlaybackVoices received;
    playBlocks(
        cell.length, played,
        [&](short* samples, int n) {
            plainEditCapturedVoice(own, controls, samples, n, cell.channels, &played.edited);
        },
        [&](short* samples, int n) {
            plainEditPlaybackVoice(received, controls, kSchid, kSpeaker, samples, n, cell.channels);
        });
}

// Empty if there is none.
std::string differenceOf(const char* side, const std::vector<short>& values, const std::vector<short>& plain) {
    const auto [mine, theirs] = std::mismatch(values.begin(), values.end(), plain.begin());
    if (mine == values.end()) return "";
    std::ostringstream text;
    text << " " << side << " value " << mine - values.begin() << " is " << *mine << ", not " << *theirs << ";";
    return text.str();
}

std::string differenceOf(const Played& played, const Played& plain) {
    std::ostringstream text;
    text << differenceOf("own", played.own, plain.own) << differenceOf("received", played.received, plain.received);
    if (played.edited != plain.edited) text << " edited is " << played.edited << ", not " << plain.edited << ";";
    if (played.changedRules > 0) text << " " << played.changedRules << " calls changed the control register;";
    return text.str();
}

// The cells that went wrong, the first of them in words.
struct Findings {
    int count = 0;
    std::string text;

    void add(const VoiceControls& controls, const Cell& cell, const HostRules& rules, const std::string& difference) {
        constexpr int kShown = 20;
        if (++count > kShown) return;
        std::ostringstream line;
        line << "AudioFlags " << controls.audioFlags << ", gains " << controls.transmitGain << " and "
             << controls.receiveGain << ", " << cell.channels << " channels, blocks of " << cell.length << ", rules \""
             << rules.name << "\":" << difference << "\n";
        text += line.str();
    }
};

bool isDenormal(float x) {
    return std::fpclassify(x) == FP_SUBNORMAL;
}

// The plain effect after its denoiser, in the state in which the sound's last silent value leaves it.
std::unique_ptr<PlainRadioEffectState> plainInSilence(int samples, int channels) {
    auto state = std::make_unique<PlainRadioEffectState>();
    std::vector<short> values = makeValues(makeSilenceAfterSpeech, samples, channels);
    plainApplyRadioEffect(values.data(), (samples - kSpeechAgain) * channels, channels, *state, false, true);
    return state;
}

// In the list of tests.
std::string nameOf(const ::testing::TestParamInfo<Switches>& row) {
    const Switches& s = row.param;
    return std::string(s.distortSelf ? "DistortSelf" : "") + (s.nrSelf ? "NrSelf" : "") +
           (s.distortOthers ? "DistortOthers" : "") + (s.equalize ? "Equalize" : "") + (s.gains ? "Gains" : "");
}

}  // namespace

class VoiceMatrix : public VoiceTest, public ::testing::WithParamInterface<Switches> {
  protected:
    // The plain hooks run on this thread with denormals on.
    void SetUp() override { ASSERT_EQ(_mm_getcsr() & 0xFFC0U, kUsualRules.control); }

    // One start of the plugin for all cells: each cell has its own voice.
    void startWith(const Switches& switches) {
        controls_ = VoiceTest::startWith(linesOf(switches));
        ASSERT_EQ(controls_.audioFlags, flagsOf(switches));
        EXPECT_EQ(controls_.receiveGain != 1.0f, switches.gains);
        EXPECT_EQ(controls_.transmitGain != 1.0f, switches.gains);
        if (switches.gains) {
            ASSERT_TRUE(session.waitPasses(1));
        }
    }

    void play(const char* name, MakeSound make, const Extent& extent) {
        Findings findings;
        for (const int channels : extent.channels) {
            const std::vector<short> values = makeValues(make, extent.samples, channels);
            for (const int length : extent.lengths) playCell({length, channels}, values, findings);
        }
        EXPECT_EQ(findings.count, 0) << name << ": " << findings.text;
    }

  private:
    void playCell(const Cell& cell, const std::vector<short>& values, Findings& findings) {
        Played before;
        before.own = values;
        before.own.insert(before.own.end(), kBeyond, kUntouched);
        before.received = before.own;
        Played plain = before;
        playPlain(controls_, cell, plain);
        if (controls_.audioFlags & (kAudioDistortSelf | kAudioNrSelf)) {
            EXPECT_NE(plain.own, before.own);
        }
        if (controls_.audioFlags & kAudioDistortOthers) {
            EXPECT_NE(plain.received, before.received);
        }
        for (const HostRules& rules : kAllRules) {
            Played played = before;
            std::thread([&] { playPlugin(plugin(), cell, rules, played); }).join();
            if (played != plain) findings.add(controls_, cell, rules, differenceOf(played, plain));
        }
    }

    VoiceControls controls_;
};

TEST_P(VoiceMatrix, EditsEverySoundAsThePlainHooksDo) {
    ASSERT_NO_FATAL_FAILURE(startWith(GetParam()));
    for (const MatrixSound& sound : kSounds) {
        play(sound.name, sound.make, sound.extent);
        if (HasFailure()) break;  // no effect: the others would only repeat that
    }
}

using VoiceMatrixMinute = VoiceMatrix;

TEST_P(VoiceMatrixMinute, EditsSilenceAfterSpeechAsThePlainHooksDo) {
    ASSERT_NO_FATAL_FAILURE(startWith(GetParam()));
    play("a minute of silence", makeSilenceAfterSpeech, kMinute);
}

// Two halves of about the same length: they may run beside each other.
INSTANTIATE_TEST_SUITE_P(WithoutGains, VoiceMatrix, ::testing::ValuesIn(kWithoutGains), nameOf);
INSTANTIATE_TEST_SUITE_P(WithGains, VoiceMatrix, ::testing::ValuesIn(kWithGains), nameOf);
INSTANTIATE_TEST_SUITE_P(Effects, VoiceMatrixMinute, ::testing::ValuesIn(kEffects), nameOf);

TEST(VoiceMatrixSounds, TakeTheFiltersIntoDenormals) {
    for (const int channels : {1, 2}) {
        const auto state = plainInSilence(kIntoSilence.samples, channels);
        for (std::size_t slot = 0; slot < static_cast<std::size_t>(channels); slot++) {
            const PlainRadioChannel& c = state->channels[slot];
            for (const float x : {c.highPassOut[0], c.lowPass[3], c.resonance1, c.peakY1})
                EXPECT_TRUE(isDenormal(x)) << x << " in slot " << slot;
        }
    }
}

TEST(VoiceMatrixSounds, TakeTheFollowersIntoDenormalsInAMinute) {
    const auto state = plainInSilence(kMinute.samples, 1);
    const PlainRadioChannel& c = state->channels[0];
    for (const float x : {c.level, c.floor, c.dcY1, c.denoiser.noise[10]}) EXPECT_TRUE(isDenormal(x)) << x;
}
