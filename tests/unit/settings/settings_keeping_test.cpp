// settings_keeping_test.cpp - settings.ini in bad times: held, damaged, on a full disk, written late. Nobody's settings
// are lost, and the log says what happened.
#include <gtest/gtest.h>
#include <new>
#include <vector>
#include "settings/settings_store.h"
#include "settings/settings_text.h"
#include "tests/unit/fakes.h"
#include "tests/unit/finishes_soon.h"

namespace {

constexpr const char* kFile = "C:\\Data\\settings.ini";
constexpr const char* kBackup = "C:\\Data\\settings.bak";
constexpr const char* kModuleFile = "C:\\Plugins\\settings.ini";
constexpr const char* kKept = "Corvalis keeps the settings.ini it could not read as settings.bak";
constexpr const char* kNotSaved = "Corvalis cannot save settings.ini (error 112)";

using Lines = std::vector<std::string>;

}  // namespace

class SettingsKeeping : public testing::Test {
  protected:
    SettingsKeeping() { setSettingsFolders(store, "C:\\Data", "C:\\Plugins"); }

    // Every step of that kind on that file ends so.
    void fail(FileStep failing, const std::string& file, FileResult result) {
        files.trouble = [=](FileStep step, const std::string& path) {
            return step == failing && path == file ? result : FileResult{};
        };
    }
    void fillTheDisk() {
        files.trouble = [](FileStep step, const std::string&) {
            return step == FileStep::kWrite ? FileResult{FileState::kFailed, 112} : FileResult{};
        };
    }
    FileResult load() {
        const SettingsLoad result = loadSettings(store);
        if (const std::string line = unreadSettingsLine(result); !line.empty()) log.push_back(line);
        return result;
    }
    void loadUnreadable() {
        files.put(kFile, kMine);
        fail(FileStep::kRead, kFile, {FileState::kHeld, 32});
        EXPECT_EQ(load().error, 32u);
        files.trouble = {};
        log.clear();
    }
    void click() {
        updateSettings(store, [](Settings& live) { live.pin = true; });
    }
    void turnVolume(float percent, std::uint64_t saveAtMs) {
        changeSettings(
            store, [&](Settings& live) { live.receive_volume = percent; }, saveAtMs);
    }
    Settings saved() { return readSettingsText(files.text(kFile)); }

    const std::string kMine = "theme=2\r\nopacity=60\r\n";
    MemoryFiles files;
    Lines log;
    SettingsStore store{files, [this](std::string_view line) { log.emplace_back(line); }};
};

TEST_F(SettingsKeeping, AFileThatIsHeldIsWaitedForAndThenReported) {
    files.put(kFile, kMine);
    fail(FileStep::kRead, kFile, {FileState::kHeld, 32});
    EXPECT_EQ(load().state, FileState::kHeld);
    EXPECT_GE(files.paused, 90u);
    EXPECT_LE(files.paused, kKeptPatienceMs);
    EXPECT_EQ(copySettings(store), Settings{});
    EXPECT_EQ(log,
              Lines{"Corvalis cannot read settings.ini (error 32); what could not be read has its default, and the "
                    "next save keeps the file as settings.bak"});
    EXPECT_EQ(files.replaces, 0);
    EXPECT_EQ(files.text(kFile), kMine);
}

TEST_F(SettingsKeeping, AFileThatIsHeldForAMomentIsRead) {
    files.put(kFile, kMine);
    files.trouble = [this](FileStep, const std::string&) {
        return files.paused < 70 ? FileResult{FileState::kHeld, 32} : FileResult{};
    };
    EXPECT_TRUE(load());
    EXPECT_EQ(copySettings(store).theme, 2);
    EXPECT_TRUE(log.empty());
    click();
    EXPECT_FALSE(files.has(kBackup));
}

TEST_F(SettingsKeeping, TheFirstSaveAfterAFileThatCouldNotBeReadKeepsIt) {
    loadUnreadable();
    click();
    EXPECT_EQ(files.text(kBackup), kMine);
    EXPECT_TRUE(saved().pin);
    EXPECT_EQ(log, Lines{kKept});
    updateSettings(store, [](Settings& live) { live.theme = 1; });
    EXPECT_EQ(files.text(kBackup), kMine);  // only the first
    EXPECT_EQ(files.names().size(), 2u);
    EXPECT_EQ(log, Lines{kKept});
}

TEST_F(SettingsKeeping, ASecondUnreadableFileDoesNotReplaceTheFirstOnesCopy) {
    loadUnreadable();
    click();
    const std::string second = files.text(kFile);
    fail(FileStep::kRead, kFile, {FileState::kHeld, 32});
    load();
    files.trouble = {};
    log.clear();
    click();
    EXPECT_EQ(files.text(kBackup), kMine);
    EXPECT_EQ(files.text(std::string(kBackup) + ".2"), second);
    EXPECT_EQ(log, Lines{std::string(kKept) + ".2"});
}

