// message_memory_test.cpp - memory runs out while a text message arrives.
#include "messages/message_intake.h"
#include "plugin/host_table.h"
#include "tests/client/host_model.h"
#include "tests/memory/plentiful_fakes.h"
#include "tests/unit/messages/stored_messages.h"

namespace {

constexpr const char* kClearance = "CLEARED TO ZSPD VIA ELKUR W40 YQO, SQUAWK 4312, DEPARTURE RUNWAY 36L";
constexpr const char* kNotKept = "Corvalis has no memory to keep a text message";

class CountingOpener : public NewestMessageOpener {
  public:
    void openNewest() override { opened++; }
    int opened = 0;
};

// Three messages have come; another does.
struct Intake {
    Intake() {
        model.addServer(4, 10, 5);
        for (int i = 1; i <= 3; i++) addMessage(store, "Tower", "an earlier message of some length", 1, 9, 1);
    }
    void take() {
        takeTextMessage({"Beijing Control, Ground and Delivery", kClearance, kPrivateMessage, 9}, store, clock,
                        {host, settings, 4, alertPath, window});
    }
    bool isLogged(const std::string& start) const {
        for (const std::string& line : model.logLines())
            if (line.starts_with(start)) return true;
        return false;
    }

    ManualClock clock;
    PlentifulFiles files;
    SettingsStore settings{files};
    HostModel model{clock};
    HostFunctions host = plentifulHost(resolveHostFunctions(model.table()));
    MessageStore store;
    CountingOpener window;
    std::function<std::string()> alertPath = [] { return std::string("C:\\Data\\Corvalis\\text_alert.wav"); };
};

}  // namespace

TEST(ScarceMemoryForAMessage, OneThatFailsForAMomentCostsNoMessage) {
    int rows = 0;
    forEveryAllocation<Intake>([](Intake& intake) { intake.take(); },
                               [&](Intake& intake, bool wasRefused) {
                                   rows += wasRefused;
                                   const StoredMessages kept = storedMessages(intake.store);
                                   const bool isKept =
                                       !kept.messages.empty() && kept.messages.back().text == kClearance;
                                   EXPECT_EQ(isKept, !intake.isLogged(kNotKept));
                                   EXPECT_EQ(kept.unread, 3 + isKept);
                                   EXPECT_LE(kept.messages.size(), 4u);
                                   intake.take();  // with memory again
                                   EXPECT_EQ(storedMessages(intake.store).messages.back().text, kClearance);
                                   EXPECT_GE(intake.window.opened, 1);
                                   EXPECT_EQ(intake.model.problems(), std::vector<std::string>{});
                               });
    EXPECT_GT(rows, 4);
}

TEST(ScarceMemoryForAMessage, AMomentsShortageLosesNeitherTheMessageNorAnEarlierOne) {
    for (int first = 1;; first++) {
        Intake intake;
        int refusals = 0;
        {
            const ScarceMemory scarce(first, Shortage::kOnce);
            intake.take();
            refusals = ScarceMemory::refusals();
        }
        const StoredMessages kept = storedMessages(intake.store);
        ASSERT_EQ(kept.messages.size(), 4u) << first;
        EXPECT_EQ(kept.messages.back().text, kClearance) << first;
        EXPECT_EQ(kept.unread, 4) << first;
        if (refusals == 0) break;
    }
}

TEST(ScarceMemoryForAMessage, TheOldestMakeRoomBeforeTheNewestIsGivenUp) {
    Intake intake;
    {
        const ScarceMemory scarce(1, Shortage::kLasting);
        intake.take();
    }
    EXPECT_TRUE(storedMessages(intake.store).messages.empty());
    EXPECT_EQ(intake.store.unread, 3);
    EXPECT_TRUE(intake.isLogged(kNotKept));
}
