// voice_switches_test.cpp - a voice switch that the user toggles in the settings dialog while the host's audio threads
// run: no block is torn, and every voice begins afresh with the new switches.
#include <atomic>
#include <memory>
#include <thread>
#include "settings/dialog/dialog_rows.h"
#include "tests/client/dialog_driver_win.h"
#include "tests/client/voice_test.h"
#include "tests/unit/audio/voice_blocks.h"

namespace {

constexpr int kNoiseReduction = 6031;
constexpr int kBlockValues = 480;

// An audio thread that speaks without a pause. Each block must be what the plain hooks make of it with the switch on or
// off, continuing the voice or beginning afresh: there is no fifth way.
class SpeakingThread {
  public:
    SpeakingThread(const PluginExports& plugin, const VoiceControls& off, std::uint32_t seed)
        : plugin_(plugin), source_(seed), thread_([this, off] { run(off); }) {}
    ~SpeakingThread() { end(); }
    SpeakingThread(const SpeakingThread&) = delete;
    SpeakingThread& operator=(const SpeakingThread&) = delete;

    void end() {
        isSpeaking_ = false;
        if (thread_.joinable()) thread_.join();
    }
    int blocks() const { return blocks_; }
    int beginnings() const { return beginnings_; }  // blocks, after the first, at which the voice began afresh
    int strays() const { return strays_; }          // blocks that match none of the four ways
    bool isReduced() const { return isReduced_; }   // the last block had the switch on

  private:
    void run(VoiceControls controls) {
        while (isSpeaking_) {
            const std::vector<short> spoken = source_.take(Sound::kFullScaleNoise, kBlockValues);
            std::vector<short> heard = spoken;
            int edited = 0;
            plugin_.onEditCapturedVoiceDataEvent(kSchid, heard.data(), kBlockValues, 1, &edited);
            if (!findWay(controls, spoken, heard)) strays_++;
            blocks_++;
            pauseBriefly();
        }
    }
    bool findWay(VoiceControls& controls, const std::vector<short>& spoken, const std::vector<short>& heard) {
        for (const bool begins : {false, true}) {
            for (const bool reduces : {isReduced_.load(), !isReduced_}) {
                controls.audioFlags =
                    reduces ? controls.audioFlags | kAudioNrSelf : controls.audioFlags & ~kAudioNrSelf;
                auto voice =
                    begins ? std::make_unique<PlainCapturedVoice>() : std::make_unique<PlainCapturedVoice>(*voice_);
                std::vector<short> plain = spoken;
                int edited = 0;
                plainEditCapturedVoice(*voice, controls, plain.data(), kBlockValues, 1, &edited);
                if (plain != heard) continue;
                voice_ = std::move(voice);
                isReduced_ = reduces;
                beginnings_ += begins;
                return true;
            }
        }
        return false;
    }

    const PluginExports plugin_;
    VoiceBlocks source_;
    std::unique_ptr<PlainCapturedVoice> voice_ = std::make_unique<PlainCapturedVoice>();
    std::atomic<bool> isSpeaking_{true};  // stored by the test, loaded by the thread
    std::atomic<bool> isReduced_{false};  // stored by the thread, as all below
    std::atomic<int> blocks_{0};
    std::atomic<int> beginnings_{0};
    std::atomic<int> strays_{0};
    std::thread thread_;  // last: it starts when all the others are in place
};

}  // namespace

using VoiceSwitches = VoiceTest;

TEST_F(VoiceSwitches, ToggledWhileAudioThreadsRunLetEachVoiceBeginAfresh) {
    constexpr int kToggles = 4;
    const VoiceControls off = start("distort_self=1\r\nnrSelf=0\r\n");
    plugin().onMenuItemEvent(kSchid, 0, 1, 0);
    ASSERT_TRUE(session.waitUntil([] { return findDialog() != nullptr; }));
    SpeakingThread first(plugin(), off, 1), second(plugin(), off, 2);
    ASSERT_TRUE(session.waitUntil([&] { return first.blocks() > 2 && second.blocks() > 2; }));
    for (int toggle = 1; toggle <= kToggles; toggle++) {
        const DialogDriver dialog(findDialog(), 0);
        dialog.command(kNoiseReduction);
        dialog.command(kApply);
        const bool isOn = toggle % 2 == 1;
        const auto hasTurned = [&](const SpeakingThread& thread) {
            return thread.beginnings() >= toggle && thread.isReduced() == isOn;
        };
        EXPECT_TRUE(session.waitUntil([&] { return hasTurned(first) && hasTurned(second); })) << toggle;
        if (HasFailure()) break;
    }
    first.end();
    second.end();
    for (const SpeakingThread* thread : {&first, &second}) {
        EXPECT_EQ(thread->strays(), 0) << "of " << thread->blocks() << " blocks";
        EXPECT_EQ(thread->beginnings(), kToggles);
    }
}
