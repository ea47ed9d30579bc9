// thread_trouble_test.cpp - a system without threads left for the plugin: it says so, and goes on with those it has.
#include "tests/client/client_session_win.h"
#include "tests/client/import_patch_win.h"

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
