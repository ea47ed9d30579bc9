#include <algorithm>
#include "audio/talk_tracker.h"
#include "bridge/poll_loop.h"
#include "panel/panel_requests.h"
#include "tests/client/client_session_win.h"
#include "tests/client/command_reader.h"
#include "tests/client/panel_driver_win.h"

namespace {

// What the plugin can no longer do if a function is missing or fails.
enum Loss : unsigned {
    kNothing = 0,
    kLog = 1,
    kSounds = 2,
    kMove = 4,
    kReturnCode = 8,
    kOwnTalk = 16,
    kFirstServer = 32,  // until an event names one
    kEverything = 63,
};

struct PositionRow {
    HostPosition position;
    const char* name;
    unsigned lostWithoutIt;
    unsigned lostWhenItFails;
};

// The row's name in the list of tests.
void PrintTo(const PositionRow& row, std::ostream* stream) {
    *stream << row.name;
}

// A sound, a line or a request that fails has still been asked for.
// clang-format off
const PositionRow kPositions[] = {
    {kFreeMemoryPosition,                 "freeMemory",                 kNothing,         kNothing},
    {kLogMessagePosition,                 "logMessage",                 kLog,             kNothing},
    {kPlayWaveFilePosition,               "playWaveFile",               kSounds,          kNothing},
    {kRequestClientMovePosition,          "requestClientMove",          kMove,            kNothing},
    {kGetClientIdPosition,                "getClientID",                kMove | kOwnTalk, kMove | kOwnTalk},
    {kGetClientSelfVariableAsIntPosition, "getClientSelfVariableAsInt", kOwnTalk,         kNothing},
    {kGetChannelOfClientPosition,         "getChannelOfClient",         kMove,            kMove},
    {kGetChannelVariableAsStringPosition, "getChannelVariableAsString", kMove,            kMove},
    {kGetChannelListPosition,             "getChannelList",             kMove,            kMove},
    {kGetCurrentServerConnectionHandlerIdPosition, "getCurrentServerConnectionHandlerID", kFirstServer, kFirstServer},
    {kCreateReturnCodePosition,           "createReturnCode",           kReturnCode,      kReturnCode},
};
// clang-format on

}  // namespace

