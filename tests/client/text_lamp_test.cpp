// text_lamp_test.cpp - the panel's TEXT lamp, which flashes while text messages are unread.
#include "panel/panel_picture.h"
#include "tests/client/message_driver_win.h"
#include "tests/client/panel_test.h"
#include "tests/client/window_watch_win.h"

namespace {

constexpr int kMessagesEntry = 3;

class TextLamp : public PanelTest {
  protected:
    // Its middle, drawn in the half of a flash in which a flashing lamp is lit.
    std::uint32_t colour(std::int32_t theme) {
        const UnitRect& lamp = findHotspot(themeLayout(theme), kCustomKeyA)->indicator;
        const POINT at = panel().toClient({lamp.x + lamp.width / 2.0f, lamp.y + lamp.height / 2.0f});
        const auto flash = [] { return systemTickMs() / kTextFlashMs; };
        for (int tries = 0; tries < 50; tries++) {
            session.waitUntil([&] { return flash() % 2 == 0; });
            const std::uint64_t before = flash();
            presentNow();
            const ArgbImage picture = askForPicture(findPanel());
            if (flash() == before && before % 2 == 0 && !picture.isEmpty()) return picture.row(at.y)[at.x];
        }
        ADD_FAILURE() << "no picture within half a flash";
        return 0;
    }
};

}  // namespace

TEST_F(TextLamp, FlashesUntilTheMessageIsRead) {
    for (const std::int32_t theme : {kBoeingTheme, kAirbusTheme}) {
        ASSERT_TRUE(show(theme, "text_auto_open=0\r\n")) << theme;
        const std::uint32_t dark = colour(theme);
        HostTextMessage message;
        message.message = "hello";
        session.plugin.deliver(message);
        EXPECT_NE(colour(theme), dark) << theme;
        session.plugin.exports().onMenuItemEvent(kSchid, 0, kMessagesEntry, 0);
        ASSERT_TRUE(waitForPosted(findMessageWindow())) << theme;
        ASSERT_TRUE(isMessageWindowShown()) << theme;
        EXPECT_EQ(colour(theme), dark) << theme;
        session.stop();
    }
}
