// voices_test.cpp - the voice hooks of the real DLL: beside the plain hooks sample by sample, and through loads and
// unloads while threads live on.
#include <windows.h>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include "tests/client/resource_count_win.h"
#include "tests/client/voice_test.h"
#include "tests/unit/audio/voice_blocks.h"

namespace {

// A host thread: carries out what it is told, and lives on in between.
class HostThread {
  public:
    HostThread() : thread_([this] { live(); }) {}
    ~HostThread() {
        tell(nullptr);
        thread_.join();
    }
    HostThread(const HostThread&) = delete;
    HostThread& operator=(const HostThread&) = delete;

    void run(const std::function<void()>& work) {  // returns when the work is done
        tell(&work);
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return !isTold_; });
    }

  private:
    void tell(const std::function<void()>* work) {
        const std::lock_guard lock(mutex_);
        work_ = work;
        isTold_ = true;
        changed_.notify_all();
    }
    void live() {
        std::unique_lock lock(mutex_);
        while (true) {
            changed_.wait(lock, [this] { return isTold_; });
            if (!work_) return;
            (*work_)();
            isTold_ = false;
            changed_.notify_all();
        }
    }

    std::mutex mutex_;  // guards the two below
    const std::function<void()>* work_ = nullptr;
    bool isTold_ = false;
    std::condition_variable changed_;
    std::thread thread_;  // last: it starts when all the others are in place
};

// What an audio thread has heard and said: every block goes through the DLL and through the plain hooks.
struct BothHooks {
    PlainCapturedVoice captured;
    PlainPlaybackVoices playback;
    VoiceBlocks source{17};

    void play(const PluginExports& plugin, const VoiceControls& controls, std::uint16_t client, int channels) {
        std::vector<short> block = source.takeAny(), plain = block;
        const int n = static_cast<int>(block.size());
        plugin.onEditPlaybackVoiceDataEvent(kSchid, client, block.data(), n, channels);
        plainEditPlaybackVoice(playback, controls, kSchid, client, plain.data(), n, channels);
        EXPECT_EQ(block, plain);
    }
    void capture(const PluginExports& plugin, const VoiceControls& controls, int channels, int edited) {
        std::vector<short> block = source.takeAny(), plain = block;
        const int n = static_cast<int>(block.size());
        int plainEdited = edited;
        plugin.onEditCapturedVoiceDataEvent(kSchid, block.data(), n, channels, &edited);
        plainEditCapturedVoice(captured, controls, plain.data(), n, channels, &plainEdited);
        EXPECT_EQ(block, plain);
        EXPECT_EQ(edited, plainEdited);
    }
    void runBoth(const PluginExports& plugin, const VoiceControls& controls, int rounds) {
        for (int i = 0; i < rounds && !testing::Test::HasFailure(); i++) {
            play(plugin, controls, static_cast<std::uint16_t>(10 + i % 4), 1 + i / 10 % 2);
            capture(plugin, controls, 1 + i / 7 % 2, i % 3);
        }
    }
};

// Runs both hooks once for each of some speakers on the calling thread: about 70 KB of state.
void makeState(const PluginExports& plugin) {
    short samples[960] = {};
    for (std::uint16_t client = 1; client <= 8; client++) {
        plugin.onEditPlaybackVoiceDataEvent(kSchid, client, samples, 960, 1);
        plugin.onEditCapturedVoiceDataEvent(kSchid, samples, 960, 1, nullptr);
    }
}

// The next slot the system would hand out: the same as before if nobody has kept one.
DWORD nextFiberSlot() {
    const DWORD slot = FlsAlloc(nullptr);
    FlsFree(slot);
    return slot;
}

}  // namespace

class Voices : public VoiceTest {
  protected:
    BothHooks hooks;
};

TEST_F(Voices, AreEditedAsThePlainHooksDo) {
    const char* const kAll = "master=1\r\ndistort_self=1\r\ndistort_others=1\r\nnrSelf=1\r\nequalize=1\r\n";
    const VoiceControls controls =
        start(std::string(kAll) + "transmit_gain=6\r\nfollow_volume=0\r\nreceive_volume=90\r\n");
    ASSERT_EQ(controls.audioFlags, 31U);
    ASSERT_NE(controls.transmitGain, 1.0f);
    ASSERT_NE(controls.receiveGain, 1.0f);
    hooks.runBoth(plugin(), controls, 200);
}

