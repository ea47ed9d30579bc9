// settings_memory_test.cpp - memory runs out while the plugin starts, saves or ends: nobody's settings are lost.
#include "audio/talk_tracker.h"
#include "audio/tones.h"
#include "bridge/command_queue.h"
#include "messages/message_store.h"
#include "plugin/host_interface.h"
#include "plugin/try_twice.h"
#include "settings/language.h"
#include "settings/settings_store.h"
#include "settings/settings_text.h"
#include "tests/memory/plentiful_fakes.h"

namespace {

constexpr const char* kFile = "C:\\Data\\settings.ini";
constexpr const char* kBackup = "C:\\Data\\settings.bak";
constexpr const char* kPython = "C:\\Program Files\\Python\\python.exe";

const std::string& mine() {
    static const std::string text = [] {
        Settings settings;
        settings.python = kPython;
        settings.theme = 2;
        settings.opacity = 60;
        return writeSettingsText(settings);
    }();
    return text;
}

struct Client {
    Client() {
        setSettingsFolders(store, "C:\\Data", "C:\\Plugins");
        files.put(kFile, mine());
    }
    Settings saved() { return readSettingsText(files.text(kFile)); }
    void click() {
        updateSettings(store, [](Settings& live) { live.pin = true; });
    }

    PlentifulFiles files;
    SettingsStore store{files};
};

template <class Body>
void tryOnce(const Body& body) {
    try {
        body();
    } catch (const std::bad_alloc&) {
    }
}

}  // namespace

TEST(ScarceMemoryAtStart, AFileThatCouldNotBeReadIsNeverWrittenOver) {
    forEveryAllocation<Client>([](Client& client) { tryOnce([&] { loadSettings(client.store); }); },
                               [](Client& client, bool) {
                                   client.click();
                                   const bool isKept = client.files.text(kBackup) == mine();
                                   EXPECT_TRUE(isKept || client.saved().theme == 2);
                                   EXPECT_TRUE(client.saved().pin);
                               });
}

TEST(ScarceMemoryAtStart, AMomentsShortageLeavesAWholeStart) {
    struct Starting : Client {
        void start() {
            loadSettings(store);
            files.replace("C:\\Data\\radio_tail.wav", wavFileOf(synthesizeTail()));
            language = chooseLanguage(copySettings(store).language, 0x0409);
            answer = hostInterfaceLine(chooseHostInterface({"ts3client_win64.exe", {}}, ""));
            applySettings(store);
        }
        std::int32_t language = -1;
        std::string answer;
    };
    for (int first = 1;; first++) {
        Starting starting;
        int refusals = 0;
        {
            const ScarceMemory scarce(first, Shortage::kOnce);
            tryTwice([&] { starting.start(); });
            refusals = ScarceMemory::refusals();
        }
        EXPECT_EQ(copySettings(starting.store).python, kPython) << first;
        EXPECT_EQ(starting.files.text("C:\\Data\\radio_tail.wav").size(), 28844u) << first;
        EXPECT_EQ(starting.language, kEnglish) << first;
        EXPECT_NE(starting.answer, "") << first;
        starting.click();
        EXPECT_FALSE(starting.files.has(kBackup)) << first;
        EXPECT_EQ(starting.saved().theme, 2) << first;
        if (refusals == 0) break;
        ASSERT_LT(first, 10'000);
    }
}

// A change that its save had no memory for counts at once, and reaches the file with the next pass.
TEST(ScarceMemoryAtAChange, TheSwitchesAreTheLiveOnesAndTheFileFollows) {
    struct Loaded : Client {
        Loaded() { loadSettings(store); }
    };
    forEveryAllocation<Loaded>(
        [](Loaded& client) {
            tryOnce([&] {
                updateSettings(client.store, [](Settings& live) {
                    live.master = false;
                    live.python = "D:\\Another folder\\of Python\\python.exe";
                });
            });
        },
        [](Loaded& client, bool wasRefused) {
            const Settings live = copySettings(client.store);
            EXPECT_EQ(client.store.AudioFlags & kAudioMaster, live.master ? kAudioMaster : 0u);
            EXPECT_EQ(live.master, live.python == kPython);  // both or neither
            if (!wasRefused) {
                EXPECT_FALSE(live.master);
            }
            const std::string before = client.files.text(kFile);
            EXPECT_TRUE(before == mine() || before == writeSettingsText(live));
            saveWhenDue(client.store, 1'000'000);
            EXPECT_EQ(client.files.text(kFile), writeSettingsText(live));
            EXPECT_EQ(client.files.names().size(), 1u);
        });
}

TEST(ScarceMemoryAtShutdown, AMomentsShortageLosesNoSettingAndForgetsAllMessages) {
    struct Ending : Client {
        Ending() {
            loadSettings(store);
            changeSettings(
                store, [](Settings& live) { live.receive_volume = 55; }, kNoSaveDue);
            addMessage(messages, "Tower", "a message that is longer than a short string", 1, 9, 1);
            enqueueOne();
        }
        void enqueueOne() {
            const MutexLock lock(radios.commands.mutex);
            radios.commands.commands.push_back({.id = "4242-1000000-long-enough", .writtenAt = 1});
        }
        void end() {
            savePendingSettings(store);
            clearMessages(messages);
            forgetAllTalk(talk, 1000);
            forgetRadios(radios);
        }
        MessageStore messages;
        TalkTracker talk;
        SimRadios radios;
    };
    forEveryAllocation<Ending>([](Ending& ending) { tryOnce([&] { tryTwice([&] { ending.end(); }); }); },
                               [](Ending& ending, bool) {
                                   EXPECT_EQ(copySettings(ending.store).receive_volume, 55.0f);
                                   ending.end();  // no lock was left behind, no state half made
                                   EXPECT_EQ(ending.saved().receive_volume, 55.0f);
                                   EXPECT_EQ(countMessages(ending.messages), 0);
                                   EXPECT_TRUE(copyCommands(ending.radios.commands).empty());
                               });
    for (int first = 1;; first++) {
        Ending ending;
        int refusals = 0;
        {
            const ScarceMemory scarce(first, Shortage::kOnce);
            tryTwice([&] { ending.end(); });
            refusals = ScarceMemory::refusals();
        }
        EXPECT_EQ(ending.saved().receive_volume, 55.0f) << first;
        EXPECT_EQ(countMessages(ending.messages), 0) << first;
        if (refusals == 0) break;
    }
}
