#include <atomic>
#include <thread>
#include "tests/client/client_session_win.h"

namespace {

// One of the host's audio threads: runs both hooks until told to stop, then stays alive until told to end.
class AudioThread {
  public:
    AudioThread(const PluginExports& plugin, std::uint16_t clientId)
        : thread_([this, plugin, clientId] { run(plugin, clientId); }) {}
    ~AudioThread() { end(); }
    AudioThread(const AudioThread&) = delete;
    AudioThread& operator=(const AudioThread&) = delete;

    int blocks() const { return blocks_; }
    void stopCalling() {
        isCalling_ = false;
        waitFor([this] { return isParked_.load(); });
    }
    void end() {
        isCalling_ = false;
        isLiving_ = false;
        if (thread_.joinable()) thread_.join();
    }

  private:
    void run(const PluginExports& plugin, std::uint16_t clientId) {
        short samples[960] = {};
        while (isCalling_) {
            for (int i = 0; i < 960; i++) samples[i] = static_cast<short>(((i * 137) % 8000) - 4000);
            int edited = 0;
            plugin.onEditPlaybackVoiceDataEvent(kSchid, clientId, samples, 480, 2);
            plugin.onEditCapturedVoiceDataEvent(kSchid, samples, 960, 1, &edited);
            blocks_++;
            pauseBriefly();
        }
        isParked_ = true;
        while (isLiving_) pauseBriefly();
    }

    std::atomic<bool> isCalling_{true};  // stored by the test, loaded by the thread
    std::atomic<bool> isLiving_{true};   // same
    std::atomic<bool> isParked_{false};  // stored by the thread, loaded by the test
    std::atomic<int> blocks_{0};         // same
    std::thread thread_;                 // last: it starts when all the others are in place
};

}  // namespace

using HostThreads = PluginTest;

TEST_F(HostThreads, OfTheVoiceHooksMayOutliveTheDll) {
    ASSERT_TRUE(session.start());
    AudioThread first(session.plugin.exports(), 11), second(session.plugin.exports(), 12);
    ASSERT_TRUE(session.waitUntil([&] { return first.blocks() > 20 && second.blocks() > 20; }));
    first.stopCalling();
    second.stopCalling();
    session.stop();
    session.plugin.unload();
    first.end();  // a thread-exit routine left in the DLL would run into freed code
    second.end();
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(session.waitPasses(2));
}

TEST_F(HostThreads, MayRunTheHooksThroughStartAndShutdown) {
    ASSERT_TRUE(session.load());
    AudioThread first(session.plugin.exports(), 11), second(session.plugin.exports(), 12);
    for (int i = 0; i < 5; i++) {
        ASSERT_TRUE(session.start());
        ASSERT_TRUE(session.waitPasses(2));
        session.stop();
    }
    const int blocks = first.blocks();
    EXPECT_TRUE(waitFor([&] { return first.blocks() > blocks; }));
    first.end();
    second.end();
}

TEST_F(HostThreads, MayDeliverEventsAllAtTheSameTime) {
    ASSERT_TRUE(session.start());
    session.publish();
    std::atomic<bool> isCalling{true};
    std::atomic<int> rounds{0};
    const PluginExports plugin = session.plugin.exports();
    const auto work = [&](std::uint16_t base) {
        std::uint16_t id = base;
        while (isCalling) {
            plugin.onTalkStatusChangeEvent(kSchid, 1, 0, id);
            plugin.onConnectStatusChangeEvent(99, 0, 0);
            plugin.onServerErrorEvent(kSchid, "", 1, "rc-corvalis-test-id-1", "");
            plugin.onTalkStatusChangeEvent(kSchid, 0, 0, id);
            plugin.onClientMoveEvent(kSchid, id, kLobby, 0, 0, "");
            plugin.currentServerConnectionChanged(kSchid);
            id = static_cast<std::uint16_t>(base + (id + 1) % 100);
            rounds++;
        }
    };
    std::thread first(work, std::uint16_t{1000}), second(work, std::uint16_t{2000});
    EXPECT_TRUE(session.waitPasses(10));
    EXPECT_TRUE(session.waitUntil([&] { return rounds > 1000; }));
    isCalling = false;
    first.join();
    second.join();
    EXPECT_TRUE(session.waitPasses(2));
}
