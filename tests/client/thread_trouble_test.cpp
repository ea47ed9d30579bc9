// thread_trouble_test.cpp - a system without threads or memory left for the plugin: it says so, and goes on with what
// it has.
#include <windows.h>
#include <atomic>
#include "tests/client/client_session_win.h"
#include "tests/client/import_patch_win.h"

namespace {

// Which threads' calls of malloc in the DLL get nothing, and how many have.
enum class Starved { kNobody, kMainThread, kMainThreadAtWork, kOthers };
std::atomic<Starved> gStarved{Starved::kNobody};
std::atomic<int> gRefusals{0};
DWORD gMainThread = 0;
void* (*gMalloc)(std::size_t bytes) = nullptr;  // the system's

void* scarceMalloc(std::size_t bytes) {
    // All that a thread's beginning takes. The C++ and thread libraries inside the DLL do not stand being refused more:
    // they would end the process.
    constexpr std::size_t kBeginning = 16;
    // With less than that the C++ library could not even say that memory has run out.
    constexpr std::size_t kAlwaysThere = 48;
    const bool isMain = GetCurrentThreadId() == gMainThread;
    const bool isLarge = bytes >= kAlwaysThere;
    const bool isRefused = isMain ? (gStarved == Starved::kMainThread && bytes <= kBeginning) ||
                                        (gStarved == Starved::kMainThreadAtWork && isLarge)
                                  : gStarved == Starved::kOthers && isLarge;
    if (!isRefused) return gMalloc(bytes);
    gRefusals++;
    return nullptr;
}

// The dialog's window is there, and is about to be seen.
BOOL WINAPI starveAndShow(HWND window, int how) {
    gStarved = Starved::kMainThreadAtWork;
    return ShowWindow(window, how);
}

// While it lives, starve decides who gets memory.
class ScarceMemory {
  public:
    ScarceMemory() : patch_(L"corvalis_win64.dll", "malloc", reinterpret_cast<void*>(&scarceMalloc)) {
        gMainThread = GetCurrentThreadId();
        gRefusals = 0;
        gMalloc = reinterpret_cast<void* (*)(std::size_t)>(patch_.original());
    }
    ~ScarceMemory() { gStarved = Starved::kNobody; }
    ScarceMemory(const ScarceMemory&) = delete;
    ScarceMemory& operator=(const ScarceMemory&) = delete;

    bool isInPlace() const { return patch_.isInPlace(); }

  private:
    ImportPatch patch_;
};

}  // namespace

class ThreadTrouble : public PluginTest {
  protected:
    // Loads the plugin; the system then grants `granted` threads and refuses the next `refused`.
    void load(int refused, int granted) {
        ASSERT_TRUE(session.load());
        threads_.emplace();
        if (!threads_->isWatching()) GTEST_SKIP() << "the plugin makes its threads in another way";
        threads_->refuse(refused, granted);
    }
    void TearDown() override {
        threads_.reset();
        PluginTest::TearDown();
    }
    int running() const { return threads_->running(); }
    void choose(int entry) { session.plugin.exports().onMenuItemEvent(kSchid, 0, entry, 0); }
    // How many log lines say so about this thread.
    int linesAbout(const std::string& thread) const {
        int count = 0;
        for (const std::string& line : host.logLines()) {
            const std::string start = "Corvalis cannot start its " + thread + " thread (error ";
            count += line.rfind(start, 0) == 0 && line.ends_with("); going on without it");
        }
        return count;
    }
    static bool hasPanel() { return findOwnWindow(L"CorvalisRadioPanel") != nullptr; }
    static bool hasDialog() { return findOwnWindow(L"CorvalisSettingsClass") != nullptr; }
    ::testing::AssertionResult follows() {
        const std::size_t before = host.callsOf("requestClientMove").size();
        session.tune(1, 122800);
        if (session.waitForCalls("requestClientMove", before + 1)) return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure() << "no move";
    }

  private:
    std::optional<ThreadStarts> threads_;
};

#ifdef __GLIBCXX__
// Without this the tests of threads would pass by being skipped.
TEST_F(ThreadTrouble, CanBeMadeWithThisLibrary) {
    ASSERT_TRUE(session.load());
    EXPECT_TRUE(ThreadStarts().isWatching());
    EXPECT_TRUE(ScarceMemory().isInPlace());
}
#endif

TEST_F(ThreadTrouble, WithNoneAtAllItStartsAndEndsAndTheNextStartIsWhole) {
    load(2, 0);
    if (IsSkipped() || HasFatalFailure()) return;
    ASSERT_TRUE(session.start());
    EXPECT_EQ(running(), 0);
    EXPECT_EQ(linesAbout("poll"), 1);
    EXPECT_EQ(linesAbout("UI"), 1);
    choose(2);
    EXPECT_NE(session.settings(), "");
    session.stop();
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(session.waitUntil([] { return hasPanel(); }));
    EXPECT_TRUE(follows());
}

