#include "worker/command_inbox.h"
#include <gtest/gtest.h>
#include "tests/unit/worker/worker_fakes.h"

namespace {

const std::string kPath = "C:\\data\\command.json";

struct WatchingCommands : testing::Test {
    ManualClock clock;
    MemoryFiles files;
    MemoryFolder folder{files};
    MemoryLogFile logFile;
    WorkerLog log{logFile, clock};
    CommandInbox inbox{kPath, files, folder, log};

    void put(const std::string& id, double ageSeconds = 0.0) {
        files.put(kPath, commandText(id, 1, "swap", "0", clock.unixSeconds() - ageSeconds));
    }
    std::optional<CommandRequest> next() {
        clock.advance(25);
        return inbox.next(clock.tickMs(), clock.unixSeconds());
    }
};

}  // namespace

TEST_F(WatchingCommands, HandsOutACommandOnce) {
    EXPECT_FALSE(next());
    put("1-1");
    const auto command = next();
    ASSERT_TRUE(command);
    EXPECT_EQ(command->id, "1-1");
    for (int i = 0; i < 100; i++) EXPECT_FALSE(next());
    EXPECT_EQ(logFile.text, "");
}

TEST_F(WatchingCommands, HandsOutTheNextCommand) {
    put("1-1");
    EXPECT_TRUE(next());
    put("1-2");
    EXPECT_TRUE(next());
}

TEST_F(WatchingCommands, ReadsAnUnchangedFileSeldom) {
    put("1-1");
    EXPECT_TRUE(next());
    const int before = files.reads;
    for (int i = 0; i < 40; i++) EXPECT_FALSE(next());  // one second
    EXPECT_LE(files.reads - before, 2);
}

TEST_F(WatchingCommands, FindsACommandThatTheStampHides) {
    folder.coarse = true;
    put("1-1");
    EXPECT_TRUE(next());
    put("1-2");
    bool found = false;
    for (int i = 0; i < 20 && !found; i++) found = next().has_value();  // 500 ms
    EXPECT_TRUE(found);
}

TEST_F(WatchingCommands, RefusesWhatIsOlderThanTenSecondsAndLogsItOnce) {
    put("1-1", 10.5);
    EXPECT_FALSE(next());
    put("1-1", 10.7);
    for (int i = 0; i < 50; i++) EXPECT_FALSE(next());
    EXPECT_EQ(logFile.count("command 1-1 refused: 10.5 s old"), 1);
    EXPECT_EQ(logFile.count("refused"), 1);
}

TEST_F(WatchingCommands, TakesWhatIsJustUnderTenSecondsOld) {
    put("1-1", 9.9);
    EXPECT_TRUE(next());
}

TEST_F(WatchingCommands, RefusesWhatIsStampedInTheFutureEvenWhenItsTimeComes) {
    put("1-1", -11.0);
    for (int i = 0; i < 1000; i++) EXPECT_FALSE(next());  // 25 s
    EXPECT_EQ(logFile.count("command 1-1 refused: stamped 11.0 s in the future"), 1);
    put("1-2", -9.0);
    EXPECT_TRUE(next());
}

TEST_F(WatchingCommands, RefusesTheSameIdAgain) {
    put("1-1");
    EXPECT_TRUE(next());
    put("1-1", 1.0);
    for (int i = 0; i < 50; i++) EXPECT_FALSE(next());
    EXPECT_EQ(logFile.count("command 1-1 refused: already handled"), 1);
}

TEST_F(WatchingCommands, RefusesWhatAnEarlierWorkerHandled) {
    inbox.markHandled("1-1");
    put("1-1");
    EXPECT_FALSE(next());
    EXPECT_TRUE(logFile.has("command 1-1 refused: already handled"));
}

TEST_F(WatchingCommands, IgnoresATornFileAndTakesTheWholeOneAfterIt) {
    const auto whole = commandText("1-1", 1, "swap", "0", clock.unixSeconds());
    for (std::size_t length = 0; length < whole.size(); length++) {
        files.put(kPath, whole.substr(0, length));
        EXPECT_FALSE(next()) << length;
    }
    EXPECT_EQ(logFile.count("not a whole command"), 1);
    put("1-1");
    EXPECT_TRUE(next());
    files.put(kPath, "garbage");
    EXPECT_FALSE(next());
    EXPECT_EQ(logFile.count("not a whole command"), 2);
}

TEST_F(WatchingCommands, DoesNotReadAHugeFile) {
    put("1-1");
    folder.pretendBytes[kPath] = 100'000'000;
    for (int i = 0; i < 50; i++) EXPECT_FALSE(next());
    EXPECT_EQ(files.reads, 0);
    EXPECT_EQ(logFile.count("command.json ignored: larger than a command"), 1);
    folder.pretendBytes.clear();
    EXPECT_TRUE(next());
}

// A file that has grown since its size was asked for.
TEST_F(WatchingCommands, ReadsNoMoreThanACommandCanHave) {
    struct CountingFiles : MemoryFiles {
        FileResult readOnce(const std::string& path, std::size_t maxBytes, std::string& bytes) override {
            asked = maxBytes;
            return MemoryFiles::readOnce(path, maxBytes, bytes);
        }
        std::size_t asked = 0;
    } counting;
    MemoryFolder growing{counting};
    CommandInbox watching{kPath, counting, growing, log};
    counting.put(kPath, std::string(1'000'000, ' ') + commandText("1-1", 1, "swap", "0", clock.unixSeconds()));
    growing.pretendBytes[kPath] = 100;
    EXPECT_FALSE(watching.next(1, clock.unixSeconds()));
    EXPECT_EQ(counting.asked, kMaxCommandBytes + 1);
    EXPECT_EQ(logFile.count("command.json ignored: not a whole command"), 1);
    counting.put(kPath, commandText("1-2", 1, "swap", "0", clock.unixSeconds()));
    EXPECT_TRUE(watching.next(26, clock.unixSeconds()));
}

TEST_F(WatchingCommands, TriesALockedFileAgainOnTheNextPass) {
    MemoryFiles locking;
    locking.trouble = [](FileStep, const std::string&) { return FileResult{FileState::kHeld, 32}; };
    MemoryFolder lockedFolder{locking};
    CommandInbox lockedInbox{kPath, locking, lockedFolder, log};
    locking.put(kPath, commandText("1-1", 1, "swap", "0", clock.unixSeconds()));
    EXPECT_FALSE(lockedInbox.next(1, clock.unixSeconds()));
    EXPECT_FALSE(lockedInbox.next(26, clock.unixSeconds()));
    locking.trouble = {};
    EXPECT_TRUE(lockedInbox.next(51, clock.unixSeconds()));
    EXPECT_EQ(logFile.count("command.json cannot be read"), 1);
}
