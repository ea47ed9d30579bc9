// dialog_life_test.cpp - how the settings dialog begins and ends: its thread, how often, in a shutdown, what is left.
#include <atomic>
#include <thread>
#include "tests/client/dialog_test.h"
#include "tests/client/resource_count_win.h"

class DialogLife : public DialogFixture {
  protected:
    bool isClassRegistered() const {
        WNDCLASSEXW description = {};
        description.cbSize = sizeof description;
        const HMODULE module = GetModuleHandleW(L"corvalis_win64.dll");
        return GetClassInfoExW(module, L"CorvalisSettingsClass", &description) != 0;
    }
    // Like the host when its user opens the plugin's configuration.
    std::thread configureOnAThread() {
        return std::thread([this] {
            hostsThreadId = GetCurrentThreadId();
            session.plugin.exports().configure(nullptr, nullptr);
            hasReturned = true;
        });
    }
    std::atomic<bool> hasReturned{false};
    std::atomic<DWORD> hostsThreadId{0};
};

TEST_F(DialogLife, IsOneHoweverOftenItIsOpened) {
    ASSERT_TRUE(session.writeSettings("panel_visible=0\r\n"));
    ASSERT_TRUE(session.start());
    openFromMenu();
    openFromMenu();
    ASSERT_TRUE(becomesOpen());
    const HWND first = findDialog();
    openFromMenu();
    session.plugin.exports().configure(nullptr, nullptr);  // returns at once: the dialog is already open
    EXPECT_EQ(findDialog(), first);
    EXPECT_EQ(countDialogs(), 1);
    dialog().command(kCancel);
    EXPECT_EQ(countDialogs(), 0);
    ASSERT_TRUE(open());  // on a new thread
    EXPECT_EQ(countDialogs(), 1);
}

TEST_F(DialogLife, OpenedBeforeInitItLoadsAndSavesTheSettings) {
    ASSERT_TRUE(session.writeSettings("theme=1\r\npanel_x=-12\r\n"));
    ASSERT_TRUE(session.load());
    std::thread hosts = configureOnAThread();
    EXPECT_TRUE(becomesOpen());
    dialog().click(kMasterToggle);
    dialog().click(kSaveAndClose);
    hosts.join();
    Settings expected;
    expected.theme = 1;
    expected.panel_x = -12;
    expected.master = false;
    expectSaved(expected);
    EXPECT_EQ(host.logLines(), std::vector<std::string>{kSavedLine});
}

TEST_F(DialogLife, ShutdownClosesIt) {
    ASSERT_TRUE(openWith(""));
    EXPECT_TRUE(isClassRegistered());
    session.stop();
    EXPECT_EQ(findDialog(), nullptr);
    EXPECT_FALSE(isClassRegistered());
    session.plugin.unload();
    ASSERT_TRUE(open());  // loads the DLL again
    session.stop();
    EXPECT_EQ(findDialog(), nullptr);
}

TEST_F(DialogLife, ShutdownOvertakesOneThatIsJustOpening) {
    ASSERT_TRUE(session.writeSettings("panel_visible=0\r\n"));
    for (int i = 0; i < 6; i++) {
        ASSERT_TRUE(session.start());
        openFromMenu();
        for (int pause = 0; pause < i; pause++) pauseBriefly();  // the dialog gets a little further each time
        session.stop();
        EXPECT_EQ(findDialog(), nullptr) << i;
        EXPECT_FALSE(isClassRegistered()) << i;
    }
}

TEST_F(DialogLife, ShutdownClosesOneOnTheHostsThread) {
    ASSERT_TRUE(session.writeSettings("panel_visible=0\r\n"));
    ASSERT_TRUE(session.start());
    std::thread hosts = configureOnAThread();
    EXPECT_TRUE(becomesOpen());
    EXPECT_FALSE(hasReturned);
    session.stop();
    EXPECT_EQ(findDialog(), nullptr);
    if (findDialog()) dialog().command(kCancel);  // so that a failed test still ends
    hosts.join();
    EXPECT_TRUE(hasReturned);
}

TEST_F(DialogLife, AShutdownWaitsAtMostASecondForAThreadOfTheHostsThatHangsInIt) {
    // That second, and what all the rest of a shutdown takes a busy machine (3.5 s with 22 programs running).
    constexpr std::uint64_t kMostMs = 10'000;
    std::atomic<bool> isHeld{false}, isReleased{false};
    host.setBeforeCall([&](const HostCall& call) {
        if (call.text != kAppliedLine) return;
        isHeld = true;
        waitFor([&] { return isReleased.load(); }, kPatienceMs);
    });
    ASSERT_TRUE(session.writeSettings("panel_visible=0\r\n"));
    ASSERT_TRUE(session.start());
    std::thread hosts = configureOnAThread();
    EXPECT_TRUE(becomesOpen());
    dialog().post(WM_COMMAND, MAKEWPARAM(kApply, 0), 0);
    EXPECT_TRUE(waitFor([&] { return isHeld.load(); }, kPatienceMs));
    const std::uint64_t beganMs = systemTickMs();
    session.stop();
    const std::uint64_t tookMs = systemTickMs() - beganMs;
    isReleased = true;
    hosts.join();
    EXPECT_GE(tookMs, 1000u);
    EXPECT_LT(tookMs, kMostMs);
    EXPECT_EQ(findDialog(), nullptr);
    ASSERT_TRUE(open());  // once it has left, there is room for the next
}

