// message_model_test.cpp - the message window's decisions: when it shows, turns, forgets, hides, and is drawn anew.
#include "messages/message_model.h"
#include "tests/unit/messages/message_rig.h"

namespace {

class MessageModelTest : public MessageRig {};

}  // namespace

TEST_F(MessageModelTest, ShowingPlacesAndDrawsTheWindowBeforeItIsSeen) {
    add("hello");
    model.show();
    EXPECT_EQ(screen.takeSteps(), "place paint+ appear+");
    EXPECT_TRUE(isVisible);
    EXPECT_TRUE(screen.isShown);
    EXPECT_EQ(store.unread, 0);
    EXPECT_EQ(counter(), "1 / 1");
    EXPECT_EQ(dotColour(), kBrightGreen);
    EXPECT_FALSE(shows(u"*NEW"));
}

TEST_F(MessageModelTest, ShownAgainItComesToTheFrontOnThePageItStandsOn) {
    addNumbered(1, 3);
    model.show();
    press(MessageKey::kUp);
    add("message 4");
    EXPECT_EQ(store.unread, 1);
    screen.takeSteps();
    model.show();
    EXPECT_EQ(screen.takeSteps(), "place+ paint+ appear+");
    EXPECT_EQ(store.unread, 0);
    EXPECT_EQ(counter(), "2 / 4");
    EXPECT_EQ(unread(), "");
}

TEST_F(MessageModelTest, HidingTakesTheFlagBackBeforeTheWindowGoes) {
    model.show();
    screen.takeSteps();
    model.hide();
    EXPECT_EQ(screen.takeSteps(), "vanish");  // if the flag were still set, a message would not reopen the window
    EXPECT_FALSE(isVisible);
}

TEST_F(MessageModelTest, ANewMessageOpensTheNewestPageButLeavesAVisibleWindowAlone) {
    addNumbered(1, 3);
    model.showNewest();
    EXPECT_EQ(screen.takeSteps(), "place paint+ appear+");
    EXPECT_EQ(counter(), "1 / 3");
    press(MessageKey::kUp);
    EXPECT_EQ(counter(), "2 / 3");
    add("message 4");
    screen.takeSteps();
    model.showNewest();
    EXPECT_EQ(screen.takeSteps(), "");
    EXPECT_EQ(store.unread, 1);
    tick();
    EXPECT_EQ(counter(), "2 / 4");
    EXPECT_EQ(firstRow(), "message 3");
    EXPECT_EQ(dotColour(), kAmber);
    EXPECT_EQ(unread(), "UNREAD 1");
    press(MessageKey::kEscape);
    add("message 5");
    model.showNewest();
    EXPECT_EQ(counter(), "1 / 5");
    EXPECT_EQ(firstRow(), "message 5");
    EXPECT_EQ(dotColour(), kBrightGreen);
    press(MessageKey::kDown);  // there is no newer one
    EXPECT_EQ(counter(), "1 / 5");
}

TEST_F(MessageModelTest, WithoutMemoryForItsPictureTheWindowAppearsAndIsPaintedAtTheNextTick) {
    add("hello");
    screen.canPaint = false;
    model.show();
    EXPECT_EQ(screen.takeSteps(), "place paint+ appear+");
    screen.canPaint = true;
    tick();
    EXPECT_EQ(firstRow(), "hello");
}

TEST_F(MessageModelTest, TogglingShowsAndHides) {
    addNumbered(1, 2);
    for (int i = 0; i < 3; i++) {
        model.toggle();
        EXPECT_TRUE(isVisible);
        EXPECT_NE(screen.takeSteps().find("appear+"), std::string::npos);
        EXPECT_EQ(counter(), i == 0 ? "1 / 2" : "2 / 2");  // the page number survives hiding
        press(MessageKey::kUp);
        screen.takeSteps();
        model.toggle();
        EXPECT_FALSE(isVisible);
        EXPECT_EQ(screen.takeSteps(), "vanish");
    }
}

