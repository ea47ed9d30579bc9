// text_lamp_test.cpp - the panel's TEXT lamp, which flashes while text messages are unread; GENERAL, which has none,
// tints the key's legend.
#include <algorithm>
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
    // How many pixels of GENERAL's TEXT key are amber.
    std::ptrdiff_t amberPixels() const {
        presentNow();
        const ArgbImage picture = askForPicture(findPanel());
        const UnitRect& key = findHotspot(themeLayout(kGeneralTheme), kTextKey)->rect;
        const POINT first = panel().toClient({key.x, key.y});
        const POINT last = panel().toClient({key.x + key.width, key.y + key.height});
        const ArgbImage cap =
            cropImage(picture, {static_cast<std::int32_t>(first.x), static_cast<std::int32_t>(first.y),
                                static_cast<std::int32_t>(last.x), static_cast<std::int32_t>(last.y)});
        return std::ranges::count_if(cap.pixels, [](std::uint32_t pixel) {
            const std::uint32_t red = pixel >> 16U & 0xFFU, blue = pixel & 0xFFU;
            return red > 0x80 && red > blue + 0x40;
        });
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

TEST_F(TextLamp, GeneralsLegendIsTintedUntilTheMessageIsRead) {
    ASSERT_TRUE(show(kGeneralTheme, "text_auto_open=0\r\n"));
    EXPECT_EQ(amberPixels(), 0);
    HostTextMessage message;
    message.message = "hello";
    session.plugin.deliver(message);
    EXPECT_GT(amberPixels(), 20);  // the strokes of four letters
    session.plugin.exports().onMenuItemEvent(kSchid, 0, kMessagesEntry, 0);
    ASSERT_TRUE(waitForPosted(findMessageWindow()));
    ASSERT_TRUE(isMessageWindowShown());
    EXPECT_EQ(amberPixels(), 0);
}