TEST_F(SettingsKeeping, AFileThatCannotBeKeptAsACopyIsNotReplaced) {
    loadUnreadable();
    fail(FileStep::kMove, kBackup, {FileState::kHeld, 32});
    click();
    click();
    EXPECT_EQ(files.text(kFile), kMine);
    EXPECT_EQ(log, Lines{"Corvalis cannot save settings.ini (error 32)"});
    EXPECT_TRUE(copySettings(store).pin);
    files.trouble = {};
    savePendingSettings(store);  // as the end of the plugin does
    EXPECT_EQ(files.text(kBackup), kMine);
    EXPECT_TRUE(saved().pin);
}

// Where what the live record holds is newer or was only ever there.
TEST_F(SettingsKeeping, AFileThatCannotBeReadAtALaterStartLeavesTheSettingsOfBefore) {
    files.put(kFile, kMine);
    load();
    fillTheDisk();
    turnVolume(50, kNoSaveDue);
    savePendingSettings(store);
    files.put(kModuleFile, "theme=1\r\n");
    log.clear();
    fail(FileStep::kRead, kFile, {FileState::kHeld, 32});
    files.halfRead = "theme=1\r\n";
    EXPECT_TRUE(loadSettings(store).isLiveKept);
    load();
    EXPECT_EQ(copySettings(store).theme, 2);
    EXPECT_EQ(copySettings(store).opacity, 60.0f);
    EXPECT_EQ(copySettings(store).receive_volume, 50.0f);
    EXPECT_EQ(log,
              Lines{"Corvalis cannot read settings.ini (error 32); the settings stay as they are, and the next save "
                    "keeps the file as settings.bak"});
    files.trouble = {};
    savePendingSettings(store);  // the turn still waits for its save
    EXPECT_EQ(saved().receive_volume, 50.0f);
    EXPECT_EQ(saved().theme, 2);
    EXPECT_EQ(files.text(kBackup), kMine);
}

TEST_F(SettingsKeeping, ASaveWithoutPatienceTriesThreeTimes) {
    fail(FileStep::kMove, kFile, {FileState::kHeld, 32});
    turnVolume(50, kNoSaveDue);
    savePendingSettings(store, 0);
    EXPECT_EQ(files.paused, 6u);
    savePendingSettings(store);
    EXPECT_GE(files.paused, 96u);
}

TEST_F(SettingsKeeping, AFileThatIsReadAtTheNextStartIsNotSetAside) {
    loadUnreadable();
    EXPECT_TRUE(load());
    click();
    EXPECT_EQ(saved().theme, 2);
    EXPECT_FALSE(files.has(kBackup));
}

TEST_F(SettingsKeeping, AFileWithAReadErrorHalfWayCountsAsFarAsItsLinesAreWhole) {
    files.put(kFile, "theme=2\r\nopacity=100\r\n");
    files.halfRead = "theme=2\r\nopacity=1";
    fail(FileStep::kRead, kFile, {FileState::kFailed, 23});
    EXPECT_EQ(load().error, 23u);
    EXPECT_EQ(copySettings(store).theme, 2);
    EXPECT_EQ(copySettings(store).opacity, 100.0f);  // not the 30 that "opacity=1" would be
    EXPECT_NE(log.at(0).find("(error 23)"), std::string::npos);
    files.trouble = {};
    click();
    EXPECT_EQ(files.text(kBackup), "theme=2\r\nopacity=100\r\n");
    EXPECT_EQ(saved().theme, 2);
}

TEST_F(SettingsKeeping, AnUnreadableFileIsSetAsideAlsoIfTheOlderPlaceHasOne) {
    files.put(kModuleFile, "theme=1\r\n");
    loadUnreadable();
    EXPECT_EQ(copySettings(store).theme, 1);
    click();
    EXPECT_EQ(files.text(kBackup), kMine);
    EXPECT_EQ(files.text(kModuleFile), "theme=1\r\n");
}

TEST_F(SettingsKeeping, AMissingFileIsNothingToTalkAbout) {
    EXPECT_EQ(load().state, FileState::kMissing);
    EXPECT_EQ(files.paused, 0u);
    click();
    EXPECT_TRUE(log.empty());
    EXPECT_EQ(files.names(), Lines{kFile});
}

TEST_F(SettingsKeeping, AFullDiskLeavesEverythingAsItWasAndIsLoggedOnceARun) {
    files.put(kFile, kMine);
    load();
    fillTheDisk();
    click();
    updateSettings(store, [](Settings& live) { live.theme = 1; });
    EXPECT_EQ(files.text(kFile), kMine);
    EXPECT_EQ(files.names().size(), 1u);
    EXPECT_EQ(log, Lines{kNotSaved});
    EXPECT_EQ(copySettings(store).theme, 1);
    load();  // another run
    click();
    EXPECT_EQ(log, (Lines{kNotSaved, kNotSaved}));
}

