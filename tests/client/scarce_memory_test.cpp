// scarce_memory_test.cpp - memory runs out in the real DLL, at each of its allocations in turn, while it starts, runs,
// draws and ends: nothing falls over, and a moment's shortage is over the next moment. The portable rooms have the same
// in tests/memory, where memory also stays out.
// A start and an end take a while each: of their allocations every seventeenth is tried, or each of them when
// CORVALIS_EVERY_ALLOCATION is set.
#include <windows.h>
#include <atomic>
#include <cstdlib>
#include "settings/settings_text.h"
#include "tests/client/client_session_win.h"
#include "tests/client/import_patch_win.h"
#include "tests/client/panel_driver_win.h"

namespace {

constexpr int kStride = 17;

// Whose allocation gets nothing: counted down to 1.
std::atomic<DWORD> gThread{0};
std::atomic<bool> gIsOfAllOthers{false};  // than gThread
std::atomic<int> gLeft{0};
std::atomic<int> gRefusals{0};
void* (*gMalloc)(std::size_t bytes) = nullptr;  // the system's

void* scarceMalloc(std::size_t bytes) {
    const bool isThread = GetCurrentThreadId() == gThread;
    if (isThread == gIsOfAllOthers || gLeft <= 0 || --gLeft > 0) return gMalloc(bytes);
    gRefusals++;
    return nullptr;
}

// While it lives, that thread's allocation number `first` in the DLL gets nothing, or that of all others.
class Shortage {
  public:
    enum Whose { kOfThread, kOfAllOthers };
    Shortage(DWORD thread, int first, Whose whose = kOfThread) {
        gRefusals = 0;
        gThread = thread;
        gIsOfAllOthers = whose == kOfAllOthers;
        gLeft = first;
    }
    ~Shortage() { gLeft = 0; }
    Shortage(const Shortage&) = delete;
    Shortage& operator=(const Shortage&) = delete;

    static bool hasRefused() { return gRefusals > 0; }
};

DWORD panelThread() {
    return GetWindowThreadProcessId(findPanel(), nullptr);
}

}  // namespace

class ScarceMemory : public PluginTest {
  protected:
    void SetUp() override {
        ASSERT_TRUE(session.writeSettings("theme=2\r\npanel_x=40\r\n"));
        ASSERT_TRUE(session.load());
        patch_.emplace(L"corvalis_win64.dll", "malloc", reinterpret_cast<void*>(&scarceMalloc));
        if (!patch_->isInPlace()) GTEST_SKIP() << "the plugin has its memory from elsewhere";
        gMalloc = reinterpret_cast<void* (*)(std::size_t)>(patch_->original());
    }
    void TearDown() override {
        gLeft = 0;
        PluginTest::TearDown();
        patch_.reset();
    }
    static int strideOf() { return std::getenv("CORVALIS_EVERY_ALLOCATION") ? 1 : kStride; }
    // Both threads are at work, on the settings of the file.
    ::testing::AssertionResult isWhole() {
        if (!session.waitUntil([] { return findPanel() != nullptr; }))
            return ::testing::AssertionFailure() << "no panel";
        if (!session.waitPasses(1)) return ::testing::AssertionFailure() << "no pass";
        session.plugin.exports().onMenuItemEvent(kSchid, 0, 2, 0);  // saves
        const Settings saved = readSettingsText(session.settings());
        if (saved.theme != 2 || saved.panel_x != 40) return ::testing::AssertionFailure() << session.settings();
        if (std::filesystem::exists(session.dataFolder / "settings.bak"))
            return ::testing::AssertionFailure() << "settings.bak";
        return ::testing::AssertionSuccess();
    }

  private:
    std::optional<ImportPatch> patch_;
};

TEST_F(ScarceMemory, ForAMomentOfAStartLeavesItWhole) {
    bool isRefused = true;
    for (int first = 1; isRefused; first += strideOf()) {
        SCOPED_TRACE(first);
        {
            const Shortage shortage(GetCurrentThreadId(), first);
            ASSERT_TRUE(session.start());
            isRefused = Shortage::hasRefused();
        }
        ASSERT_TRUE(isWhole());
        session.stop();
        ASSERT_EQ(findPanel(), nullptr);
    }
}

