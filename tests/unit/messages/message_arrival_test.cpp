// message_arrival_test.cpp - messages that arrive while the message window opens, or lays out what it is about to draw.
#include <random>
#include <set>
#include "tests/unit/messages/message_rig.h"

namespace {

class MessageArrival : public MessageRig {
  protected:
    // During each of the next layouts one message arrives.
    void letArrive(int count) {
        arriving_ = count;
        screen.whileMeasuring = [this] {
            if (arriving_ == 0 || paintedBefore_ == screen.painted) return;
            paintedBefore_ = screen.painted;
            arriving_--;
            add("message " + std::to_string(++last_));
        };
    }
    void addMore(int count) {
        for (int i = 0; i < count; i++) add("message " + std::to_string(++last_));
    }
    int last() const { return last_; }

  private:
    int last_ = 0;
    int arriving_ = 0;
    int paintedBefore_ = -1;
};

}  // namespace

TEST_F(MessageArrival, OneIsShownAtTheNextTick) {
    addMore(1);
    model.show();
    letArrive(1);
    addMore(1);
    tick();
    EXPECT_EQ(counter(), "1 / 2");  // as it was laid out
    EXPECT_EQ(firstRow(), "message 2");
    tick();
    EXPECT_EQ(counter(), "1 / 3");
    EXPECT_EQ(firstRow(), "message 3");
    EXPECT_EQ(unread(), "UNREAD 2");
    EXPECT_TRUE(screen.isShown);
    screen.takePainted();
    tick();
    EXPECT_EQ(screen.takePainted(), 0);
}

TEST_F(MessageArrival, OneThatComesAsTheWindowOpensIsShownAtTheNextTick) {
    addMore(1);
    letArrive(1);
    model.show();
    EXPECT_EQ(counter(), "1 / 1");
    tick();
    EXPECT_EQ(counter(), "1 / 2");
    EXPECT_EQ(firstRow(), "message 2");
    EXPECT_EQ(unread(), "UNREAD 1");
    EXPECT_EQ(dotColour(), kAmber);
}

TEST_F(MessageArrival, SeveralInARowAreShownAsTheyCome) {
    addMore(1);
    model.show();
    letArrive(5);
    addMore(1);
    for (int shown = 2; shown <= 7; shown++) {
        tick();
        EXPECT_EQ(counter(), "1 / " + std::to_string(shown));
        EXPECT_EQ(firstRow(), "message " + std::to_string(shown));
    }
    EXPECT_EQ(last(), 7);
    EXPECT_EQ(unread(), "UNREAD 6");
}

TEST_F(MessageArrival, ManyAtOneLayoutAreShownTogether) {
    addMore(1);
    model.show();
    int arriving = 60;
    screen.whileMeasuring = [&] {
        while (arriving-- > 0) addMore(1);
    };
    addMore(1);
    tick();
    EXPECT_EQ(counter(), "1 / 2");
    tick();
    EXPECT_EQ(counter(), "1 / 40");
    EXPECT_EQ(firstRow(), "message 62");
    EXPECT_EQ(unread(), "UNREAD 61");
}

TEST_F(MessageArrival, OneBehindATurnedPageMovesThePageOn) {
    addMore(3);
    model.show();
    letArrive(1);
    press(MessageKey::kUp);
    EXPECT_EQ(counter(), "2 / 3");
    EXPECT_EQ(firstRow(), "message 2");
    tick();
    EXPECT_EQ(counter(), "2 / 4");
    EXPECT_EQ(firstRow(), "message 3");
}

TEST_F(MessageArrival, AClearDuringLayoutEmptiesThePageAtTheNextTick) {
    addMore(3);
    model.show();
    bool isCleared = false;
    screen.whileMeasuring = [&] {
        if (!std::exchange(isCleared, true)) clearMessages(store);
    };
    press(MessageKey::kUp);
    EXPECT_EQ(counter(), "2 / 3");
    tick();
    EXPECT_TRUE(isEmptyPage());
    EXPECT_EQ(dotColour(), kBrightGreen);
}