TEST_F(MessageModelTest, KeysAndTheWheelTurnThePages) {
    addNumbered(1, 3);
    model.show();
    const struct {
        const char* what;
        std::function<void()> older, newer;
    } rows[] = {
        {"arrows", [&] { press(MessageKey::kUp); }, [&] { press(MessageKey::kDown); }},
        {"page keys", [&] { press(MessageKey::kPageUp); }, [&] { press(MessageKey::kPageDown); }},
        {"wheel", [&] { model.turnWheel(120); }, [&] { model.turnWheel(-120); }},
        {"fine wheel", [&] { model.turnWheel(1); }, [&] { model.turnWheel(0); }},
    };
    for (const auto& row : rows) {
        const auto turned = [&](const std::function<void()>& turn) {
            turn();
            EXPECT_TRUE(screen.isShown) << row.what;  // without waiting for a tick
            return counter() + " " + firstRow();
        };
        EXPECT_EQ(turned(row.older), "2 / 3 message 2") << row.what;
        EXPECT_EQ(turned(row.older), "3 / 3 message 1") << row.what;
        EXPECT_EQ(turned(row.older), "3 / 3 message 1") << row.what;  // there is no older one
        EXPECT_EQ(turned(row.newer), "2 / 3 message 2") << row.what;
        EXPECT_EQ(turned(row.newer), "1 / 3 message 3") << row.what;
        EXPECT_EQ(turned(row.newer), "1 / 3 message 3") << row.what;
    }
}

TEST_F(MessageModelTest, TurningBackToTheNewestMakesMessagesRead) {
    addNumbered(1, 3);
    model.show();
    press(MessageKey::kUp, 2);
    addNumbered(4, 5);
    tick();
    EXPECT_EQ(unread(), "UNREAD 2");
    EXPECT_EQ(dotColour(), kAmber);
    EXPECT_TRUE(shows(u"*NEW"));
    press(MessageKey::kDown);
    EXPECT_EQ(counter(), "2 / 5");
    EXPECT_EQ(unread(), "UNREAD 2");
    press(MessageKey::kDown);
    EXPECT_EQ(counter(), "1 / 5");
    EXPECT_EQ(unread(), "");
    EXPECT_EQ(dotColour(), kBrightGreen);
    EXPECT_FALSE(shows(u"*NEW"));
}

TEST_F(MessageModelTest, ANewMessageOnTheNewestPageIsShownAndCountsAsUnread) {
    add("first");
    model.show();
    add("second");
    tick();
    EXPECT_EQ(counter(), "1 / 2");
    EXPECT_EQ(firstRow(), "second");
    EXPECT_EQ(unread(), "UNREAD 1");
    press(MessageKey::kDown);
    EXPECT_EQ(unread(), "");
}

TEST_F(MessageModelTest, TheFortyFirstPushesTheFirstOut) {
    addNumbered(1, 41);
    model.show();
    EXPECT_EQ(counter(), "1 / 40");
    EXPECT_EQ(firstRow(), "message 41");
    press(MessageKey::kUp, 45);
    EXPECT_EQ(counter(), "40 / 40");
    EXPECT_EQ(firstRow(), "message 2");
    addNumbered(42, 82);
    tick();
    EXPECT_EQ(counter(), "40 / 40");
    EXPECT_EQ(firstRow(), "message 43");
    EXPECT_EQ(unread(), "UNREAD 41");  // not limited like the store
}

TEST_F(MessageModelTest, DeleteForgetsThemAll) {
    addNumbered(1, 3);
    model.show();
    press(MessageKey::kUp);
    add("message 4");
    tick();
    ASSERT_EQ(dotColour(), kAmber);
    ASSERT_FALSE(isEmptyPage());
    press(MessageKey::kDelete);
    EXPECT_TRUE(screen.isShown);
    EXPECT_TRUE(isEmptyPage());
    EXPECT_EQ(dotColour(), kBrightGreen);
    EXPECT_EQ(store.unread, 0);
    EXPECT_TRUE(storedMessages(store).messages.empty());
    EXPECT_TRUE(isVisible);
    addNumbered(5, 6);
    tick();
    EXPECT_EQ(counter(), "1 / 2");  // on the newest page again
}

TEST_F(MessageModelTest, ClearedByAnotherTheOpenWindowShowsTheEmptyPage) {
    addNumbered(1, 3);
    model.show();
    press(MessageKey::kUp);
    add("message 4");
    tick();
    ASSERT_FALSE(isEmptyPage());
    ASSERT_EQ(unread(), "UNREAD 1");
    clearMessages(store);  // like the settings dialog's button
    tick();
    EXPECT_TRUE(screen.isShown);
    EXPECT_TRUE(isEmptyPage());
    EXPECT_EQ(dotColour(), kBrightGreen);
    EXPECT_FALSE(model.cursor());  // there is no text
    press(MessageKey::kUp);        // nor is there a page to turn
    EXPECT_TRUE(isEmptyPage());
}