TEST_F(SettingsKeeping, AFullDiskDoesNotSetAsideWhatCouldNotBeRead) {
    loadUnreadable();
    fillTheDisk();
    click();
    EXPECT_EQ(files.text(kFile), kMine);
    EXPECT_EQ(files.names().size(), 1u);
    EXPECT_EQ(log, Lines{kNotSaved});
}

TEST_F(SettingsKeeping, WhatCouldNotBeSavedIsSavedAtTheEnd) {
    fillTheDisk();
    click();
    saveWhenDue(store, 1'000'000);  // not tried over and over
    EXPECT_FALSE(files.has(kFile));
    files.trouble = {};
    saveWhenDue(store, 2'000'000);
    EXPECT_FALSE(files.has(kFile));
    savePendingSettings(store);
    EXPECT_TRUE(saved().pin);
    const int before = files.replaces;
    savePendingSettings(store);
    EXPECT_EQ(files.replaces, before);
}

TEST_F(SettingsKeeping, WhatMemoryDidNotSufficeToSaveIsSavedAtTheEnd) {
    files.trouble = [](FileStep step, const std::string&) -> FileResult {
        if (step == FileStep::kWrite) throw std::bad_alloc();
        return {};
    };
    EXPECT_THROW(click(), std::bad_alloc);
    files.trouble = {};
    savePendingSettings(store);
    EXPECT_TRUE(saved().pin);
}

TEST_F(SettingsKeeping, ATurnIsLiveAtOnceAndInTheFileWhenItIsDue) {
    changeSettings(
        store,
        [](Settings& live) {
            live.receive_volume = 50;
            live.equalize = true;
            live.transmit_gain = 6;
        },
        1300);
    EXPECT_EQ(copySettings(store).receive_volume, 50.0f);
    EXPECT_NE(store.AudioFlags & kAudioEqualize, 0u);
    EXPECT_GT(store.TransmitGain, 1.9f);
    EXPECT_EQ(store.DspGeneration, 1u);
    saveWhenDue(store, 1299);
    EXPECT_FALSE(files.has(kFile));
    saveWhenDue(store, 1300);
    EXPECT_EQ(saved().receive_volume, 50.0f);
    saveWhenDue(store, 1400);
    EXPECT_EQ(files.replaces, 1);
}

TEST_F(SettingsKeeping, FurtherTurnsPutTheSaveOff) {
    for (std::uint64_t nowMs = 1000; nowMs < 2000; nowMs += 100) {
        turnVolume(static_cast<float>(nowMs) / 100.0f, nowMs + 300);
        saveWhenDue(store, nowMs + 99);
    }
    EXPECT_EQ(files.replaces, 0);
    saveWhenDue(store, 2200);
    EXPECT_EQ(saved().receive_volume, 19.0f);
}

TEST_F(SettingsKeeping, ATurnWithoutATimeIsSavedWithTheNextSaveOrAtTheEnd) {
    turnVolume(50, kNoSaveDue);
    saveWhenDue(store, 1'000'000);
    EXPECT_EQ(files.replaces, 0);
    click();
    EXPECT_EQ(saved().receive_volume, 50.0f);
    savePendingSettings(store);
    EXPECT_EQ(files.replaces, 1);
    turnVolume(60, kNoSaveDue);
    savePendingSettings(store);
    EXPECT_EQ(saved().receive_volume, 60.0f);
}

TEST_F(SettingsKeeping, AClickSavesADueTurnAlong) {
    turnVolume(50, 1300);
    click();
    saveWhenDue(store, 1300);
    EXPECT_EQ(saved().receive_volume, 50.0f);
    EXPECT_EQ(files.replaces, 1);
}

TEST_F(SettingsKeeping, ALoadForgetsWhatWasDue) {
    files.put(kFile, kMine);
    turnVolume(50, 1300);
    load();
    saveWhenDue(store, 1300);
    savePendingSettings(store);
    EXPECT_EQ(files.text(kFile), kMine);
}

TEST_F(SettingsKeeping, TheLogIsWrittenWhileNoLockIsHeld) {
    CallAside other;
    SettingsStore* asked = nullptr;
    bool came = false;
    SettingsStore asking(files, [&](std::string_view) {
        came = other.finishesSoon([&] { updateSettings(*asked, [](Settings& live) { live.theme = 1; }); });
    });
    asked = &asking;
    setSettingsFolders(asking, "C:\\Data", "");
    fillTheDisk();
    updateSettings(asking, [](Settings& live) { live.pin = true; });
    EXPECT_TRUE(came);
    EXPECT_EQ(copySettings(asking).theme, 1);
}

TEST_F(SettingsKeeping, ATurnDuringASaveIsSavedAfterIt) {
    files.trouble = [this](FileStep step, const std::string&) {
        if (step == FileStep::kWrite && files.replaces == 0) turnVolume(50, 1300);
        return FileResult{};
    };
    click();
    EXPECT_EQ(saved().receive_volume, 80.0f);
    saveWhenDue(store, 1300);
    EXPECT_EQ(saved().receive_volume, 50.0f);
}
