// message_arrival_test.cpp - messages that arrive while the message window lays out what it is about to draw.
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
