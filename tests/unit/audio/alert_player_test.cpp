#include "audio/alert_player.h"
#include <gtest/gtest.h>
#include "tests/client/host_model.h"
#include "tests/unit/fakes.h"

class AlertPlayer : public testing::Test {
  protected:
    AlertPlayer() { model.addServer(4, 10, 5); }
    void play(std::uint64_t server) {
        playTextAlertSound(host, settings, server, [] { return "C:\\Data\\text_alert.wav"; });
    }
    void set(bool Settings::*field, bool value) {
        updateSettings(settings, [&](Settings& live) { live.*field = value; });
    }

    ManualClock clock;
    MemoryFiles files;
    SettingsStore settings{files};
    HostModel model{clock};
    HostFunctions host = resolveHostFunctions(model.table());
};

TEST_F(AlertPlayer, PlaysTheChimeOnTheCurrentServer) {
    play(4);
    const auto calls = model.calls();
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].function, "playWaveFile");
    EXPECT_EQ(calls[0].schid, 4u);
    EXPECT_EQ(calls[0].text, "C:\\Data\\text_alert.wav");
}

TEST_F(AlertPlayer, PlaysEveryTimeAndAlsoWithMasterOff) {
    set(&Settings::master, false);
    play(4);
    play(4);
    EXPECT_EQ(model.playedSounds().size(), 2u);
}

TEST_F(AlertPlayer, IsSilentWithTextAlertOff) {
    set(&Settings::text_alert, false);
    play(4);
    EXPECT_TRUE(model.calls().empty());
}

TEST_F(AlertPlayer, IsSilentWithoutAServerOrAPlayFunction) {
    play(0);
    EXPECT_TRUE(model.calls().empty());
    host.playWaveFile = nullptr;
    play(4);
    EXPECT_TRUE(model.calls().empty());
}
