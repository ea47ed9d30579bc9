#include "settings/settings_store.h"
#include <gtest/gtest.h>
#include <atomic>
#include <cmath>
#include <functional>
#include <thread>
#include <vector>
#include "settings/settings_text.h"
#include "tests/unit/fakes.h"
#include "tests/unit/finishes_soon.h"

namespace {

constexpr const char* kData = "C:\\Data\\Corvalis";
constexpr const char* kModule = "C:\\Plugins";
constexpr const char* kDataFile = "C:\\Data\\Corvalis\\settings.ini";
constexpr const char* kModuleFile = "C:\\Plugins\\settings.ini";

// Looks around in the middle of a write.
class ObservingFiles : public MemoryFiles {
  public:
    std::function<void(std::string_view)> onReplace;

  protected:
    FileResult writeOnce(const std::string& path, std::string_view bytes, bool isFlushed) override {
        if (onReplace) onReplace(bytes);
        return MemoryFiles::writeOnce(path, bytes, isFlushed);
    }
};

}  // namespace

class SettingsStoreTest : public testing::Test {
  protected:
    SettingsStoreTest() { setSettingsFolders(store, kData, kModule); }
    ObservingFiles files;
    SettingsStore store{files};
};

TEST_F(SettingsStoreTest, StartsWithTheDefaultsAndTheirPublishedValues) {
    EXPECT_EQ(copySettings(store), Settings{});
    EXPECT_EQ(store.AudioFlags, 7u);
    EXPECT_EQ(store.TransmitGain, 1.0f);
    EXPECT_EQ(store.DspGeneration, 0u);
}

TEST_F(SettingsStoreTest, PublishesFlagsSevenAndUnityGainForTheDefaults) {
    store.AudioFlags = 99;
    store.TransmitGain = 0.0f;
    applySettings(store);
    EXPECT_EQ(store.AudioFlags, 7u);
    EXPECT_EQ(store.TransmitGain, 1.0f);
}

TEST_F(SettingsStoreTest, AStartThatFindsOtherSwitchesBeginsANewGeneration) {
    files.put(kDataFile, "master=0\r\nnrSelf=1\r\nequalize=1\r\n");  // edited between an end and a start
    loadSettings(store);
    EXPECT_EQ(store.DspGeneration, 0u);  // nothing is published yet
    applySettings(store);
    EXPECT_EQ(store.AudioFlags, 2u + 4u + 8u + 16u);
    EXPECT_EQ(store.DspGeneration, 1u);
    loadSettings(store);
    applySettings(store);  // the same again
    EXPECT_EQ(store.DspGeneration, 1u);
    files.put(kDataFile, "master=0\r\nnrSelf=1\r\nequalize=1\r\ntransmit_gain=6\r\n");  // no switch
    loadSettings(store);
    applySettings(store);
    EXPECT_EQ(store.DspGeneration, 1u);
}

TEST_F(SettingsStoreTest, PublishesOneBitForEachOfTheFiveSwitches) {
    Settings off;
    off.master = off.distort_self = off.distort_others = off.nrSelf = off.equalize = false;
    EXPECT_EQ(audioFlagsOf(off), 0u);
    const struct {
        bool Settings::*field;
        std::uint32_t bit;
    } rows[] = {{&Settings::master, 1},
                {&Settings::distort_self, 2},
                {&Settings::distort_others, 4},
                {&Settings::nrSelf, 8},
                {&Settings::equalize, 16}};
    for (const auto& row : rows) {
        Settings one = off;
        one.*row.field = true;
        saveSettings(store, one);
        EXPECT_EQ(store.AudioFlags, row.bit);
    }
}

TEST_F(SettingsStoreTest, PublishesTheMicrophoneGainAsALinearFactor) {
    for (const float db : {0.0f, 0.5f, 3.0f, 6.0f, 12.5f, 18.0f}) {
        Settings s;
        s.transmit_gain = db;
        saveSettings(store, s);
        EXPECT_NEAR(store.TransmitGain, std::exp(std::log(10.0) * static_cast<double>(db) / 20.0), 1e-5) << db;
    }
    EXPECT_NEAR(store.TransmitGain, 7.943, 0.001);
}

TEST_F(SettingsStoreTest, LoadsFromTheDataFolderBeforeTheModuleFolder) {
    files.put(kDataFile, "theme=1\n");
    files.put(kModuleFile, "theme=2\n");
    loadSettings(store);
    EXPECT_EQ(copySettings(store).theme, 1);
}

TEST_F(SettingsStoreTest, LoadsFromTheModuleFolderWhenTheDataFolderHasNoFile) {
    files.put(kModuleFile, "theme=2\n");
    loadSettings(store);
    EXPECT_EQ(copySettings(store).theme, 2);
}

TEST_F(SettingsStoreTest, LooksNowhereElseWhenTheModuleFolderIsUnknown) {
    setSettingsFolders(store, kData, "");
    files.put("settings.ini", "theme=2\n");
    loadSettings(store);
    EXPECT_EQ(copySettings(store).theme, 0);
    EXPECT_EQ(files.reads, 1);
}

