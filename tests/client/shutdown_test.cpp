// shutdown_test.cpp - how the plugin ends: in which order, what becomes of the present pass, what may still be called.
#include <windows.h>
#include <atomic>
#include <thread>
#include "tests/client/client_session_win.h"
#include "tests/client/import_patch_win.h"
#include "tests/client/panel_driver_win.h"
#include "tests/client/resource_count_win.h"

namespace {

constexpr std::uint64_t kTalkMs = 130;  // long enough for a tail

bool hasWindow(const wchar_t* windowClass) {
    return findOwnWindow(windowClass) != nullptr;
}
bool hasPanel() {
    return hasWindow(L"CorvalisRadioPanel");
}
bool hasDialog() {
    const auto dialog = static_cast<HWND>(findOwnWindow(L"CorvalisSettingsClass"));
    return dialog && IsWindowVisible(dialog);
}

// The fake worker beside the DLL, from its report's name; 0 until it has written one.
std::uint32_t workerIn(const std::filesystem::path& folder) {
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        if (name.rfind("started-", 0) == 0 && entry.path().extension() == ".txt")
            return static_cast<std::uint32_t>(std::stoul(name.substr(8)));
    }
    return 0;
}

}  // namespace

class Shutdown : public PluginTest {
  protected:
    const PluginExports& plugin() const { return session.plugin.exports(); }

    void startEverything() {
        ASSERT_TRUE(session.copyWorker(programFolder() / "fake_worker.exe"));
        ASSERT_TRUE(session.start());
        plugin().onMenuItemEvent(kSchid, 0, 1, 0);
        ASSERT_TRUE(session.waitUntil([] { return hasPanel() && hasDialog(); }));
        ASSERT_TRUE(session.waitUntil([&] { return workerIn(session.pluginFolder) != 0; }));
    }
};

TEST_F(Shutdown, EndsThePanelThenThePassUnderWayThenWorkerAndDialog) {
    ASSERT_TRUE(session.load());
    ThreadStarts threads;
    if (!threads.isWatching()) GTEST_SKIP() << "the plugin makes its threads in another way";
    std::atomic<bool> mayHold{false}, isHeld{false}, isEnding{false};
    struct {
        bool panelWentFirst = false, restStayed = false, workerLived = false;
    } seen;
    std::uint32_t worker = 0;
    // The poll thread, in the midst of a pass: looks around while the shutdown waits for it.
    host.setBeforeCall([&](const HostCall& call) {
        if (call.function != "getClientID" || !mayHold || isHeld.exchange(true)) return;
        waitFor([&] { return isEnding.load(); });
        seen.panelWentFirst = waitFor([&] { return !hasPanel() && threads.running() == 2; });
        seen.restStayed = !waitFor([&] { return !hasDialog() || threads.running() < 2; }, 200);
        seen.workerLived = isProcessRunning(worker);
    });
    ASSERT_NO_FATAL_FAILURE(startEverything());
    worker = workerIn(session.pluginFolder);
    plugin().onTalkStatusChangeEvent(kSchid, 1, 0, kOtherClient);
    ASSERT_TRUE(session.waitTicks(kTalkMs));
    mayHold = true;
    ASSERT_TRUE(waitFor([&] { return isHeld.load(); }));
    plugin().onTalkStatusChangeEvent(kSchid, 0, 0, kOtherClient);
    isEnding = true;
    session.stop();
    EXPECT_TRUE(seen.panelWentFirst);
    EXPECT_TRUE(seen.restStayed);
    EXPECT_TRUE(seen.workerLived);
    // The pass was completed: the tail that came meanwhile is its last work.
    EXPECT_EQ(host.playedSounds().size(), 1u);
    EXPECT_FALSE(hasDialog());
    EXPECT_EQ(threads.running(), 0);
    EXPECT_TRUE(waitFor([&] { return !isProcessRunning(worker); }));
}

TEST_F(Shutdown, LeavesNoThreadAndNoWindowOfOurs) {
    ASSERT_TRUE(session.load());
    const ThreadStarts threads;
    if (!threads.isWatching()) GTEST_SKIP() << "the plugin makes its threads in another way";
    ASSERT_NO_FATAL_FAILURE(startEverything());
    ASSERT_TRUE(session.waitPasses(1));
    EXPECT_EQ(threads.running(), 3);  // poll, panel, dialog
    session.stop();
    EXPECT_EQ(threads.running(), 0);
    for (const wchar_t* window : {L"CorvalisRadioPanel", L"CorvalisTextMessage", L"CorvalisSettingsClass"})
        EXPECT_FALSE(hasWindow(window)) << toUtf8(window);
}

