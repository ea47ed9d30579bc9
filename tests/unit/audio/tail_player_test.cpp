#include "audio/tail_player.h"
#include <gtest/gtest.h>
#include "tests/client/host_model.h"
#include "tests/unit/fakes.h"
#include "tests/unit/finishes_soon.h"

namespace {

constexpr std::uint64_t kServer = 1;
constexpr std::uint16_t kOwn = 10;
constexpr std::uint16_t kOther = 20;
constexpr const char* kPath = "C:\\数据\\radio_tail.wav";
using Lines = std::vector<std::string>;

}  // namespace

class TailPlayerTest : public testing::Test {
  protected:
    TailPlayerTest() { model.addServer(kServer, kOwn, 5); }
    ~TailPlayerTest() override { EXPECT_EQ(model.problems(), Lines{}); }

    void play(std::uint16_t client, std::uint64_t server = kServer) { playTail(player, server, client); }
    std::size_t played() const { return model.playedSounds().size(); }
    void set(bool Settings::*field, bool value) {
        updateSettings(settings, [&](Settings& live) { live.*field = value; });
    }

    ManualClock clock;
    MemoryFiles files;
    SettingsStore settings{files};
    HostModel model{clock};
    HostFunctions host = resolveHostFunctions(model.table());
    TailPlayer player{host, settings, clock, kPath, {}};
};

TEST_F(TailPlayerTest, PlaysTheTailOnItsServerAndLogsItFirst) {
    play(kOther);
    const auto calls = model.calls();
    ASSERT_EQ(calls.size(), 3u);
    EXPECT_EQ(calls[0].function, "getClientID");
    EXPECT_EQ(calls[0].schid, kServer);
    EXPECT_EQ(calls[1].function, "logMessage");
    EXPECT_EQ(calls[1].text, "Corvalis tail played (own=0)");
    EXPECT_EQ(calls[1].number, 4u);
    EXPECT_EQ(calls[1].channelText, "Corvalis");
    EXPECT_EQ(calls[2].function, "playWaveFile");
    EXPECT_EQ(calls[2].schid, kServer);
    EXPECT_EQ(calls[2].text, kPath);
}

TEST_F(TailPlayerTest, LogsWhetherTheTailIsTheUsersOwn) {
    play(kOwn);
    EXPECT_EQ(model.logLines(), Lines{"Corvalis tail played (own=1)"});
}

TEST_F(TailPlayerTest, PlaysAtMostOneTailEvery350Ms) {
    play(kOther);
    clock.advance(349);
    play(kOther);
    EXPECT_EQ(played(), 1u);
    clock.advance(1);
    play(kOther);
    EXPECT_EQ(played(), 2u);
    clock.advance(349);
    play(kOwn);  // one's own tails share the spacing with the others'
    EXPECT_EQ(played(), 2u);
}

TEST_F(TailPlayerTest, LogsPlayedTailsAtMostOnceASecond) {
    play(kOther);
    clock.advance(500);
    play(kOther);
    clock.advance(499);
    play(kOther);
    EXPECT_EQ(played(), 3u);
    EXPECT_EQ(model.logLines(), Lines{"Corvalis tail played (own=0)"});
    clock.advance(351);
    play(kOwn);
    EXPECT_EQ(model.logLines(), (Lines{"Corvalis tail played (own=0)", "Corvalis tail played (own=1)"}));
}

TEST_F(TailPlayerTest, LogsAPlayedTailAgainExactlyOneSecondLater) {
    play(kOther);
    clock.advance(500);
    play(kOther);
    clock.advance(499);
    play(kOther);  // 999 ms after the log line, and played
    EXPECT_EQ(model.logLines().size(), 1u);
    player.throttle.lastPlay -= 1000;
    clock.advance(1);
    play(kOther);
    EXPECT_EQ(model.logLines().size(), 2u);
}

TEST_F(TailPlayerTest, CountsSuppressedTailsAndLogsTheCountAtMostOnceASecond) {
    play(kOther);  // at 0
    clock.advance(100);
    play(kOther);  // suppressed, and logged at once
    for (int i = 0; i < 2; i++) {
        clock.advance(100);
        play(kOwn);  // 200, 300: suppressed and counted
    }
    clock.advance(50);
    play(kOther);  // 350
    clock.advance(350);
    play(kOther);  // 700
    clock.advance(350);
    play(kOther);  // 1050, logs again
    clock.advance(49);
    play(kOther);  // 1099: suppressed, 999 ms after the last line
    clock.advance(1);
    play(kOther);  // 1100
    EXPECT_EQ(played(), 4u);
    EXPECT_EQ(model.logLines(),
              (Lines{"Corvalis tail played (own=0)", "Corvalis tail throttled: 1 calls suppressed in 1s",
                     "Corvalis tail played (own=0)", "Corvalis tail throttled: 4 calls suppressed in 1s"}));
    EXPECT_EQ(player.throttle.suppressed, 0u);
}

TEST_F(TailPlayerTest, ASuppressedTailDoesNotPutOffTheNextOne) {
    play(kOther);
    clock.advance(300);
    play(kOther);
    clock.advance(50);
    play(kOther);
    EXPECT_EQ(played(), 2u);
}

TEST_F(TailPlayerTest, OwnReleasesAreSilentWithTailSelfOffAndOthersArePlayed) {
    set(&Settings::tail_self, false);
    play(kOwn);
    EXPECT_EQ(played(), 0u);
    play(kOther);  // the silent one did not use up the spacing
    EXPECT_EQ(played(), 1u);
}