class HostTrouble : public PluginTest {
  protected:
    // A followed frequency, a talk, a text message and a click on the panel: all that is not lost must happen.
    void expectAllBut(unsigned lost) {
        const PluginExports& plugin = session.plugin.exports();
        session.telemetry.radios[0].activeKhz = 122800;
        session.publish();
        ASSERT_TRUE(session.start());
        if (lost & kFirstServer) plugin.currentServerConnectionChanged(kSchid);
        plugin.onTalkStatusChangeEvent(kSchid, 1, 0, kOtherClient);
        const std::uint64_t talksSince = session.clock.tickMs();
        if (!(lost & kMove)) expectMove(!(lost & kReturnCode));
        waitSince(talksSince, kShortestTransmissionMs);
        plugin.onTalkStatusChangeEvent(kSchid, 0, 0, kOtherClient);
        EXPECT_EQ(waitForSound("radio_tail.wav", lost), !(lost & kSounds));
        HostTextMessage message;
        message.message = "cleared for take-off";
        session.plugin.deliver(message);
        EXPECT_EQ(waitForSound("text_alert.wav", lost), !(lost & kSounds));
        expectPanelWorks();
        // Long enough for a move to be asked for, if anything still asks.
        if (lost & kMove) waitSince(talksSince, 2 * kStableMs);
        EXPECT_EQ(wasCalled("requestClientMove"), !(lost & kMove));
        EXPECT_EQ(wasCalled("getClientSelfVariableAsInt"), !(lost & kOwnTalk));
        const struct {
            const char* start;
            unsigned lostWith;
        } lines[] = {{"Corvalis loaded: ", kLog},
                     {"Corvalis tail played (own=0)", kLog | kSounds},
                     {"Corvalis text message from Tower", kLog}};
        for (const auto& line : lines) EXPECT_EQ(isLogged(line.start), !(lost & line.lostWith)) << line.start;
        session.stop();
    }
    void waitSince(std::uint64_t sinceMs, std::uint64_t ms) {
        EXPECT_TRUE(session.waitUntil([&] { return session.clock.tickMs() >= sinceMs + ms; }));
    }
    void expectMove(bool hasReturnCode) {
        ASSERT_TRUE(session.waitForCalls("requestClientMove", 1));
        const HostCall request = host.callsOf("requestClientMove")[0];
        EXPECT_EQ(request.channelId, kTower122800);
        EXPECT_EQ(request.returnCode.has_value(), hasReturnCode);
    }
    // A lost sound is not waited for.
    bool waitForSound(const char* name, unsigned lost) {
        const std::string path = toUtf8((session.dataFolder / name).wstring());
        const auto isPlayed = [&] { return std::ranges::count(host.playedSounds(), path) > 0; };
        return lost & kSounds ? isPlayed() : session.waitUntil(isPlayed);
    }
    // From the window through both plugin threads to the worker's file.
    void expectPanelWorks() {
        ASSERT_TRUE(session.waitUntil([] { return findPanel() != nullptr; }));
        PostMessageW(findPanel(), kPanelSwapMessage, 1, 0);
        EXPECT_EQ(jsonValue(CommandReader(session).next(), "slot"), "swap");
    }
    bool wasCalled(const char* function) const { return !host.callsOf(function).empty(); }
    bool isLogged(const std::string& start) const {
        return std::ranges::any_of(host.logLines(), [&](const std::string& line) { return line.starts_with(start); });
    }
};

class WithoutOneFunction : public HostTrouble, public ::testing::WithParamInterface<PositionRow> {};

TEST_P(WithoutOneFunction, ThePluginStillDoesWhatItCan) {
    host.removeFunction(GetParam().position);
    mayLeak = GetParam().position == kFreeMemoryPosition;  // nothing can be given back
    ASSERT_TRUE(session.load());
    expectAllBut(GetParam().lostWithoutIt);
}

INSTANTIATE_TEST_SUITE_P(Host, WithoutOneFunction, ::testing::ValuesIn(kPositions),
                         [](const auto& row) { return std::string(row.param.name); });

class WithOneFunctionFailing : public HostTrouble, public ::testing::WithParamInterface<PositionRow> {};

TEST_P(WithOneFunctionFailing, ThePluginStillDoesWhatItCan) {
    host.failFunction(GetParam().position, kHostErrorNotConnected);
    ASSERT_TRUE(session.load());
    expectAllBut(GetParam().lostWhenItFails);
}