TEST_F(DialogLife, IsClosedByAShutdownWhileItIsHeldTwice) {
    ASSERT_TRUE(session.writeSettings("panel_visible=0\r\n"));
    ASSERT_TRUE(session.start());
    std::thread hosts = configureOnAThread();
    EXPECT_TRUE(becomesOpen());
    const POINT title = dialog().pointOnTitle();
    for (int i = 0; i < 2; i++) dialog().post(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(title.x, title.y));
    session.stop();
    EXPECT_TRUE(waitFor([&] { return hasReturned.load(); }, kPatienceMs));
    if (!hasReturned) PostThreadMessageW(hostsThreadId, WM_LBUTTONUP, 0, 0);  // so that a failed test still ends
    hosts.join();
}

TEST_F(DialogLife, OpensNoMoreAfterAShutdownUntilTheNextStart) {
    ASSERT_TRUE(session.writeSettings("panel_visible=0\r\n"));
    ASSERT_TRUE(session.start());
    session.stop();
    std::thread hosts = configureOnAThread();
    EXPECT_TRUE(waitFor([&] { return hasReturned || isDialogShown(); }, kPatienceMs));
    EXPECT_EQ(findDialog(), nullptr);
    if (findDialog()) dialog().command(kCancel);  // so that a failed test still ends
    hosts.join();
    EXPECT_TRUE(open());
}

TEST_F(DialogLife, OpensNoMoreOnceAShutdownHasBegun) {
    std::atomic<bool> mayHold{false}, isEnding{false};
    std::atomic<int> opened{-1};
    // The poll thread, in the midst of a pass for which the shutdown waits.
    host.setBeforeCall([&](const HostCall& call) {
        if (call.function != "getClientID" || !mayHold || opened != -1) return;
        opened = 0;
        waitFor([&] { return isEnding && !findPanel(); }, kPatienceMs);
        std::thread hosts = configureOnAThread();
        waitFor([&] { return hasReturned || isDialogShown(); }, kPatienceMs);
        opened = findDialog() ? 2 : 1;
        if (findDialog()) dialog().command(kCancel);
        hosts.join();
    });
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(session.waitUntil([] { return findPanel() != nullptr; }, kPatienceMs));
    mayHold = true;
    ASSERT_TRUE(waitFor([&] { return opened != -1; }));
    isEnding = true;
    session.stop();
    EXPECT_EQ(opened, 1);
}

// A window that goes tells the thread's loop to quit. The host's thread may go on.
TEST_F(DialogLife, OpensAgainOnTheSameThreadOfTheHosts) {
    ASSERT_TRUE(session.writeSettings("panel_visible=0\r\n"));
    ASSERT_TRUE(session.start());
    std::atomic<int> returned{0}, quits{0};
    std::thread hosts([&] {
        for (int i = 0; i < 3; i++) {
            session.plugin.exports().configure(nullptr, nullptr);
            MSG message;
            quits += PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_NOREMOVE) != FALSE;
            returned++;
        }
    });
    for (int i = 0; i < 3; i++) {
        EXPECT_TRUE(session.waitUntil([&] { return isDialogShown() && returned == i; }, kPatienceMs)) << i;
        EXPECT_TRUE(apply()) << i;
        EXPECT_EQ(returned, i);
        // Posted as by a user; a sent one would be carried out within the loop's own wait, which takes the quit
        // message.
        dialog().post(WM_CLOSE, 0, 0);
        EXPECT_TRUE(session.waitUntil([&] { return returned > i; }, kPatienceMs)) << i;
    }
    hosts.join();
    EXPECT_EQ(quits, 0);
}

TEST_F(DialogLife, AQuitMessageForTheHostsThreadEndsItAndReachesTheHost) {
    ASSERT_TRUE(session.writeSettings("panel_visible=0\r\n"));
    ASSERT_TRUE(session.start());
    constexpr WPARAM kExitCode = 7;
    std::atomic<bool> isTold{false};
    std::thread hosts([&] {
        session.plugin.exports().configure(nullptr, nullptr);
        MSG message;
        isTold = PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE) && message.wParam == kExitCode;
    });
    EXPECT_TRUE(becomesOpen());
    PostThreadMessageW(GetWindowThreadProcessId(findDialog(), nullptr), WM_QUIT, kExitCode, 0);
    hosts.join();
    EXPECT_EQ(findDialog(), nullptr);
    EXPECT_TRUE(isTold);
    ASSERT_TRUE(open());
}

// While the title bar is held, the system's own loop runs on the thread.
TEST_F(DialogLife, ShutdownClosesOneThatIsBeingMoved) {
    ASSERT_TRUE(openWith(""));
    ASSERT_TRUE(holdTitle());
    session.stop();
    EXPECT_EQ(findDialog(), nullptr);
}

TEST_F(DialogLife, OpenedAgainAndAgainItLeavesNothingBehind) {
    constexpr int kTurns = 8;
    ASSERT_TRUE(session.writeSettings("panel_visible=0\r\n"));
    ASSERT_TRUE(session.start());
    const auto openAndClose = [&] {
        ASSERT_TRUE(open());
        for (int page = 0; page < kPageCount; page++) dialog().command(kGeneralTab + page);
        dialog().command(kCancel);
        // The class goes last: until then the thread has its fonts and surface.
        ASSERT_TRUE(session.waitUntil([&] { return !isClassRegistered(); }, kPatienceMs));
    };
    for (int i = 0; i < 2; i++) openAndClose();
    const ResourceCount before = countResources();
    for (int i = 0; i < kTurns; i++) openAndClose();
    const ResourceCount after = countResources();
    // Other threads' counts vary a little; a leak with each dialog would be more.
    EXPECT_LT(after.gdiObjects - before.gdiObjects, kTurns);
    EXPECT_LT(after.userObjects - before.userObjects, kTurns);
    EXPECT_LT(after.handles - before.handles, kTurns);
}