TEST_F(Voices, FollowTheSettingsOfTheNextStart) {
    const std::string switches[] = {"distort_self=0\r\ndistort_others=0\r\n", "master=0\r\n",
                                    "distort_self=0\r\nnrSelf=1\r\nequalize=1\r\n", "transmit_gain=12\r\n"};
    for (const std::string& lines : switches) {
        const VoiceControls controls = start(lines);
        hooks.runBoth(plugin(), controls, 40);
        session.stop();
    }
}

TEST_F(Voices, PassUntouchedWithMasterOff) {
    start("master=0\r\ntransmit_gain=12\r\n", 0);
    const std::vector<short> before = VoiceBlocks(1).take(Sound::kSpeech, 960);
    std::vector<short> block = before;
    int edited = 5;
    plugin().onEditCapturedVoiceDataEvent(kSchid, block.data(), 960, 1, &edited);
    plugin().onEditPlaybackVoiceDataEvent(kSchid, 4, block.data(), 960, 1);
    EXPECT_EQ(block, before);
    EXPECT_EQ(edited, 5);
}

TEST_F(Voices, OfTheUserFollowTheCaptureModeFile) {
    const struct {
        const char* text;
        std::int32_t mode;
        bool isMarked;
    } rows[] = {
        {"full", 0, false}, {"off", 2, false}, {"", 1, false}, {"1\r\nmark\r\n", 1, true}, {"0\nmark", 0, true}};
    std::filesystem::create_directories(session.dataFolder);
    for (const auto& row : rows) {
        ASSERT_TRUE(replaceFile(session.dataFolder / "capture_mode.txt", row.text));
        VoiceControls controls = start("", row.mode);
        controls.marksEdited = row.isMarked;
        SCOPED_TRACE(row.text);
        for (int before = 0; before < 3; before++) hooks.capture(plugin(), controls, 1, before);
        session.stop();
    }
}

TEST_F(Voices, TakeANewCaptureModeWhileRunning) {
    start("", 1);
    const auto editedFlag = [&] {
        short samples[96] = {};
        int edited = 5;
        plugin().onEditCapturedVoiceDataEvent(kSchid, samples, 96, 1, &edited);
        return edited;
    };
    ASSERT_TRUE(replaceFile(session.dataFolder / "capture_mode.txt", "0"));
    EXPECT_TRUE(session.waitUntil([&] { return editedFlag() == 1; }));
    ASSERT_TRUE(replaceFile(session.dataFolder / "capture_mode.txt", "2"));
    EXPECT_TRUE(session.waitUntil([&] { return editedFlag() == 5; }));
}

TEST_F(Voices, HaveAStateOfTheirOwnOnEachThread) {
    const VoiceControls controls = start("nrSelf=1\r\nequalize=1\r\n");
    BothHooks other;
    HostThread thread;
    for (int i = 0; i < 10; i++) {
        hooks.runBoth(plugin(), controls, 3);
        thread.run([&] { other.runBoth(plugin(), controls, 5); });
    }
}

TEST_F(Voices, BeginAfreshAfterAnUnload) {
    for (int i = 0; i < 3; i++) {
        const VoiceControls controls = start("nrSelf=1\r\nequalize=1\r\n");
        BothHooks fresh;
        fresh.runBoth(plugin(), controls, 20);
        session.stop();
        session.plugin.unload();
    }
}

TEST_F(Voices, LeaveNothingBehindOnThreadsThatOutliveFiftyUnloads) {
    HostThread first, second;
    const auto loadAndUnload = [&] {
        ASSERT_TRUE(session.load());
        first.run([&] { makeState(plugin()); });
        second.run([&] { makeState(plugin()); });
        session.plugin.unload();
    };
    for (int i = 0; i < 3; i++) loadAndUnload();
    const std::size_t bytes = heapBytes();
    const int handles = handleCount();
    const DWORD slot = nextFiberSlot();
    ASSERT_GT(bytes, 0U);
    constexpr int kRounds = 50;
    for (int i = 0; i < kRounds && !HasFatalFailure(); i++) loadAndUnload();
    EXPECT_LT(heapBytes(), bytes + 200'000) << "the states of all rounds are 7 MB";
    // If each round left one behind, there would be as many as rounds; the system may have taken a few for itself.
    EXPECT_LT(handleCount(), handles + kRounds);
    EXPECT_LT(nextFiberSlot(), slot + kRounds);
}

TEST_F(Voices, GoWithTheirThread) {
    ASSERT_TRUE(session.load());
    const auto runThread = [&] { std::thread([&] { makeState(plugin()); }).join(); };
    for (int i = 0; i < 3; i++) runThread();
    const std::size_t bytes = heapBytes();
    for (int i = 0; i < 50; i++) runThread();
    EXPECT_LT(heapBytes(), bytes + 200'000) << "the states of all threads are 3.5 MB";
}
