#include "messages/message_intake.h"
#include <gtest/gtest.h>
#include "tests/client/host_model.h"
#include "tests/unit/fakes.h"
#include "tests/unit/messages/stored_messages.h"

namespace {

constexpr const char* kAlertPath = "C:\\Data\\text_alert.wav";

class CountingOpener : public NewestMessageOpener {
  public:
    void openNewest() override { opened++; }
    int opened = 0;
};

class MessageIntake : public testing::Test {
  protected:
    MessageIntake() { model.addServer(4, 10, 5); }
    void take(const char* sender, const char* text, std::uint16_t target = kPrivateMessage, std::uint16_t id = 9) {
        takeTextMessage({sender, text, target, id}, store, clock, context());
    }
    AlertContext context() { return {host, settings, server, alertPath, window}; }
    void set(bool Settings::*field, bool value) {
        updateSettings(settings, [&](Settings& live) { live.*field = value; });
    }
    std::string logOf(const std::string& sender, const char* text = "hello") {
        model.forgetCalls();
        take(sender.c_str(), text);
        const auto lines = model.logLines();
        return lines.size() == 1 ? lines[0] : "not one line";
    }

    ManualClock clock;
    MemoryFiles files;
    SettingsStore settings{files};
    HostModel model{clock};
    HostFunctions host = resolveHostFunctions(model.table());
    MessageStore store;
    CountingOpener window;
    std::uint64_t server = 4;
    std::function<std::string()> alertPath = [this] {
        pathsAsked++;
        return kAlertPath;
    };
    int pathsAsked = 0;
};

}  // namespace