TEST_F(MessageModelTest, EscapeTheCloseButtonAndACloseHideTheWindow) {
    const std::function<void()> ways[] = {[&] { press(MessageKey::kEscape); }, [&] { model.pressAt(kOnClose); },
                                          [&] { model.hide(); }};
    for (const auto& hide : ways) {
        model.show();
        ASSERT_TRUE(isVisible);
        screen.takeSteps();
        hide();
        EXPECT_FALSE(isVisible);
        EXPECT_EQ(screen.takeSteps(), "vanish");
    }
}

TEST_F(MessageModelTest, OtherKeysAndPressesOnThePageDoNothing) {
    addNumbered(1, 3);
    model.show();
    press(MessageKey::kUp);
    screen.takeSteps();
    press(MessageKey::kOther);
    model.pressAt(kOnPage);
    model.pressAt({596, 44});  // below the header
    EXPECT_EQ(screen.takeSteps(), "");
    EXPECT_TRUE(isVisible);
    EXPECT_EQ(counter(), "2 / 3");
    EXPECT_EQ(storedMessages(store).messages.size(), 3U);
}

TEST_F(MessageModelTest, TheHeaderDragsTheWindow) {
    model.show();
    for (const std::uint32_t dotsPerInch : {96U, 120U, 144U, 192U}) {
        screen.dotsPerInch = dotsPerInch;
        const auto at = [&](int x, int y) {
            const float scale = messageScale(dotsPerInch);
            return PixelPoint{static_cast<std::int32_t>(static_cast<float>(x) * scale),
                              static_cast<std::int32_t>(static_cast<float>(y) * scale)};
        };
        for (const PixelPoint point : {at(0, 0), at(300, 20), at(300, 43), at(575, 24), at(596, 5), at(615, 24)}) {
            screen.takeSteps();
            model.pressAt(point);
            EXPECT_EQ(screen.takeSteps(), "drag+") << dotsPerInch << ": " << point.x << ", " << point.y;
            EXPECT_EQ(screen.draggedFrom.x, point.x);
            EXPECT_EQ(screen.draggedFrom.y, point.y);
        }
        model.pressAt(at(300, 44));
        model.pressAt(at(300, 399));
        EXPECT_EQ(screen.takeSteps(), "") << dotsPerInch;
    }
}

TEST_F(MessageModelTest, TheCloseGlyphIsRedWhileThePointerIsOnIt) {
    for (const std::uint32_t dotsPerInch : {96U, 144U}) {
        screen.dotsPerInch = dotsPerInch;
        const float scale = messageScale(dotsPerInch);
        // Near the button's lower left corner.
        const PixelPoint close = {static_cast<std::int32_t>(583 * scale), static_cast<std::int32_t>(37 * scale)};
        model.show();
        EXPECT_EQ(closeColour(), kDimGreen);
        model.movePointer(close);
        EXPECT_TRUE(screen.isShown);
        EXPECT_EQ(closeColour(), kRed);
        model.movePointer(kOnPage);
        EXPECT_EQ(closeColour(), kDimGreen);
        model.movePointer(close);
        EXPECT_EQ(closeColour(), kRed);
        model.leavePointer();
        EXPECT_TRUE(screen.isShown);
        EXPECT_EQ(closeColour(), kDimGreen);
    }
}

TEST_F(MessageModelTest, DrawsAPictureOnceAndKeepsIt) {
    add("hello");
    model.show();
    EXPECT_EQ(screen.takePainted(), 1);
    for (int i = 0; i < 100; i++) tick();
    model.movePointer(kOnPage);
    press(MessageKey::kOther);
    press(MessageKey::kDown);
    model.show();
    EXPECT_EQ(screen.takePainted(), 0);
    const struct {
        const char* what;
        std::function<void()> change;
    } changes[] = {
        {"another message", [&] { add("again"); }},
        {"another size", [&] { updateSettings(settings, [](Settings& live) { live.text_scale = 20; }); }},
        {"another language", [&] { languageIndex = kEnglish + 1; }},
        {"another monitor", [&] { screen.dotsPerInch = 144; }},
        {"read", [&] { store.unread = 0; }},
    };
    for (const auto& row : changes) {
        row.change();
        tick();
        EXPECT_EQ(screen.takePainted(), 1) << row.what;
        EXPECT_TRUE(screen.isShown) << row.what;
        tick();
        EXPECT_EQ(screen.takePainted(), 0) << row.what;
    }
}

