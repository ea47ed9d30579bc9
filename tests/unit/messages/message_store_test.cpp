#include "messages/message_store.h"
#include <gtest/gtest.h>
#include <atomic>
#include <map>
#include <thread>
#include <vector>
#include "tests/unit/messages/stored_messages.h"

namespace {

void add(MessageStore& store, const std::string& text, std::uint64_t nowMs = 0) {
    addMessage(store, "Tower", text, kChannelMessage, 7, nowMs);
}

}  // namespace

TEST(MessageStore, StartsEmptyAndRead) {
    MessageStore store;
    const StoredMessages snapshot = storedMessages(store);
    EXPECT_TRUE(snapshot.messages.empty());
    EXPECT_EQ(snapshot.unread, 0);
    EXPECT_EQ(snapshot.revision, 0U);
}

TEST(MessageStore, KeepsWhatCameWithAMessage) {
    MessageStore store;
    addMessage(store, "Zoë \"EDDF\"", "CLRD TO KJFK\nSQ 1234", kPrivateMessage, 65535, 123'456'789'012ULL);
    const StoredMessages snapshot = storedMessages(store);
    ASSERT_EQ(snapshot.messages.size(), 1U);
    EXPECT_EQ(snapshot.messages[0].sender, "Zoë \"EDDF\"");
    EXPECT_EQ(snapshot.messages[0].text, "CLRD TO KJFK\nSQ 1234");
    EXPECT_EQ(snapshot.messages[0].target, kPrivateMessage);
    EXPECT_EQ(snapshot.messages[0].senderId, 65535);
    EXPECT_EQ(snapshot.messages[0].receivedMs, 123'456'789'012ULL);
}

TEST(MessageStore, ASenderMayBeEmptyButATextMayNot) {
    MessageStore store;
    addMessage(store, "Tower", "", kChannelMessage, 7, 1);
    EXPECT_EQ(storedMessages(store).messages.size(), 0U);
    EXPECT_EQ(store.unread, 0);
    EXPECT_EQ(store.revision, 0U);
    addMessage(store, "", " ", 99, 0, 1);  // a blank is a text, and any number is a target
    EXPECT_EQ(storedMessages(store).messages.size(), 1U);
    EXPECT_EQ(store.unread, 1);
    EXPECT_EQ(storedMessages(store).messages[0].target, 99U);
}

TEST(MessageStore, KeepsThemOldestFirstAndCountsEach) {
    MessageStore store;
    for (int i = 0; i < 3; i++) add(store, std::to_string(i), static_cast<std::uint64_t>(i));
    const StoredMessages snapshot = storedMessages(store);
    ASSERT_EQ(snapshot.messages.size(), 3U);
    for (std::size_t i = 0; i < 3; i++) EXPECT_EQ(snapshot.messages[i].text, std::to_string(i));
    EXPECT_EQ(snapshot.unread, 3);
    EXPECT_EQ(snapshot.revision, 3U);
}

TEST(MessageStore, TheFortyFirstPushesTheFirstOutAndStillCountsAsUnread) {
    MessageStore store;
    for (int i = 0; i < 40; i++) add(store, std::to_string(i));
    EXPECT_EQ(storedMessages(store).messages.front().text, "0");
    add(store, "40");
    const StoredMessages snapshot = storedMessages(store);
    ASSERT_EQ(snapshot.messages.size(), 40U);
    EXPECT_EQ(snapshot.messages.front().text, "1");
    EXPECT_EQ(snapshot.messages.back().text, "40");
    EXPECT_EQ(snapshot.unread, 41);
    EXPECT_EQ(snapshot.revision, 41U);
    for (int i = 41; i < 500; i++) add(store, std::to_string(i));
    EXPECT_EQ(storedMessages(store).messages.size(), 40U);
    EXPECT_EQ(storedMessages(store).messages.front().text, "460");
}

TEST(MessageStore, ClearingForgetsAllAndTellsHowManyWereUnread) {
    MessageStore store;
    for (int i = 0; i < 5; i++) add(store, "text");
    store.unread = 2;  // three have been seen
    EXPECT_EQ(clearMessages(store), 2);
    const StoredMessages snapshot = storedMessages(store);
    EXPECT_TRUE(snapshot.messages.empty());
    EXPECT_EQ(snapshot.unread, 0);
    EXPECT_EQ(snapshot.revision, 6U);  // a window has to redraw
    EXPECT_EQ(clearMessages(store), 0);
    EXPECT_EQ(store.revision, 7U);
    add(store, "again");
    EXPECT_EQ(storedMessages(store).messages.size(), 1U);
    EXPECT_EQ(store.unread, 1);
}

TEST(MessageStore, APageIsAMessageCountedFromTheNewest) {
    MessageStore store;
    EXPECT_EQ(countMessages(store), 0);
    EXPECT_EQ(copyPage(store, 3).count, 0);
    EXPECT_EQ(copyPage(store, 3).page, 0);
    EXPECT_EQ(copyPage(store, 3).message.text, "");
    for (int i = 0; i < 3; i++) add(store, std::to_string(i));
    EXPECT_EQ(countMessages(store), 3);
    const struct {
        std::int32_t asked, page;
        const char* text;
    } rows[] = {{0, 0, "2"}, {1, 1, "1"}, {2, 2, "0"}, {3, 2, "0"}, {1000, 2, "0"}, {-1, 0, "2"}};
    for (const auto& row : rows) {
        const PageSnapshot snapshot = copyPage(store, row.asked);
        EXPECT_EQ(snapshot.message.text, row.text) << row.asked;
        EXPECT_EQ(snapshot.page, row.page) << row.asked;
        EXPECT_EQ(snapshot.count, 3) << row.asked;
        EXPECT_EQ(snapshot.revision, 3U) << row.asked;
    }
}

TEST(MessageStore, FindsAMessageByItsNumberUntilItIsGone) {
    MessageStore store;
    EXPECT_FALSE(copyNumbered(store, 0));
    const std::uint32_t first = addMessage(store, "Tower", "first", kChannelMessage, 7, 0);
    EXPECT_EQ(addMessage(store, "Tower", "", kChannelMessage, 7, 0), 0U);
    const std::uint32_t second = addMessage(store, "Tower", "second", kChannelMessage, 7, 0);
    EXPECT_NE(first, second);
    EXPECT_EQ(copyNumbered(store, first)->page, 1);
    EXPECT_EQ(copyNumbered(store, first)->message.text, "first");
    EXPECT_EQ(copyNumbered(store, second)->page, 0);
    EXPECT_FALSE(copyNumbered(store, second + 1));
    EXPECT_FALSE(copyNumbered(store, 0));
    for (int i = 0; i < 38; i++) add(store, "more");
    EXPECT_EQ(copyNumbered(store, first)->page, 39);
    EXPECT_EQ(copyNumbered(store, first)->count, 40);
    EXPECT_EQ(copyNumbered(store, first)->revision, 40U);
    add(store, "one too many");
    EXPECT_FALSE(copyNumbered(store, first));
    EXPECT_EQ(copyNumbered(store, second)->message.text, "second");
    clearMessages(store);
    EXPECT_FALSE(copyNumbered(store, second));
    const std::uint32_t later = addMessage(store, "Tower", "later", kChannelMessage, 7, 0);
    EXPECT_FALSE(copyNumbered(store, second));
    EXPECT_EQ(copyNumbered(store, later)->message.text, "later");
}

TEST(MessageStore, ACopyStaysAsItWas) {
    MessageStore store;
    add(store, "first");
    const PageSnapshot snapshot = copyPage(store, 0);
    add(store, "second");
    clearMessages(store);
    EXPECT_EQ(snapshot.message.text, "first");
    EXPECT_EQ(snapshot.count, 1);
    EXPECT_EQ(snapshot.revision, 1U);
}

TEST(MessageStore, TakesMessagesFromSeveralThreadsWhileAnotherReads) {
    constexpr int kSenders = 4;
    constexpr int kEach = 500;
    MessageStore store;
    std::atomic<bool> stop{false};
    int tooMany = 0;
    int outOfOrder = 0;
    std::thread reader([&] {
        while (!stop) {
            const StoredMessages snapshot = storedMessages(store);
            if (snapshot.messages.size() > kMaxMessages || copyPage(store, 1000).count > 40) tooMany++;
            std::map<std::string, std::uint64_t> last;
            for (const TextMessage& message : snapshot.messages) {
                if (message.receivedMs <= last[message.sender]) outOfOrder++;
                last[message.sender] = message.receivedMs;
            }
            std::this_thread::yield();
        }
    });
    std::vector<std::thread> senders;
    for (int sender = 0; sender < kSenders; sender++)
        senders.emplace_back([&store, name = "sender " + std::to_string(sender)] {
            for (std::uint64_t i = 1; i <= kEach; i++)
                addMessage(store, name, "a text longer than what a string holds in itself", kServerMessage, 1, i);
        });
    for (std::thread& sender : senders) sender.join();
    stop = true;
    reader.join();
    EXPECT_EQ(tooMany, 0);
    EXPECT_EQ(outOfOrder, 0);
    EXPECT_EQ(store.unread, kSenders * kEach);
    EXPECT_EQ(store.revision, static_cast<std::uint32_t>(kSenders * kEach));
    EXPECT_EQ(storedMessages(store).messages.size(), kMaxMessages);
}

TEST(MessageStore, ClearingBetweenMessagesOfOthersLosesNoCount) {
    constexpr int kEach = 2000;
    MessageStore store;
    std::atomic<std::int32_t> taken{0};
    std::thread sender([&] {
        for (int i = 0; i < kEach; i++) add(store, "text");
    });
    std::thread clearer([&] {
        for (int i = 0; i < 300; i++) taken += clearMessages(store);
    });
    sender.join();
    clearer.join();
    EXPECT_EQ(taken + store.unread, kEach);
    EXPECT_EQ(store.revision, static_cast<std::uint32_t>(kEach + 300));
}