INSTANTIATE_TEST_SUITE_P(Host, WithOneFunctionFailing, ::testing::ValuesIn(kPositions),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(HostTrouble, ATableOfNullsLeavesWhatNeedsNoHost) {
    ASSERT_TRUE(session.load());
    session.plugin.exports().setFunctionPointers(HostFunctionTable());
    expectAllBut(kEverything);
    EXPECT_TRUE(host.calls().empty());
    EXPECT_EQ(fileBytes(session.dataFolder / "radio_tail.wav"), 28844u);
}

TEST_F(HostTrouble, NoTableAtAllLeavesWhatNeedsNoHost) {
    ASSERT_TRUE(session.load());
    session.plugin.unload();
    ASSERT_TRUE(session.plugin.load(session.dll));
    expectAllBut(kEverything);
    EXPECT_TRUE(host.calls().empty());
}

// A channel with an odd name comes before the right one, which must be found nevertheless.
class OddNames : public HostTrouble {
  protected:
    void expectFoundBehind(const std::optional<std::string>& name) {
        host.removeChannel(kSchid, kTower122800);
        host.addChannel(kSchid, {500, name});
        host.addChannel(kSchid, {kTower122800, "TWR 122.800"});
        session.telemetry.radios[0].activeKhz = 122800;
        session.publish();
        ASSERT_TRUE(session.start());
        ASSERT_TRUE(session.waitForCalls("requestClientMove", 1));
        EXPECT_EQ(host.callsOf("requestClientMove")[0].channelId, kTower122800);
    }
};

TEST_F(OddNames, Null) {
    expectFoundBehind(std::nullopt);
}
TEST_F(OddNames, Empty) {
    expectFoundBehind("");
}
TEST_F(OddNames, NoUtf8) {
    expectFoundBehind("\xff\xfe\x80 122.80\xc3");
}
TEST_F(OddNames, VeryLong) {
    expectFoundBehind(std::string(1'000'000, '1') + ".122");
}

TEST_F(OddNames, AFrequencyAtTheEndOfAVeryLongOneIsFound) {
    host.addChannel(kSchid, {500, std::string(100'000, 'x') + "\xff 133.700"});
    session.telemetry.radios[0].activeKhz = 133700;
    session.publish();
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(session.waitForCalls("requestClientMove", 1));
    EXPECT_EQ(host.callsOf("requestClientMove")[0].channelId, 500u);
}

TEST_F(HostTrouble, ANullChannelListIsLivedWith) {
    host.setNullChannelList(true);
    session.telemetry.radios[0].activeKhz = 122800;
    session.publish();
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(session.waitForCalls("getChannelList", 1));
    ASSERT_TRUE(session.waitPasses(2));
    EXPECT_TRUE(host.callsOf("requestClientMove").empty());
    host.setNullChannelList(false);
    session.tune(1, 121500);
    EXPECT_TRUE(session.waitForCalls("requestClientMove", 1));
}

TEST_F(HostTrouble, AServerThatVanishesIsLivedWith) {
    session.telemetry.radios[0].activeKhz = 119000;
    session.publish();
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(session.waitForCalls("getChannelList", 1));
    host.removeServer(kSchid);
    session.tune(1, 122800);
    // A pass asks for the id at least once; 350 ms are seven of them.
    ASSERT_TRUE(session.waitForCalls("getClientID", host.callsOf("getClientID").size() + 12));
    EXPECT_TRUE(host.callsOf("requestClientMove").empty());
}

TEST_F(HostTrouble, AChannelDeletedDuringTheLookIsPassedOver) {
    host.removeChannel(kSchid, kTower122800);
    host.addChannel(kSchid, {500, "soon gone 122.800"});
    host.addChannel(kSchid, {kTower122800, "TWR 122.800"});
    host.setBeforeCall([this](const HostCall& call) {
        if (call.function == "getChannelVariableAsString" && call.channelId == 500) host.removeChannel(kSchid, 500);
    });
    session.telemetry.radios[0].activeKhz = 122800;
    session.publish();
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(session.waitForCalls("requestClientMove", 1));
    EXPECT_EQ(host.callsOf("requestClientMove")[0].channelId, kTower122800);
}

TEST_F(HostTrouble, TenThousandChannelsAreWalkedToTheLast) {
    host.removeChannel(kSchid, kTower122800);
    constexpr std::uint64_t kChannels = 10'000;
    for (std::uint64_t i = 1; i < kChannels; i++)
        host.addChannel(kSchid, {1000 + i, "[spacer" + std::to_string(i) + "] 122.8 or 122.80 " + std::to_string(i)});
    host.addChannel(kSchid, {kTower122800, "TWR 122.800"});
    session.telemetry.radios[0].activeKhz = 122800;
    session.publish();
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(session.waitForCalls("requestClientMove", 1, 60'000));
    EXPECT_EQ(host.callsOf("requestClientMove")[0].channelId, kTower122800);
    EXPECT_GE(host.callsOf("getChannelVariableAsString").size(), kChannels);
}
