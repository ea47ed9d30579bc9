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
            session.plugin.exports().configure(nullptr, nullptr);
            hasReturned = true;
        });
    }
    std::atomic<bool> hasReturned{false};
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