TEST_F(SettingsStoreTest, TakesAnEmptyFileForAFileThatLacksEveryKey) {
    files.put(kDataFile, "");
    files.put(kModuleFile, "theme=2\n");
    loadSettings(store);
    EXPECT_EQ(copySettings(store), Settings{});
}

TEST_F(SettingsStoreTest, ReadsTheBareNameWhenTheDataFolderIsEmpty) {
    setSettingsFolders(store, "", "");
    files.put("settings.ini", "theme=2\n");
    loadSettings(store);
    EXPECT_EQ(copySettings(store).theme, 2);
}

TEST_F(SettingsStoreTest, LoadsTheDefaultsOverWhateverWasLiveWhenThereIsNoFile) {
    Settings s;
    s.theme = 2;
    s.python = "other.exe";
    saveSettings(store, s);
    files.remove(kDataFile);
    loadSettings(store);
    EXPECT_EQ(copySettings(store), Settings{});
}

TEST_F(SettingsStoreTest, KeysThatTheFileLacksLoadAsTheirDefaultNotAsTheyWere) {
    Settings s;
    s.opacity = 50;
    saveSettings(store, s);
    files.put(kDataFile, "theme=1\n");
    loadSettings(store);
    EXPECT_EQ(copySettings(store).opacity, 100.0f);
    EXPECT_EQ(copySettings(store).theme, 1);
}

TEST_F(SettingsStoreTest, WritesNothingWhenItLoads) {
    loadSettings(store);
    files.put(kDataFile, "theme=9\n");
    loadSettings(store);
    EXPECT_EQ(files.replaces, 0);
    EXPECT_EQ(files.text(kDataFile), "theme=9\n");
}

TEST_F(SettingsStoreTest, SavesTheRecordToTheDataFolderAndMakesItLive) {
    Settings s;
    s.theme = 2;
    s.panel_x = -5;
    saveSettings(store, s);
    EXPECT_EQ(files.text(kDataFile), writeSettingsText(s));
    EXPECT_FALSE(files.has(kModuleFile));
    EXPECT_EQ(copySettings(store), s);
}

TEST_F(SettingsStoreTest, KeepsTheOldFileButTakesTheRecordWhenItCannotBeWritten) {
    files.put(kDataFile, "theme=1\n");
    files.readOnly = true;
    Settings s;
    s.master = false;
    s.transmit_gain = 18;
    saveSettings(store, s);
    EXPECT_EQ(files.text(kDataFile), "theme=1\n");
    EXPECT_EQ(copySettings(store), s);
    EXPECT_EQ(store.AudioFlags, 6u);
    EXPECT_GT(store.TransmitGain, 7.9f);
}

TEST_F(SettingsStoreTest, ChangesOnlyWhatAnUpdateTouches) {
    Settings s;
    s.opacity = 60;
    saveSettings(store, s);
    updateSettings(store, [](Settings& live) { live.panel_visible = false; });
    s.panel_visible = false;
    EXPECT_EQ(copySettings(store), s);
    EXPECT_EQ(files.text(kDataFile), writeSettingsText(s));
}

TEST_F(SettingsStoreTest, CountsAGenerationForAChangeOfEachVoiceSwitch) {
    std::uint32_t expected = 0;
    for (bool Settings::*field : {&Settings::master, &Settings::nrSelf, &Settings::distort_self,
                                  &Settings::distort_others, &Settings::equalize}) {
        Settings s = copySettings(store);
        s.*field = !(s.*field);
        saveSettings(store, s);
        EXPECT_EQ(store.DspGeneration, ++expected);
        updateSettings(store, [&](Settings& live) { live.*field = !(live.*field); });
        EXPECT_EQ(store.DspGeneration, ++expected);
    }
}

TEST_F(SettingsStoreTest, CountsTheGenerationOnlyOnceTheNewSwitchesArePublished) {
    std::uint32_t generationBefore = 99;
    files.onReplace = [&](std::string_view) { generationBefore = store.DspGeneration; };
    updateSettings(store, [](Settings& live) { live.equalize = true; });
    EXPECT_EQ(generationBefore, 0u);
    EXPECT_EQ(store.DspGeneration, 1u);
    EXPECT_NE(store.AudioFlags & kAudioEqualize, 0u);
}

TEST_F(SettingsStoreTest, CountsOneGenerationForSeveralSwitchesChangedTogether) {
    Settings s;
    s.master = s.distort_self = s.distort_others = false;
    s.nrSelf = s.equalize = true;
    saveSettings(store, s);
    EXPECT_EQ(store.DspGeneration, 1u);
}

