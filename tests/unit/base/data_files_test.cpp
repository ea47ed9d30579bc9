#include "base/data_files.h"
#include <gtest/gtest.h>
#include "tests/unit/fakes.h"

namespace {

constexpr const char* kPath = "C:\\Data\\settings.ini";
constexpr const char* kAside = "C:\\Data\\settings.bak";
constexpr const char* kOld = "the old text";
constexpr const char* kNew = "a new and longer text";

using Strings = std::vector<std::string>;

}  // namespace

// Files on which a step goes wrong as often as a test wants.
class Retries : public testing::Test {
  protected:
    // The next steps of that kind end so, then they work again.
    void failNext(FileStep step, FileState state, int times) {
        steps = 0;
        files.paused = 0;
        files.trouble = [this, step, state, left = times](FileStep at, const std::string&) mutable {
            if (at == step) steps++;
            if (at != step || left == 0) return FileResult{};
            left--;
            return FileResult{state, 5};
        };
    }
    FileResult readKept() {
        std::string bytes;
        return files.readKept(kPath, bytes);
    }
    FileResult replaceKept() {
        SetAside nowhere;
        return files.replaceKept(kPath, kNew, nowhere);
    }
    FileResult read() {
        std::string bytes;
        return files.read(kPath, bytes);
    }

    MemoryFiles files;
    int steps = 0;
};

TEST_F(Retries, AreTwoWhateverIsInTheWay) {
    files.put(kPath, kOld);
    for (const FileState state : {FileState::kHeld, FileState::kFailed}) {
        failNext(FileStep::kRead, state, 2);
        EXPECT_TRUE(read());
        EXPECT_EQ(files.paused, 6u);
        failNext(FileStep::kRead, state, 3);
        EXPECT_EQ(read().state, state);
        EXPECT_EQ(steps, 3);
        for (const FileStep step : {FileStep::kWrite, FileStep::kMove}) {
            failNext(step, state, 2);
            EXPECT_TRUE(files.replace(kPath, kNew));
            EXPECT_EQ(files.paused, 6u);
            failNext(step, state, 3);
            EXPECT_EQ(files.replace(kPath, kNew).state, state);
            EXPECT_EQ(steps, 3);
        }
    }
}

TEST_F(Retries, OfWhatPeopleKeepAreTwoTooUnlessItIsHeld) {
    for (const FileStep step : {FileStep::kRead, FileStep::kWrite, FileStep::kMove}) {
        files.put(kPath, kOld);
        failNext(step, FileState::kFailed, 3);
        EXPECT_EQ((step == FileStep::kRead ? readKept() : replaceKept()).state, FileState::kFailed);
        EXPECT_EQ(steps, 3);
        EXPECT_EQ(files.paused, 6u);
    }
}

TEST_F(Retries, GoOnForAHundredMillisecondsWhileWhatPeopleKeepIsHeld) {
    for (const FileStep step : {FileStep::kRead, FileStep::kMove}) {
        for (const std::uint32_t more : {0u, 13u}) {  // a system may wake us late
            files.put(kPath, kOld);
            files.pausesTakeMore = more;
            failNext(step, FileState::kHeld, 1000);
            EXPECT_EQ((step == FileStep::kRead ? readKept() : replaceKept()).state, FileState::kHeld);
            EXPECT_GE(files.paused, 100u);
            EXPECT_LE(files.paused, 100u + more);
            EXPECT_EQ(files.text(kPath), kOld);
        }
        files.pausesTakeMore = 0;
        failNext(step, FileState::kHeld, 6);
        EXPECT_TRUE(step == FileStep::kRead ? readKept() : replaceKept());
        EXPECT_LT(files.paused, 100u);
    }
}

TEST_F(Retries, ShareOneHundredMillisecondsAmongAllStepsOfAReplacement) {
    files.put(kPath, kOld);
    SetAside aside{kAside, {}};
    files.trouble = [&](FileStep step, const std::string& path) {
        const bool isHeld = step == FileStep::kMove && (path == kPath || files.paused < 60);
        return FileResult{isHeld ? FileState::kHeld : FileState::kDone, 32};
    };
    EXPECT_FALSE(files.replaceKept(kPath, kNew, aside));
    EXPECT_LE(files.paused, 106u);  // the last step has its three tries in any case
}