TEST_F(TailPlayerTest, OthersReleasesAreSilentWithTailOthersOffAndOwnArePlayed) {
    set(&Settings::tail_others, false);
    play(kOther);
    EXPECT_EQ(played(), 0u);
    play(kOwn);
    EXPECT_EQ(played(), 1u);
    EXPECT_EQ(model.logLines(), Lines{"Corvalis tail played (own=1)"});
}

TEST_F(TailPlayerTest, NothingIsPlayedCountedOrAskedWithMasterOff) {
    set(&Settings::master, false);
    play(kOther);
    play(kOwn);
    EXPECT_TRUE(model.calls().empty());
    EXPECT_EQ(player.throttle.suppressed, 0u);
}

TEST_F(TailPlayerTest, WithMasterOffTheTrackerAndItsLampsStillWork) {
    set(&Settings::master, false);
    TalkTracker talk;
    talk.ownClientId = kOwn;
    talkChanged(talk, kServer, kOwn, true, 0);
    EXPECT_TRUE(talk.ownTransmit);
    talkChanged(talk, kServer, kOwn, false, 500);
    EXPECT_FALSE(talk.ownTransmit);
    drainTails(talk, player);
    EXPECT_TRUE(model.playedSounds().empty());
    EXPECT_TRUE(takeTails(talk).empty());
}

TEST_F(TailPlayerTest, NothingHappensWithoutServerPathOrPlayFunction) {
    play(kOther, 0);
    player.tailPath.clear();
    play(kOther);
    player.tailPath = kPath;
    host.playWaveFile = nullptr;
    play(kOther);
    EXPECT_TRUE(model.calls().empty());
    EXPECT_EQ(player.throttle.lastPlay, 0u);
}

TEST_F(TailPlayerTest, OwnIsClientZeroWhenTheHostCannotTellTheOwnId) {
    set(&Settings::tail_others, false);
    model.failFunction(kGetClientIdPosition, 1);
    play(kOwn);
    EXPECT_EQ(played(), 0u);
    play(0);
    EXPECT_EQ(played(), 1u);
    clock.advance(1000);
    host.getClientID = nullptr;
    play(kOwn);
    EXPECT_EQ(played(), 1u);
    play(0);
    EXPECT_EQ(played(), 2u);
}

TEST_F(TailPlayerTest, PlaysWithoutALog) {
    host.logMessage = nullptr;
    play(kOther);
    play(kOther);
    EXPECT_EQ(played(), 1u);
    EXPECT_TRUE(model.logLines().empty());
}

TEST_F(TailPlayerTest, KeepsItsSpacingsWhenThe32BitTickWraps) {
    clock.tick = 0x1'FFFF'FF9CULL;  // 100 ms before the low half wraps
    play(kOther);
    clock.advance(50);
    play(kOther);  // suppressed and logged
    clock.advance(150);
    play(kOther);  // suppressed, beyond the wrap
    EXPECT_EQ(played(), 1u);
    EXPECT_EQ(player.throttle.suppressed, 1u);
    clock.advance(150);
    play(kOther);
    EXPECT_EQ(played(), 2u);
    clock.advance(650);
    play(kOther);
    EXPECT_EQ(played(), 3u);
    clock.advance(200);
    play(kOther);  // suppressed and logged: 1150 ms after the last line
    EXPECT_EQ(model.logLines(),
              (Lines{"Corvalis tail played (own=0)", "Corvalis tail throttled: 1 calls suppressed in 1s",
                     "Corvalis tail played (own=0)", "Corvalis tail throttled: 2 calls suppressed in 1s"}));
}

TEST_F(TailPlayerTest, DrainsInOrderOfArrivalAndLeavesTheQueueEmpty) {
    TalkTracker talk;
    model.addServer(2, kOwn, 5);
    for (const std::uint64_t server : {std::uint64_t{2}, kServer}) {
        talkChanged(talk, server, kOther, true, 0);
        talkChanged(talk, server, kOther, false, 500);
    }
    drainTails(talk, player);
    const auto asked = model.callsOf("getClientID");
    ASSERT_EQ(asked.size(), 2u);
    EXPECT_EQ(asked[0].schid, 2u);
    EXPECT_EQ(asked[1].schid, kServer);
    ASSERT_EQ(played(), 1u);  // the second one is within 350 ms of the first
    EXPECT_EQ(model.callsOf("playWaveFile")[0].schid, 2u);
    EXPECT_EQ(model.logLines().back(), "Corvalis tail throttled: 1 calls suppressed in 1s");
    drainTails(talk, player);
    EXPECT_EQ(model.callsOf("getClientID").size(), 2u);
}

TEST_F(TailPlayerTest, HoldsNoLockWhileTheHostPlays) {
    TalkTracker talk;
    talkChanged(talk, kServer, kOther, true, 0);
    talkChanged(talk, kServer, kOther, false, 500);
    CallAside aside;
    bool came = false;
    model.setBeforeCall([&](const HostCall& call) {
        if (call.function != "playWaveFile") return;
        came = aside.finishesSoon([&] {
            talkChanged(talk, kServer, kOther, true, 600);
            copySettings(settings);
        });
    });
    drainTails(talk, player);
    EXPECT_TRUE(came);
}
