#include <windows.h>
#include <atomic>
#include <clocale>
#include <thread>
#include "tests/client/client_session_win.h"
#include "tests/client/import_patch_win.h"
#include "tests/client/resource_count_win.h"

namespace {

constexpr const wchar_t* kPanelClass = L"CorvalisRadioPanel";

// A thread of the host's that lives on from load to load.
class LivingThread {
  public:
    LivingThread() : thread_([this] { live(); }) {}
    ~LivingThread() {
        isLiving_ = false;
        thread_.join();
    }
    LivingThread(const LivingThread&) = delete;
    LivingThread& operator=(const LivingThread&) = delete;

    // Runs call on that thread; true once it has returned.
    bool run(void (*call)()) {
        call_ = call;
        return waitFor([this] { return call_ == nullptr; }, 30'000);
    }

  private:
    void live() {
        while (isLiving_) {
            if (void (*const call)() = call_) {
                call();
                call_ = nullptr;
            }
            pauseBriefly();
        }
    }

    std::atomic<bool> isLiving_{true};       // stored by the test
    std::atomic<void (*)()> call_{nullptr};  // stored by the test, and by the thread when it is done
    std::thread thread_;                     // last: it starts when all the others are in place
};

// What the calling thread asks the plugin, whose answer runs out of memory: an exception comes up in the DLL.
int (*gAskVersion)() = nullptr;
std::atomic<DWORD> gStarvedThread{0};
std::atomic<int> gRefusals{0};
void* (*gMalloc)(std::size_t bytes) = nullptr;  // the system's

void* scarceMalloc(std::size_t bytes) {
    // With less than that the C++ library could not even say that memory has run out, and would end the process.
    constexpr std::size_t kAlwaysThere = 48;
    if (GetCurrentThreadId() != gStarvedThread || bytes < kAlwaysThere) return gMalloc(bytes);
    gRefusals++;
    return nullptr;
}

void askWithoutMemory() {
    gStarvedThread = GetCurrentThreadId();
    gAskVersion();
    gStarvedThread = 0;
}

}  // namespace

class Lifecycle : public PluginTest {
  protected:
    // The plugin works: a tuned frequency becomes a request.
    ::testing::AssertionResult follows(std::int32_t khz, std::uint64_t channel) {
        const std::size_t before = host.callsOf("requestClientMove").size();
        session.tune(1, khz);
        if (!session.waitForCalls("requestClientMove", before + 1)) return ::testing::AssertionFailure() << "no move";
        const std::uint64_t requested = host.callsOf("requestClientMove")[before].channelId;
        if (requested != channel) return ::testing::AssertionFailure() << "moved to " << requested;
        return ::testing::AssertionSuccess();
    }
};

TEST_F(Lifecycle, WorksAgainAfterShutdownAndInit) {
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(follows(122800, kTower122800));
    ASSERT_TRUE(session.waitForArrival(kTower122800));
    session.stop();
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(follows(121500, kGround121500));
}

TEST_F(Lifecycle, WorksAgainAfterUnloadAndLoad) {
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(follows(122800, kTower122800));
    session.stop();
    session.plugin.unload();
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(follows(121500, kGround121500));
}

TEST_F(Lifecycle, ShutdownWithoutInitIsHarmless) {
    ASSERT_TRUE(session.load());
    session.plugin.exports().shutdown();
    session.plugin.exports().shutdown();
    session.plugin.exports().registerPluginID(kPluginId);
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(follows(122800, kTower122800));
}

TEST_F(Lifecycle, InitTwiceReplacesThePollThreadAndKeepsThePanel) {
    ASSERT_TRUE(session.load());
    const ThreadStarts threads;
    if (!threads.isWatching()) GTEST_SKIP() << "the plugin makes its threads in another way";
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(session.waitUntil([] { return findOwnWindow(kPanelClass) != nullptr; }));
    const void* const panel = findOwnWindow(kPanelClass);
    ASSERT_EQ(threads.running(), 2);
    ASSERT_TRUE(session.start());
    EXPECT_EQ(threads.count(), 3);
    EXPECT_EQ(threads.running(), 2);
    EXPECT_EQ(findOwnWindow(kPanelClass), panel);
    host.forgetCalls();
    EXPECT_TRUE(follows(122800, kTower122800));
    std::vector<std::uint64_t> pollThreads;
    for (const HostCall& call : host.callsOf("getClientSelfVariableAsInt")) {
        if (pollThreads.empty() || pollThreads.back() != call.threadId) pollThreads.push_back(call.threadId);
    }
    EXPECT_EQ(pollThreads.size(), 1u);
}

TEST_F(Lifecycle, HandlesDoNotGrowFromStartToStart) {
    ASSERT_TRUE(session.copyWorker(programFolder() / "fake_worker.exe"));
    const auto cycle = [&] {
        ASSERT_TRUE(session.start());
        ASSERT_TRUE(session.waitPasses(1));
        session.stop();
    };
    constexpr int kCycles = 8;
    for (int i = 0; i < 2; i++) cycle();
    const int handles = handleCount();
    ASSERT_GT(handles, 0);
    for (int i = 0; i < kCycles; i++) cycle();
    // If each start left one behind, there would be as many as starts; the system may have made a few of its own.
    EXPECT_TRUE(waitFor([&] { return handleCount() < handles + kCycles; })) << handleCount() - handles;
}

TEST_F(Lifecycle, HandlesAndThreadSlotsDoNotGrowFromLoadToLoad) {
    ASSERT_TRUE(session.copyWorker(programFolder() / "fake_worker.exe"));
    const auto cycle = [&] {
        ASSERT_TRUE(session.start());
        ASSERT_TRUE(session.waitPasses(1));
        session.stop();
        session.plugin.unload();
    };
    constexpr int kCycles = 8;
    for (int i = 0; i < 2; i++) cycle();
    const int handles = handleCount();
    const int slots = threadSlotCount();
    const int fiberSlots = fiberSlotCount();
    ASSERT_GT(slots, 0);
    for (int i = 0; i < kCycles; i++) cycle();
    // If each load left one behind, there would be as many as loads; the system may have made a few of its own.
    EXPECT_TRUE(waitFor([&] { return handleCount() < handles + kCycles; })) << handleCount() - handles;
    EXPECT_LT(threadSlotCount(), slots + kCycles);
    EXPECT_LT(fiberSlotCount(), fiberSlots + kCycles);
}

// The C++ library keeps a record of exceptions for each thread that has had one.
TEST_F(Lifecycle, WhatAnExceptionNeedsOnAThreadThatLivesOnGoesWithTheDll) {
    LivingThread thread;
    const auto cycle = [&] {
        ASSERT_TRUE(session.load());
        {
            const ImportPatch patch(L"corvalis_win64.dll", "malloc", reinterpret_cast<void*>(&scarceMalloc));
            if (!patch.isInPlace()) GTEST_SKIP() << "the plugin has its memory from elsewhere";
            gMalloc = reinterpret_cast<void* (*)(std::size_t)>(patch.original());
            gAskVersion = session.plugin.exports().apiVersion;
            ASSERT_TRUE(thread.run(askWithoutMemory));
        }
        session.plugin.unload();
    };
    constexpr int kCycles = 8;
    for (int i = 0; i < 2; i++) cycle();
    if (IsSkipped() || HasFatalFailure()) return;
    const int handles = handleCount();
    const int slots = threadSlotCount();
    const int fiberSlots = fiberSlotCount();
    gRefusals = 0;
    for (int i = 0; i < kCycles; i++) cycle();
    EXPECT_GE(gRefusals, kCycles);
    EXPECT_TRUE(waitFor([&] { return handleCount() < handles + kCycles; })) << handleCount() - handles;
    EXPECT_LT(threadSlotCount(), slots + kCycles);
    EXPECT_LT(fiberSlotCount(), fiberSlots + kCycles);
}

TEST_F(Lifecycle, TheDllLeavesTheProcessWhenUnloaded) {
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(session.waitPasses(2));
    session.stop();
    session.plugin.unload();
    EXPECT_EQ(GetModuleHandleW(L"corvalis_win64.dll"), nullptr);
    std::error_code error;
    EXPECT_TRUE(std::filesystem::remove(session.dll, error)) << error.message();
}

TEST_F(Lifecycle, UnloadedWithoutShutdownBeforeInitIsHarmless) {
    ASSERT_TRUE(session.load());
    session.plugin.unload();
    EXPECT_EQ(GetModuleHandleW(L"corvalis_win64.dll"), nullptr);
}

TEST_F(Lifecycle, AHostThatLeavesWithoutShutdownEndsAtOnce) {
    std::filesystem::copy_file(productFile("corvalis_win64.dll"), session.dll);
    const auto ready = session.machine.path / "ready.txt";
    const std::uint32_t hostId = startHost(L"--leave-host", session.dll, ready);
    ASSERT_NE(hostId, 0u);
    ASSERT_TRUE(waitFor([&] { return readFile(ready) == "ready"; }));
    EXPECT_TRUE(waitFor([&] { return !isProcessRunning(hostId); }, 30'000));
    killProcess(hostId);
}

TEST_F(Lifecycle, ProcessWideStateStaysAsTheHostSetIt) {
    const std::string locale = std::setlocale(LC_ALL, nullptr);
    const auto folder = std::filesystem::current_path();
    const UINT errorMode = GetErrorMode();
    const DWORD priority = GetPriorityClass(GetCurrentProcess());
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(follows(122800, kTower122800));
    session.plugin.exports().onMenuItemEvent(kSchid, 0, 2, 0);
    session.stop();
    EXPECT_EQ(std::setlocale(LC_ALL, nullptr), locale);
    EXPECT_EQ(std::filesystem::current_path(), folder);
    EXPECT_EQ(GetErrorMode(), errorMode);
    EXPECT_EQ(GetPriorityClass(GetCurrentProcess()), priority);
}

TEST_F(Lifecycle, APluginIdIsCopied) {
    ASSERT_TRUE(session.load());
    std::string id = "short-lived";
    session.plugin.exports().registerPluginID(id.c_str());
    id.assign("overwritten");
    ASSERT_TRUE(session.start());
    ASSERT_EQ(host.callsOf("createReturnCode").size(), 1u);
    EXPECT_EQ(host.callsOf("createReturnCode")[0].text, "short-lived");
}

TEST_F(Lifecycle, ANullPluginIdLeavesTheOneBefore) {
    ASSERT_TRUE(session.load());
    session.plugin.exports().registerPluginID(nullptr);
    ASSERT_TRUE(session.start());
    ASSERT_EQ(host.callsOf("createReturnCode").size(), 1u);
    EXPECT_EQ(host.callsOf("createReturnCode")[0].text, kPluginId);
}

TEST_F(Lifecycle, AVeryLongPluginIdIsKeptWhole) {
    ASSERT_TRUE(session.load());
    const std::string id(20'000, 'i');
    session.plugin.exports().registerPluginID(id.c_str());
    ASSERT_TRUE(session.start());
    ASSERT_EQ(host.callsOf("createReturnCode").size(), 1u);
    EXPECT_EQ(host.callsOf("createReturnCode")[0].text, id);
}