TEST_F(ScarceMemory, ForAMomentOfAnEndLosesNoSettingAndLeavesNothing) {
    bool isRefused = true;
    for (int first = 1; isRefused; first++) {
        SCOPED_TRACE(first);
        ASSERT_TRUE(session.start());
        ASSERT_TRUE(session.waitUntil([] { return findPanel() != nullptr; }));
        HostTextMessage message;
        message.message = "cleared for take-off";
        session.plugin.deliver(message);
        // A turn of the wheel that waits for its save.
        PostMessageW(findPanel(), WM_MOUSEWHEEL, MAKEWPARAM(0, 120), 0);
        {
            const Shortage shortage(GetCurrentThreadId(), first);
            session.stop();
            isRefused = Shortage::hasRefused();
        }
        ASSERT_EQ(findPanel(), nullptr);
        EXPECT_EQ(readSettingsText(session.settings()).theme, 2);
    }
}

TEST_F(ScarceMemory, ForAMomentOfAMessageLosesNoMessage) {
    ASSERT_TRUE(session.start());
    bool isRefused = true;
    for (int first = 1; isRefused; first++) {
        SCOPED_TRACE(first);
        host.forgetCalls();
        HostTextMessage message;
        message.message = "CLEARED TO ZSPD VIA ELKUR W40 YQO, SQUAWK 4312, DEPARTURE RUNWAY 36L";
        {
            const Shortage shortage(GetCurrentThreadId(), first);
            session.plugin.deliver(message);
            isRefused = Shortage::hasRefused();
        }
        for (const std::string& line : host.logLines()) EXPECT_EQ(line.find("no memory"), std::string::npos) << line;
    }
    session.plugin.deliver(HostTextMessage());
    EXPECT_TRUE(isWhole());
}

TEST_F(ScarceMemory, ForAMomentOfAPassCostsThatPassAlone) {
    session.telemetry.radios[0].activeKhz = 119000;
    session.publish();
    std::atomic<DWORD> thread{0};
    host.setBeforeCall([&](const HostCall& call) {
        if (call.function == "getClientSelfVariableAsInt") thread = GetCurrentThreadId();  // only passes ask for it
    });
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(session.waitUntil([&] { return thread != 0; }));
    for (int first = 1; first <= 120; first += 3) {
        const Shortage shortage(thread, first);
        ASSERT_TRUE(session.waitUntil([] { return Shortage::hasRefused(); }));
    }
    session.tune(1, 122800);
    EXPECT_TRUE(session.waitForCalls("requestClientMove", 1));
    EXPECT_TRUE(isWhole());
    session.stop();  // the hook above ends with this test
}

TEST_F(ScarceMemory, ForAMomentOfADrawingCostsThatDrawingAlone) {
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(session.waitUntil([] { return findPanel() != nullptr; }));
    const DWORD thread = panelThread();
    for (int first = 1; first <= 40; first++) {
        session.tune(1, 118000 + first % 2 * 1000);  // something to draw
        const Shortage shortage(thread, first);
        ASSERT_TRUE(session.waitUntil([] { return Shortage::hasRefused(); }));
    }
    EXPECT_EQ(panelThread(), thread);
    EXPECT_TRUE(isWhole());
}

// The first allocations of the two threads that it makes.
TEST_F(ScarceMemory, ForTheBeginningOfItsThreadsBringsPanelAndPassesAMomentLater) {
    for (int first = 1; first <= 120; first += strideOf()) {
        SCOPED_TRACE(first);
        const Shortage shortage(GetCurrentThreadId(), first, Shortage::kOfAllOthers);
        ASSERT_TRUE(session.start());
        ASSERT_TRUE(isWhole());
        ASSERT_TRUE(session.waitUntil([] { return Shortage::hasRefused(); }));
        session.stop();
    }
}