TEST_F(MessageIntake, StoresLogsAndAnnouncesInThisOrder) {
    clock.tick = 123'456;
    take("Tower", "PDC 1423", kChannelMessage, 65535);
    const StoredMessages snapshot = storedMessages(store);
    ASSERT_EQ(snapshot.messages.size(), 1U);
    EXPECT_EQ(snapshot.messages[0].sender, "Tower");
    EXPECT_EQ(snapshot.messages[0].text, "PDC 1423");
    EXPECT_EQ(snapshot.messages[0].receivedMs, 123'456U);
    EXPECT_EQ(snapshot.messages[0].target, kChannelMessage);
    EXPECT_EQ(snapshot.messages[0].senderId, 65535);
    EXPECT_EQ(snapshot.unread, 1);
    const auto calls = model.calls();
    ASSERT_EQ(calls.size(), 2U);
    EXPECT_EQ(calls[0].function, "logMessage");
    EXPECT_EQ(calls[0].text, "Corvalis text message from Tower (8 bytes)");
    EXPECT_EQ(calls[0].number, 4U);
    EXPECT_EQ(calls[0].channelText, "Corvalis");
    EXPECT_EQ(calls[1].function, "playWaveFile");
    EXPECT_EQ(calls[1].schid, 4U);
    EXPECT_EQ(calls[1].text, kAlertPath);
    EXPECT_EQ(window.opened, 1);
}

// What runs out of memory behind the store costs only itself; nothing is thrown at the host.
TEST_F(MessageIntake, KeepsAndShowsAMessageWithoutMemoryForItsChime) {
    const HostText message;
    const AlertContext here = context();
    static_assert(noexcept(takeTextMessage(message, store, clock, here)));
    static_assert(noexcept(addMessage(store, std::string_view(), std::string_view(), 0, 0, 0)));
    std::size_t keptBefore = 0;
    alertPath = [&]() -> std::string {
        keptBefore = storedMessages(store).messages.size();
        throw std::bad_alloc();
    };
    take("Tower", "PDC 1423");
    EXPECT_EQ(keptBefore, 1U);
    EXPECT_EQ(storedMessages(store).messages.size(), 1U);
    EXPECT_EQ(store.unread, 1);
    EXPECT_EQ(model.logLines().size(), 1U);
    EXPECT_TRUE(model.playedSounds().empty());
    EXPECT_EQ(window.opened, 1);
}

TEST_F(MessageIntake, AnnouncesAMessageThatItsLogLineHasNoMemoryFor) {
    host.logMessage = [](const char*, int, const char*, std::uint64_t) -> unsigned { throw std::bad_alloc(); };
    take("Tower", "PDC 1423");
    EXPECT_EQ(model.playedSounds().size(), 1U);
    EXPECT_EQ(window.opened, 1);
}

TEST_F(MessageIntake, AsksForTheChimesPathOnlyWhenItSounds) {
    take("Tower", "one");
    EXPECT_EQ(pathsAsked, 1);
    set(&Settings::text_alert, false);
    take("Tower", "two");
    set(&Settings::text_alert, true);
    server = 0;
    take("Tower", "three");
    EXPECT_EQ(pathsAsked, 1);
}

TEST_F(MessageIntake, PassesOverNothingToRead) {
    take("Tower", nullptr);
    take("Tower", "");
    take(nullptr, nullptr);
    EXPECT_TRUE(storedMessages(store).messages.empty());
    EXPECT_EQ(store.revision, 0U);
    EXPECT_TRUE(model.calls().empty());
    EXPECT_EQ(window.opened, 0);
}

TEST_F(MessageIntake, TakesASenderWithoutName) {
    take(nullptr, "hello");
    take("", "hello");
    const StoredMessages snapshot = storedMessages(store);
    ASSERT_EQ(snapshot.messages.size(), 2U);
    EXPECT_EQ(snapshot.messages[0].sender, "");
    EXPECT_EQ(snapshot.messages[1].sender, "");
    EXPECT_EQ(model.logLines()[0], "Corvalis text message from (unknown) (5 bytes)");
    EXPECT_EQ(model.logLines()[1], "Corvalis text message from  (5 bytes)");
}

TEST_F(MessageIntake, AnnouncesAsTheSettingsSay) {
    set(&Settings::text_alert, false);
    take("Tower", "one");
    EXPECT_TRUE(model.playedSounds().empty());
    EXPECT_EQ(window.opened, 1);
    set(&Settings::text_alert, true);
    set(&Settings::text_auto_open, false);
    take("Tower", "two");
    EXPECT_EQ(model.playedSounds().size(), 1U);
    EXPECT_EQ(window.opened, 1);
}

TEST_F(MessageIntake, AnAlertAloneStoresAndLogsNothing) {
    playTextAlert(context());
    EXPECT_EQ(model.playedSounds().size(), 1U);
    EXPECT_EQ(window.opened, 1);
    EXPECT_TRUE(model.logLines().empty());
    EXPECT_EQ(store.unread, 0);
}

TEST_F(MessageIntake, GoesOnWithoutHostFunctionsOrServer) {
    host = {};
    server = 0;
    take("Tower", "hello");
    EXPECT_EQ(store.unread, 1);
    EXPECT_EQ(window.opened, 1);
    EXPECT_TRUE(model.calls().empty());
}

TEST_F(MessageIntake, LogsBytesNotCharacters) {
    EXPECT_EQ(logOf("放行", "放行许可"), "Corvalis text message from 放行 (12 bytes)");
    EXPECT_EQ(logOf("a", std::string(8192, 'x').c_str()), "Corvalis text message from a (8192 bytes)");
    EXPECT_EQ(logOf("100%s%n"), "Corvalis text message from 100%s%n (5 bytes)");
}

TEST_F(MessageIntake, CutsTheLineTo255BytesAndNoCharacter) {
    const std::string start = "Corvalis text message from ";
    EXPECT_EQ(logOf(std::string(10'000, 'W')), start + std::string(255 - start.size(), 'W'));
    std::string wide;
    for (int i = 0; i < 3000; i++) wide += "放";
    EXPECT_EQ(logOf(wide), start + wide.substr(0, (255 - start.size()) / 3 * 3));
    EXPECT_EQ(storedMessages(store).messages.back().sender, wide);  // kept whole
    const std::string fits(255 - start.size() - std::string(" (5 bytes)").size(), 'n');
    EXPECT_EQ(logOf(fits), start + fits + " (5 bytes)");
}

TEST_F(MessageIntake, KeepsControlsOfANameOutOfTheLog) {
    EXPECT_EQ(logOf("a\nb\r\x01\x1B[31m\x7F"), "Corvalis text message from a?b???[31m? (5 bytes)");
    EXPECT_EQ(logOf("\u202Eevil\u2066\u0085\u2028"), "Corvalis text message from ?evil??? (5 bytes)");
    EXPECT_EQ(storedMessages(store).messages.back().sender, "\u202Eevil\u2066\u0085\u2028");
    EXPECT_EQ(logOf("\xFF\xC3("), "Corvalis text message from \xFF\xC3( (5 bytes)");
}

TEST_F(MessageIntake, TheFortyFirstPushesTheFirstOut) {
    for (int i = 0; i <= 40; i++) take("Tower", std::to_string(i).c_str());
    EXPECT_EQ(storedMessages(store).messages.size(), 40U);
    EXPECT_EQ(storedMessages(store).messages.front().text, "1");
    EXPECT_EQ(store.unread, 41);
}

TEST_F(MessageIntake, CallsTheHostOutsideTheMessageLock) {
    bool isFree = true;
    model.setBeforeCall([&](const HostCall&) { isFree = isFree && storedMessages(store).unread == 1; });
    take("Tower", "hello");  // would not return if the lock were held
    EXPECT_TRUE(isFree);
}