TEST_F(MessageModelTest, AHiddenWindowIsNotDrawn) {
    addNumbered(1, 3);
    tick();
    press(MessageKey::kUp);
    model.movePointer(kOnClose);
    EXPECT_EQ(screen.takeSteps(), "");
    EXPECT_EQ(screen.updates, 0);
    EXPECT_TRUE(screen.takeStaleParts().empty());
    model.leavePointer();
    model.show();
    EXPECT_EQ(counter(), "2 / 3");  // the key took effect nevertheless
    model.hide();
    screen.takePainted();
    add("message 4");
    tick();
    EXPECT_EQ(screen.takePainted(), 0);
}

TEST_F(MessageModelTest, TheCursorBlinksAndOnlyItsBlockIsPainted) {
    clock.tick = 1'000'000;
    add("hello");
    model.show();
    ASSERT_TRUE(model.cursor());
    const PageItem lit = *model.cursor();
    EXPECT_EQ(lit.kind, PageItemKind::kFill);
    EXPECT_EQ(lit.colour, kBrightGreen);
    screen.takePainted();
    screen.takeStaleParts();
    int changes = 0;
    bool isLit = true;
    for (int i = 0; i < 100; i++) {  // 3.3 s
        const int updates = screen.updates;
        tick();
        EXPECT_GT(screen.updates, updates);
        EXPECT_EQ(model.cursor().has_value(), clock.tick / 500 % 2 == 0) << clock.tick;
        const std::vector<UnitRect> stale = screen.takeStaleParts();
        if (model.cursor().has_value() != isLit) {
            EXPECT_EQ(stale, std::vector<UnitRect>{lit.rect});
            changes++;
        } else {
            EXPECT_TRUE(stale.empty());
        }
        isLit = model.cursor().has_value();
    }
    EXPECT_EQ(changes, 6);
    EXPECT_EQ(screen.takePainted(), 0);
}

TEST_F(MessageModelTest, AMovedCursorIsPaintedWhereItWasAndWhereItIs) {
    clock.tick = 1'000'000;
    add("long message");
    add("short");
    model.show();
    const UnitRect before = model.cursor()->rect;
    screen.takeStaleParts();
    press(MessageKey::kUp);
    const UnitRect after = model.cursor()->rect;
    EXPECT_GT(after.x, before.x);
    EXPECT_EQ(screen.takeStaleParts(), (std::vector<UnitRect>{before, after}));
}

TEST_F(MessageModelTest, WithoutRoomForAPictureItTriesAgainAtTheNextTick) {
    add("hello");
    screen.hasRoom = false;
    model.show();
    EXPECT_EQ(screen.takeSteps(), "place appear+");
    tick();
    EXPECT_EQ(screen.takePainted(), 0);
    screen.hasRoom = true;
    tick();
    EXPECT_EQ(screen.takePainted(), 1);
    EXPECT_EQ(counter(), "1 / 1");
    tick();
    EXPECT_EQ(screen.takePainted(), 0);
}

TEST_F(MessageModelTest, APictureThatCouldNotBePaintedIsPaintedAtTheNextTick) {
    add("hello");
    model.show();
    add("again");
    screen.canPaint = false;
    EXPECT_THROW(tick(), std::bad_alloc);
    EXPECT_EQ(counter(), "1 / 1");
    screen.canPaint = true;
    tick();
    EXPECT_EQ(counter(), "1 / 2");
    EXPECT_TRUE(screen.isShown);
    // Even if it is to look as before: it may be half painted.
    screen.canPaint = false;
    EXPECT_THROW(model.movePointer(kOnClose), std::bad_alloc);
    screen.canPaint = true;
    screen.takePainted();
    model.leavePointer();
    EXPECT_EQ(screen.takePainted(), 1);
}

TEST_F(MessageModelTest, ShowsHostileMessages) {
    const std::string hostile[] = {
        std::string(8192, 'x'),     std::string(8192, ' '),       std::string(8192, '\n'),
        std::string(8192, '\xFF'),  "\u202E\u202E\u2067 rtl",     "\U0001F6EC \xF0\x9F",
        "\u05E9\u05DC\u05D5\u05DD", std::string(100, '\r') + "x", std::string("a\0b\0c", 5),
    };
    model.show();
    int count = 0;
    for (const std::string& message : hostile) {
        add(message, message);
        press(MessageKey::kDown);
        count++;
        EXPECT_EQ(counter(), "1 / " + std::to_string(count));
        EXPECT_EQ(dotColour(), kBrightGreen);
        for (const PageItem& item : screen.picture) {
            EXPECT_LE(item.text.size(), 512U) << count;
            EXPECT_LE(item.rect.y + item.rect.height, 400.0f) << count;
        }
        for (int i = 0; i < 32; i++) tick();  // its cursor, lit and dark
    }
    EXPECT_TRUE(isVisible);
}
