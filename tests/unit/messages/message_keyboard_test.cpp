// message_keyboard_test.cpp - the message window and the keyboard: which click is to bring it, and what shows that it
// is there.
#include "tests/unit/messages/message_rig.h"

namespace {

class MessageKeyboard : public MessageRig {
  protected:
    std::uint32_t hintColour() const {
        for (const PageItem& item : screen.picture)
            if (item.text == u"↑↓ page   DEL clear   ESC / TEXT close") return item.colour;
        return 0;
    }
};

}  // namespace

TEST_F(MessageKeyboard, TheKeyHintFollowsTheKeyboard) {
    add("hello");
    model.show();
    EXPECT_EQ(hintColour(), kFaintGreen);  // it opens without the keyboard
    model.setKeyboard(true);
    EXPECT_TRUE(screen.isShown);
    EXPECT_EQ(hintColour(), kDimGreen);
    model.setKeyboard(false);
    EXPECT_TRUE(screen.isShown);
    EXPECT_EQ(hintColour(), kFaintGreen);
    screen.takePainted();
    model.setKeyboard(false);
    EXPECT_EQ(screen.takePainted(), 0);
}

TEST_F(MessageKeyboard, OnlyThePageWantsTheKeyboard) {
    for (const std::uint32_t dotsPerInch : {96U, 144U}) {
        screen.dotsPerInch = dotsPerInch;
        const std::int32_t header = dotsPerInch == 96 ? 44 : 66;
        EXPECT_FALSE(model.wantsKeyboard({300, 0}));
        EXPECT_FALSE(model.wantsKeyboard({596, 24}));  // the close button
        EXPECT_FALSE(model.wantsKeyboard({300, header - 1})) << dotsPerInch;
        EXPECT_TRUE(model.wantsKeyboard({300, header})) << dotsPerInch;
        EXPECT_TRUE(model.wantsKeyboard({300, 390}));
    }
}