TEST_F(Shutdown, EndsWhileThePanelIsHeldTwice) {
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(session.waitUntil(hasPanel));
    const DWORD thread = GetWindowThreadProcessId(findPanel(), nullptr);
    const PanelDriver panel(findPanel(), 0);  // GENERAL, the theme of a first start
    for (int i = 0; i < 2; i++) panel.press(panel.pointOn(kBackground));
    std::atomic<bool> hasEnded{false};
    std::thread ending([&] {
        session.stop();
        hasEnded = true;
    });
    EXPECT_TRUE(waitFor([&] { return hasEnded.load(); }));
    // So that a failed test still ends.
    if (!hasEnded) PostThreadMessageW(thread, WM_LBUTTONUP, 0, 0);
    ending.join();
    EXPECT_FALSE(hasPanel());
}

TEST_F(Shutdown, NoHostFunctionIsCalledAfterwards) {
    ASSERT_TRUE(session.load());
    const ThreadStarts threads;
    session.publish();
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(session.waitForCalls("getChannelList", 1));
    session.stop();
    host.forgetCalls();
    const int made = threads.count();
    plugin().currentServerConnectionChanged(kSchid);
    plugin().onConnectStatusChangeEvent(kSchid, 4, 0);
    plugin().onTalkStatusChangeEvent(kSchid, 1, 0, kOtherClient);
    plugin().onTalkStatusChangeEvent(kSchid, 0, 0, kOtherClient);
    plugin().onClientMoveEvent(kSchid, kOtherClient, kLobby, 0, 0, "");
    plugin().onServerErrorEvent(kSchid, "", 768, "rc-corvalis-test-id-1", "");
    for (const int entry : {1, 2, 3}) plugin().onMenuItemEvent(kSchid, 0, entry, 0);
    EXPECT_EQ(session.plugin.takeMenus().size(), 3u);
    HostTextMessage message;
    message.message = "cleared for take-off";
    EXPECT_EQ(session.plugin.deliver(message), 0);
    short samples[480] = {};
    int edited = 0;
    plugin().onEditPlaybackVoiceDataEvent(kSchid, kOtherClient, samples, 480, 1);
    plugin().onEditCapturedVoiceDataEvent(kSchid, samples, 480, 1, &edited);
    plugin().onConnectStatusChangeEvent(kSchid, 0, 0);
    plugin().onConnectStatusChangeEvent(kSchid, 4, 0);  // no server is current: which one is in front?
    plugin().shutdown();
    // All of that returned at once, and no thread is left that could call later.
    EXPECT_EQ(threads.count(), made);
    EXPECT_EQ(threads.running(), 0);
    for (const HostCall& call : host.calls()) ADD_FAILURE() << call.function << " " << call.text;
}

TEST_F(Shutdown, LeavesReceivedVoicesAsTheyAreFromThenOn) {
    ASSERT_TRUE(session.writeSettings("distort_others=0\r\nfollow_volume=0\r\nreceive_volume=40\r\n"));
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(session.waitPasses(1));
    const auto heard = [&] {
        short sample = 10'000;
        plugin().onEditPlaybackVoiceDataEvent(kSchid, kOtherClient, &sample, 1, 1);
        return sample;
    };
    EXPECT_NE(heard(), 10'000);
    session.stop();
    EXPECT_EQ(heard(), 10'000);
}

TEST_F(Shutdown, WithoutInitFreesThePluginId) {
    ASSERT_TRUE(session.load());
    const std::string id(100'000, 'i');
    const auto registerAndEnd = [&] {
        plugin().registerPluginID(id.c_str());
        plugin().shutdown();
    };
    registerAndEnd();
    const std::size_t bytes = heapBytes();
    for (int i = 0; i < 40; i++) registerAndEnd();
    EXPECT_LT(heapBytes(), bytes + 1'000'000) << "the ids of all rounds are 4 MB";
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(host.callsOf("createReturnCode").empty());
}

TEST_F(Shutdown, TwiceIsHarmless) {
    ASSERT_TRUE(session.start());
    session.stop();
    plugin().shutdown();
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(session.waitPasses(1));
}

TEST_F(Shutdown, RightAfterInitEnds) {
    for (int i = 0; i < 5; i++) {
        ASSERT_TRUE(session.start());
        session.stop();
    }
}

TEST_F(Shutdown, MayComeFromAnotherThreadThanInits) {
    ASSERT_TRUE(session.start());
    session.publish();
    ASSERT_TRUE(session.waitPasses(1));
    std::atomic<bool> isDone{false};
    std::thread other([&] {
        session.stop();
        isDone = true;
    });
    EXPECT_TRUE(waitFor([&] { return isDone.load(); }, 30'000));
    other.join();
}