TEST_F(Retries, AreNotMadeWhereWaitingDoesNotHelp) {
    for (const FileState state : {FileState::kMissing, FileState::kReadOnly}) {
        failNext(FileStep::kRead, state, 1);
        EXPECT_EQ(readKept().state, state);
        failNext(FileStep::kMove, state, 1);
        EXPECT_EQ(replaceKept().state, state);
        failNext(FileStep::kMove, state, 1);
        EXPECT_EQ(files.replace(kPath, kNew).state, state);
        EXPECT_EQ(files.paused, 0u);
    }
}

TEST(DataFiles, TellAMissingFileFromOneThatCannotBeReadToItsEnd) {
    MemoryFiles files;
    std::string bytes = "of before";
    EXPECT_EQ(files.read(kPath, bytes).state, FileState::kMissing);
    EXPECT_EQ(bytes, "");
    files.put(kPath, kOld);
    files.halfRead = "the o";
    files.trouble = [](FileStep, const std::string&) { return FileResult{FileState::kFailed, 23}; };
    const FileResult result = files.read(kPath, bytes);
    EXPECT_EQ(result.state, FileState::kFailed);
    EXPECT_EQ(result.error, 23u);
    EXPECT_EQ(bytes, "");  // half a telemetry is none
    EXPECT_EQ(files.readKept(kPath, bytes).state, FileState::kFailed);
    EXPECT_EQ(bytes, "the o");
}

TEST(DataFiles, WriteUnderANameThatNoOtherProcessUses) {
    MemoryFiles files;
    EXPECT_EQ(files.temporaryOf(kPath), "C:\\Data\\settings.ini.4242.tmp");
    Strings written;
    files.trouble = [&](FileStep step, const std::string& path) {
        if (step == FileStep::kWrite) written.push_back(path);
        return FileResult{};
    };
    EXPECT_TRUE(files.replace(kPath, kNew));
    SetAside nowhere;
    EXPECT_TRUE(files.replaceKept(kPath, kNew, nowhere));
    EXPECT_EQ(written, Strings(2, files.temporaryOf(kPath)));
    files.process = 7;
    EXPECT_EQ(files.temporaryOf(kPath), "C:\\Data\\settings.ini.7.tmp");
    EXPECT_EQ(files.names(), Strings{kPath});
}

TEST(DataFiles, LeaveNoTemporaryFileBehindWhenAReplacementFails) {
    for (const FileStep failing : {FileStep::kWrite, FileStep::kMove}) {
        MemoryFiles files;
        files.put(kPath, kOld);
        files.trouble = [&](FileStep step, const std::string& path) {
            if (step != failing) return FileResult{};
            if (step == FileStep::kWrite) files.put(path, "as much as fitted");
            return FileResult{FileState::kFailed, 112};
        };
        SetAside nowhere;
        EXPECT_EQ(files.replace(kPath, kNew).error, 112u);
        EXPECT_EQ(files.names(), Strings{kPath});
        EXPECT_EQ(files.replaceKept(kPath, kNew, nowhere).error, 112u);
        EXPECT_EQ(files.names(), Strings{kPath});
        EXPECT_EQ(files.text(kPath), kOld);
    }
}

TEST(DataFiles, SetTheOldFileAsideBesideThoseOfBefore) {
    MemoryFiles files;
    const auto setAside = [&](const std::string& old) {
        files.put(kPath, old);
        SetAside aside{kAside, {}};
        EXPECT_TRUE(files.replaceKept(kPath, kNew, aside));
        EXPECT_EQ(aside.wantedPath, "");
        EXPECT_EQ(files.text(kPath), kNew);
        EXPECT_EQ(files.text(aside.path), old);
        return aside.path;
    };
    EXPECT_EQ(setAside("first"), kAside);
    EXPECT_EQ(setAside("second"), std::string(kAside) + ".2");
    for (int i = 3; i <= 9; i++) setAside("third to ninth");
    EXPECT_EQ(setAside("tenth"), std::string(kAside) + ".9");
    EXPECT_EQ(files.text(kAside), "first");
    EXPECT_EQ(files.names().size(), 10u);
}