TEST_F(ThreadTrouble, WithoutThePollThreadThePanelIsThereAndTheNextInitBringsTheThread) {
    load(1, 0);
    if (IsSkipped() || HasFatalFailure()) return;
    ASSERT_TRUE(session.start());
    EXPECT_EQ(linesAbout("poll"), 1);
    EXPECT_EQ(linesAbout("UI"), 0);
    EXPECT_TRUE(session.waitUntil([] { return hasPanel(); }));
    EXPECT_EQ(running(), 1);
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(follows());
}

TEST_F(ThreadTrouble, WithoutTheUiThreadFrequenciesAreFollowedAndTheNextInitBringsThePanel) {
    load(1, 1);
    if (IsSkipped() || HasFatalFailure()) return;
    ASSERT_TRUE(session.start());
    EXPECT_EQ(linesAbout("poll"), 0);
    EXPECT_EQ(linesAbout("UI"), 1);
    EXPECT_TRUE(follows());
    EXPECT_FALSE(hasPanel());
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(session.waitUntil([] { return hasPanel(); }));
}

TEST_F(ThreadTrouble, WithoutTheSettingsThreadTheDialogOpensAtTheNextChoice) {
    load(2, 2);
    if (IsSkipped() || HasFatalFailure()) return;
    ASSERT_TRUE(session.start());
    choose(1);
    choose(1);  // the first one left the way free for another try
    EXPECT_EQ(linesAbout("settings"), 2);
    EXPECT_FALSE(hasDialog());
    choose(1);
    EXPECT_TRUE(session.waitUntil([] { return hasDialog(); }));
    session.stop();
    EXPECT_EQ(running(), 0);
}

TEST_F(ThreadTrouble, WithoutMemoryForTheSettingsThreadTheDialogOpensAtTheNextChoice) {
    load(0, 0);
    if (IsSkipped() || HasFatalFailure()) return;
    ASSERT_TRUE(session.start());
    const ScarceMemory memory;
    if (!memory.isInPlace()) GTEST_SKIP() << "the plugin has its memory from elsewhere";
    gStarved = Starved::kMainThread;
    choose(1);
    gStarved = Starved::kNobody;
    EXPECT_GT(gRefusals, 0);
    EXPECT_EQ(linesAbout("settings"), 1);
    EXPECT_FALSE(hasDialog());
    choose(1);
    EXPECT_TRUE(session.waitUntil([] { return hasDialog(); }));
}

// The host's thread goes on afterwards: a quit message would end the host.
TEST_F(ThreadTrouble, WithoutMemoryToOpenTheDialogTheHostsThreadGetsNoQuitMessage) {
    load(2, 0);  // nobody else shows a window
    if (IsSkipped() || HasFatalFailure()) return;
    ASSERT_TRUE(session.start());
    const ScarceMemory memory;
    const ImportPatch show(L"corvalis_win64.dll", "ShowWindow", reinterpret_cast<void*>(&starveAndShow));
    if (!memory.isInPlace() || !show.isInPlace()) GTEST_SKIP() << "the plugin has its memory from elsewhere";
    session.plugin.exports().configure(nullptr, nullptr);
    gStarved = Starved::kNobody;
    EXPECT_GT(gRefusals, 0);
    EXPECT_FALSE(hasDialog());
    MSG message;
    EXPECT_FALSE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
}

TEST_F(ThreadTrouble, WithoutMemoryForItsThreadsItIsStartedNeverthelessAndTheNextInitIsWhole) {
    load(0, 0);
    if (IsSkipped() || HasFatalFailure()) return;
    const ScarceMemory memory;
    if (!memory.isInPlace()) GTEST_SKIP() << "the plugin has its memory from elsewhere";
    // The last that is said before the threads are made.
    host.setBeforeCall([](const HostCall& call) {
        if (call.text.find("Python worker") != std::string::npos && gRefusals == 0) gStarved = Starved::kMainThread;
    });
    ASSERT_TRUE(session.start());
    gStarved = Starved::kNobody;
    EXPECT_EQ(running(), 0);
    EXPECT_EQ(linesAbout("poll"), 1);
    EXPECT_EQ(linesAbout("UI"), 1);
    choose(2);  // the menu works
    EXPECT_NE(session.settings(), "");
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(session.waitUntil([] { return hasPanel(); }));
    EXPECT_TRUE(follows());
}

// Not even for what the thread needs to begin with.
TEST_F(ThreadTrouble, APollThreadWithoutMemoryTriesAgainUntilThereIsSome) {
    load(1, 1);  // no UI thread, which would begin without memory, too
    if (IsSkipped() || HasFatalFailure()) return;
    const ScarceMemory memory;
    if (!memory.isInPlace()) GTEST_SKIP() << "the plugin has its memory from elsewhere";
    gStarved = Starved::kOthers;
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(waitFor([] { return gRefusals >= 3; }));
    EXPECT_TRUE(host.callsOf("getClientID").empty());
    gStarved = Starved::kNobody;
    EXPECT_TRUE(follows());
    gStarved = Starved::kOthers;  // in the midst of its work
    const int before = gRefusals;
    EXPECT_TRUE(waitFor([&] { return gRefusals >= before + 3; }));
    gStarved = Starved::kNobody;
    session.tune(1, 121500);
    EXPECT_TRUE(session.waitForCalls("requestClientMove", 2));
}
