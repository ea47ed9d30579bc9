// message_asked_for_test.cpp - a message that somebody asks for by its number, as the dialog's preview does: it is on
// the page at the end, whatever was there before and whatever arrives meanwhile.
#include "tests/unit/messages/message_rig.h"

namespace {

class MessageAskedFor : public MessageRig {
  protected:
    std::uint32_t addSample() { return addMessage(store, "Tower", "sample", kPrivateMessage, 0, clock.tickMs()); }
};

}  // namespace

TEST_F(MessageAskedFor, IsShownWhateverTheWindowShowedBefore) {
    const std::function<void()> before[] = {[] {}, [&] { model.show(); },
                                            [&] {
                                                model.show();
                                                press(MessageKey::kUp, 2);
                                            },
                                            [&] {
                                                model.show();
                                                press(MessageKey::kUp, 2);
                                                press(MessageKey::kEscape);
                                            }};
    for (const auto& act : before) {
        addNumbered(1, 5);
        act();
        const std::uint32_t sample = addSample();
        tick();
        tick();
        screen.takeSteps();
        model.showMessage(sample);
        EXPECT_TRUE(isVisible);
        EXPECT_NE(screen.takeSteps().find("appear+"), std::string::npos);
        EXPECT_EQ(firstRow(), "sample");
        EXPECT_EQ(counter().substr(0, 3), "1 /");
        EXPECT_EQ(store.unread, 0);
        press(MessageKey::kUp);
        EXPECT_NE(firstRow(), "sample");
        model.showMessage(sample);
        EXPECT_EQ(firstRow(), "sample");
        model.hide();
    }
}

TEST_F(MessageAskedFor, StaysWhileOthersArriveWhichStayUnread) {
    addNumbered(1, 2);
    const std::uint32_t sample = addSample();
    add("message 3");  // before the request is carried out
    int arriving = 2;
    screen.whileMeasuring = [&] {  // and while it is
        if (arriving-- > 0) add("message " + std::to_string(5 - arriving));
    };
    model.showMessage(sample);
    EXPECT_EQ(firstRow(), "sample");
    EXPECT_EQ(counter(), "2 / 4");
    for (int i = 6; i < 20; i++) {
        tick();
        EXPECT_EQ(firstRow(), "sample") << i;
        add("message " + std::to_string(i));
    }
    tick();
    EXPECT_EQ(firstRow(), "sample");
    EXPECT_EQ(counter(), "18 / 20");
    EXPECT_EQ(unread(), "UNREAD 17");
    press(MessageKey::kDown, 17);
    EXPECT_EQ(firstRow(), "message 19");
    EXPECT_EQ(unread(), "");
}

TEST_F(MessageAskedFor, HoldsThePageForFiveSeconds) {
    model.showMessage(addSample());
    clock.advance(4999);
    add("message 1");
    model.refresh();
    EXPECT_EQ(firstRow(), "sample");
    EXPECT_EQ(counter(), "2 / 2");
    clock.advance(1);
    model.refresh();
    EXPECT_EQ(firstRow(), "sample");
    add("message 2");  // from now on the page keeps its number
    tick();
    EXPECT_EQ(firstRow(), "message 1");
    model.showMessage(addSample());
    clock.advance(5000);
    model.refresh();
    add("message 3");
    tick();
    EXPECT_EQ(firstRow(), "message 3");  // a clearance does not wait behind a forgotten sample
}

TEST_F(MessageAskedFor, HiddenTheWindowHoldsNoMessage) {
    model.showMessage(addSample());
    press(MessageKey::kEscape);
    add("message 1");
    model.show();
    EXPECT_EQ(firstRow(), "message 1");
}

TEST_F(MessageAskedFor, ThatIsGoneGivesWayToTheNewest) {
    addNumbered(1, 3);
    model.show();
    press(MessageKey::kUp, 2);
    const std::uint32_t sample = addSample();
    clearMessages(store);
    addNumbered(4, 6);
    model.showMessage(sample);
    EXPECT_EQ(firstRow(), "message 6");
    EXPECT_EQ(store.unread, 0);
}

TEST_F(MessageAskedFor, TurningThePageLeavesIt) {
    const std::uint32_t sample = addSample();
    addNumbered(1, 3);
    model.showMessage(sample);
    EXPECT_EQ(counter(), "4 / 4");
    press(MessageKey::kDown);
    EXPECT_EQ(firstRow(), "message 1");
    add("message 4");  // the page keeps its number again
    tick();
    EXPECT_EQ(firstRow(), "message 2");
}

TEST_F(MessageAskedFor, OnceItIsGoneThePageIsTheNewest) {
    for (const bool isCleared : {true, false}) {
        model.showMessage(addSample());
        addNumbered(1, 10);
        tick();
        EXPECT_EQ(firstRow(), "sample");
        if (isCleared) clearMessages(store);
        addNumbered(1, isCleared ? 2 : 40);
        tick();
        EXPECT_EQ(firstRow(), isCleared ? "message 2" : "message 40");
        EXPECT_EQ(counter(), isCleared ? "1 / 2" : "1 / 40");
    }
}
