#include "panel/panel_requests.h"
#include <gtest/gtest.h>
#include "settings/settings_store.h"
#include "tests/unit/fakes.h"

TEST(PanelRequests, ThePanelIsAskedAtOnceWhenItIsToBeShownOrHiddenAndOnlyThen) {
    MemoryFiles files;
    int asked = 0;
    SettingsStore settings(files, {},
                           [&](const Settings& before, const Settings& now) { asked += isPanelAsked(before, now); });
    const auto show = [&](bool isVisible) {
        updateSettings(settings, [&](Settings& live) { live.panel_visible = isVisible; });
    };
    show(false);
    EXPECT_EQ(asked, 1);
    show(true);
    EXPECT_EQ(asked, 2);
    show(true);
    EXPECT_EQ(asked, 2);
    updateSettings(settings, [](Settings& live) {
        live.theme = 2;
        live.pin = !live.pin;
        live.panel_x += 10;
        live.receive_volume = 12.0f;
    });
    EXPECT_EQ(asked, 2);
}