// After a clear and new messages, the page number is beyond the last message: the page moves, and the picture drawn is
// the one that made it move.
TEST_F(MessageArrival, OneDuringALayoutThatMovesThePageIsShownAtTheNextTick) {
    addMore(10);
    model.show();
    press(MessageKey::kUp, 5);
    clearMessages(store);
    addMore(2);
    letArrive(1);
    tick();
    EXPECT_EQ(counter(), "2 / 2");
    EXPECT_EQ(firstRow(), "message 11");
    tick();
    EXPECT_EQ(counter(), "2 / 3");
    EXPECT_EQ(firstRow(), "message 12");
    screen.takePainted();
    tick();
    EXPECT_EQ(screen.takePainted(), 0);
}

namespace {

// The host's thread and the window's, as they meet: a message asks for the window if that is not visible yet; the
// window carries the requests out in turn, then ticks.
class MessageOpening : public MessageRig {
  protected:
    using IsDue = std::function<bool(const std::string& step)>;

    // The first message opens the hidden window; the second arrives at the first step for which isDue() holds. Tells
    // which step that was.
    std::string openWithTwo(const IsDue& isDue) {
        std::string secondAt;
        const auto pass = [&](const std::string& step) {
            steps_++;
            if (secondAt.empty() && isDue(step)) {
                secondAt = step;
                arrive();
            }
            if (step == "place") read_ = arrived_;  // what has come by now is on the page that opens
        };
        steps_ = 0;
        screen.onStep = pass;
        arrive();
        pass("asked");
        carryOut();
        while (secondAt.empty()) {
            tick();
            pass("shown");
        }
        carryOut();
        screen.onStep = nullptr;
        tick();
        return secondAt;
    }
    void expectNewest(const std::string& what) {
        const int count = std::min(arrived_, static_cast<int>(kMaxMessages));
        const int unreadCount = arrived_ - read_;
        EXPECT_EQ(firstRow(), "message " + std::to_string(arrived_)) << what;
        EXPECT_EQ(counter(), "1 / " + std::to_string(count)) << what;
        EXPECT_EQ(store.unread, unreadCount) << what;
        EXPECT_EQ(unread(), unreadCount == 0 ? "" : "UNREAD " + std::to_string(unreadCount)) << what;
        EXPECT_EQ(dotColour(), unreadCount == 0 ? kBrightGreen : kAmber) << what;
        EXPECT_TRUE(screen.isShown) << what;
        EXPECT_TRUE(isVisible) << what;
    }
    int steps() const { return steps_; }

  private:
    void arrive() {
        add("message " + std::to_string(++arrived_));
        if (!isVisible) asked_++;
    }
    void carryOut() {
        for (; asked_ > 0; asked_--) model.showNewest();
    }

    int arrived_ = 0;
    int read_ = 0;
    int asked_ = 0;
    int steps_ = 0;
};

}  // namespace

TEST_F(MessageOpening, ShowsTheNewestWhateverStepTheSecondArrivesAt) {
    std::set<std::string> seen;
    for (int wanted = 1; seen.count("shown") == 0; wanted++) {
        model.hide();
        const std::string at = openWithTwo([&](const std::string&) { return steps() == wanted; });
        expectNewest(at + ", step " + std::to_string(wanted));
        seen.insert(at);
    }
    EXPECT_EQ(seen, (std::set<std::string>{"asked", "place", "prepare", "measure", "paint", "invalidate", "update",
                                           "appear", "shown"}));
}

TEST_F(MessageOpening, ShowsTheNewestOfTwoUpToTwentyMillisecondsApart) {
    std::mt19937 random(20'260'928);
    const auto upTo = [&](int most) { return std::uniform_int_distribution<int>(0, most)(random); };
    std::set<std::string> seen;
    for (int i = 0; i < 500; i++) {
        model.hide();
        const int gapMs = upTo(20);
        const std::uint64_t dueMs = clock.tickMs() + static_cast<std::uint64_t>(gapMs);
        const int slowest = upTo(8);  // a step of a quick machine, or of a busy one
        seen.insert(openWithTwo([&](const std::string&) {
            const bool isDue = clock.tickMs() >= dueMs;
            clock.advance(static_cast<std::uint64_t>(upTo(slowest)));
            return isDue;
        }));
        expectNewest("opening " + std::to_string(i) + ", " + std::to_string(gapMs) + " ms apart");
    }
    for (const char* step : {"asked", "measure", "update"}) EXPECT_EQ(seen.count(step), 1U) << step;  // early and late
}