TEST(DataFiles, NeverReplaceAFileThatCannotBeSetAside) {
    MemoryFiles files;
    files.put(kPath, kOld);
    files.trouble = [](FileStep step, const std::string& path) {
        return step == FileStep::kMove && path == kAside ? FileResult{FileState::kHeld, 32} : FileResult{};
    };
    SetAside aside{kAside, {}};
    EXPECT_EQ(files.replaceKept(kPath, kNew, aside).error, 32u);
    EXPECT_EQ(aside.wantedPath, kAside);
    EXPECT_EQ(files.text(kPath), kOld);
    files.trouble = {};
    EXPECT_TRUE(files.replaceKept(kPath, kNew, aside));
    EXPECT_EQ(files.text(kAside), kOld);
}

TEST(DataFiles, AreNotSetAsideOnceTheyAreGone) {
    MemoryFiles files;
    SetAside aside{kAside, {}};
    EXPECT_TRUE(files.replaceKept(kPath, kNew, aside));
    EXPECT_EQ(aside.path, "");
    EXPECT_EQ(aside.wantedPath, "");
    EXPECT_EQ(files.names(), Strings{kPath});
}

TEST(DataFiles, HaveTheOldTextOrTheNewAfterAPowerCutAtAnyStep) {
    struct PowerCut {};
    for (const bool isSetAside : {false, true}) {
        int steps = 0;
        for (int cutAt = 1; steps >= cutAt - 1; cutAt++) {
            MemoryFiles files;
            files.put(kPath, kOld);
            steps = 0;
            files.trouble = [&](FileStep, const std::string&) {
                if (++steps == cutAt) throw PowerCut();
                return FileResult{};
            };
            SetAside aside{isSetAside ? kAside : "", {}};
            try {
                EXPECT_TRUE(files.replaceKept(kPath, kNew, aside));
            } catch (const PowerCut&) {
            }
            files.loseWhatIsNotOnTheDisk();
            const std::string now = files.text(kPath);
            EXPECT_TRUE(now == kOld || now == kNew || (isSetAside && !files.has(kPath))) << cutAt << ": " << now;
            if (now != kOld && isSetAside) {
                EXPECT_EQ(files.text(kAside), kOld) << cutAt;
            }
            if (steps < cutAt) {
                EXPECT_EQ(now, kNew);
            }
        }
        EXPECT_EQ(steps, isSetAside ? 3 : 2);
    }
}

TEST(DataFiles, AreTemporaryOnesOnlyWithTheNumberOfAProcess) {
    for (const char* name : {"settings.ini.1.tmp", "settings.ini.4294967295.tmp"})
        EXPECT_TRUE(isTemporaryOf(name, "settings.ini")) << name;
    for (const char* name : {"settings.ini", "settings.ini.tmp", "settings.ini..tmp", "settings.ini.4x.tmp",
                             "settings.ini.my.tmp", "settings.ini.4242.tmp.bak", "settings.ini.-4.tmp",
                             "settings.init.4.tmp", "x.settings.ini.4.tmp", "settings.ini4.tmp", "", ".tmp"})
        EXPECT_FALSE(isTemporaryOf(name, "settings.ini")) << name;
}

TEST(JoinPath, PutsOneBackslashBetweenFolderAndNameAlsoAfterASeparator) {
    EXPECT_EQ(joinPath("C:\\Data\\Corvalis", "settings.ini"), "C:\\Data\\Corvalis\\settings.ini");
    EXPECT_EQ(joinPath("C:\\Data\\", "settings.ini"), "C:\\Data\\\\settings.ini");
    EXPECT_EQ(joinPath("C:/Data/", "settings.ini"), "C:/Data/\\settings.ini");
    EXPECT_EQ(joinPath(".", "Corvalis"), ".\\Corvalis");
}

TEST(JoinPath, GivesTheBareNameForAnEmptyFolder) {
    EXPECT_EQ(joinPath("", "settings.ini"), "settings.ini");
}