TEST_F(SettingsStoreTest, CountsNoGenerationForOtherSettingsOrForNoChange) {
    Settings s;
    saveSettings(store, s);
    s.transmit_gain = 12;
    s.receive_volume = 20;
    s.volume_min = 0.5f;
    saveSettings(store, s);
    s.enabled = s.tail_self = s.tail_others = s.follow_volume = s.text_alert = s.radio_lamps = false;
    s.pin = true;
    s.theme = 1;
    s.python = "x";
    saveSettings(store, s);
    saveSettings(store, s);
    EXPECT_EQ(store.DspGeneration, 0u);
}

TEST_F(SettingsStoreTest, LeavesTheRecordReadableWhileItsFileIsWritten) {
    CallAside reader;
    Settings seen;
    bool came = false;
    files.onReplace = [&](std::string_view) { came = reader.finishesSoon([&] { seen = copySettings(store); }); };
    Settings s;
    s.theme = 2;
    saveSettings(store, s);
    EXPECT_TRUE(came);
    EXPECT_EQ(seen.theme, 2);
}

TEST_F(SettingsStoreTest, PublishesOnlyAfterTheFileWork) {
    std::uint32_t flagsDuringWrite = 0;
    files.onReplace = [&](std::string_view) { flagsDuringWrite = store.AudioFlags; };
    Settings s;
    s.master = false;
    saveSettings(store, s);
    EXPECT_EQ(flagsDuringWrite, 7u);
    EXPECT_EQ(store.AudioFlags, 6u);
}

TEST_F(SettingsStoreTest, NeverWritesARecordThatIsNoLongerTheLiveOne) {
    std::atomic<int> outdated{0};
    files.onReplace = [&](std::string_view bytes) {
        for (int i = 0; i < 3; i++) std::this_thread::yield();  // gives the others a chance
        if (bytes != writeSettingsText(copySettings(store))) outdated++;
    };
    std::vector<std::thread> threads;
    for (int turn = 0; turn < 4; turn++)
        threads.emplace_back([&store = store] {
            for (int i = 0; i < 150; i++) updateSettings(store, [](Settings& live) { live.panel_x++; });
        });
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(outdated, 0);
    EXPECT_EQ(copySettings(store).panel_x, 80 + 600);
}

TEST_F(SettingsStoreTest, LosesNoUpdateAndEndsWithTheNewestRecordInTheFileWhenThreadsMeet) {
    constexpr int kTurns = 150;
    std::int32_t Settings::*const fields[] = {&Settings::panel_x, &Settings::panel_y, &Settings::bind_A,
                                              &Settings::bind_B};
    std::vector<std::thread> threads;
    for (const auto field : fields)
        threads.emplace_back([&store = store, field] {
            for (int i = 0; i < kTurns; i++) updateSettings(store, [&](Settings& live) { (live.*field)++; });
        });
    threads.emplace_back([&store = store] {
        for (int i = 0; i < kTurns; i++) updateSettings(store, [](Settings& live) { live.master = !live.master; });
    });
    threads.emplace_back([&store = store] {
        for (int i = 0; i < kTurns; i++) EXPECT_GE(copySettings(store).panel_x, 80);
    });
    for (auto& thread : threads) thread.join();
    const Settings live = copySettings(store);
    EXPECT_EQ(live.panel_x, 80 + kTurns);
    EXPECT_EQ(live.panel_y, 80 + kTurns);
    EXPECT_EQ(live.bind_A, kTurns);
    EXPECT_EQ(live.bind_B, kTurns);
    EXPECT_TRUE(live.master);  // turned an even number of times
    EXPECT_EQ(store.DspGeneration, static_cast<std::uint32_t>(kTurns));
    EXPECT_EQ(store.AudioFlags, 7u);
    EXPECT_EQ(files.text(kDataFile), writeSettingsText(live));
}

TEST_F(SettingsStoreTest, TellsOfEachChangeOnceBeforeTheFileIsWritten) {
    std::vector<std::string> steps;
    std::function<void()> look = [] {};
    SettingsStore told(files, {}, [&](const Settings& before, const Settings& now) {
        steps.push_back(std::to_string(before.radio) + " to " + std::to_string(now.radio));
        look();
    });
    files.onReplace = [&](std::string_view) { steps.emplace_back("written"); };
    setSettingsFolders(told, kData, kModule);
    look = [&] { EXPECT_EQ(copySettings(told).radio, 2); };  // the live record already has it
    updateSettings(told, [](Settings& live) { live.radio = 2; });
    EXPECT_EQ(steps, (std::vector<std::string>{"1 to 2", "written"}));
    steps.clear();
    look = [] {};
    changeSettings(
        told, [](Settings& live) { live.radio = 1; }, kNoSaveDue);
    EXPECT_EQ(steps, (std::vector<std::string>{"2 to 1"}));
    steps.clear();
    files.put(kDataFile, "radio=COM2\r\n");
    loadSettings(told);
    EXPECT_EQ(steps, (std::vector<std::string>{"1 to 2"}));
    steps.clear();
    Settings record;
    saveSettings(told, record);
    EXPECT_EQ(steps, (std::vector<std::string>{"2 to 1", "written"}));
}
