#include "tests/client/client_session_win.h"

namespace {

struct PositionRow {
    HostPosition position;
    const char* name;
};

// The row's name in the list of tests.
void PrintTo(const PositionRow& row, std::ostream* stream) {
    *stream << row.name;
}

const PositionRow kPositions[] = {
    {kFreeMemoryPosition, "freeMemory"},
    {kLogMessagePosition, "logMessage"},
    {kPlayWaveFilePosition, "playWaveFile"},
    {kRequestClientMovePosition, "requestClientMove"},
    {kGetClientIdPosition, "getClientID"},
    {kGetClientSelfVariableAsIntPosition, "getClientSelfVariableAsInt"},
    {kGetChannelOfClientPosition, "getChannelOfClient"},
    {kGetChannelVariableAsStringPosition, "getChannelVariableAsString"},
    {kGetChannelListPosition, "getChannelList"},
    {kGetCurrentServerConnectionHandlerIdPosition, "getCurrentServerConnectionHandlerID"},
    {kCreateReturnCodePosition, "createReturnCode"},
};

}  // namespace

class HostTrouble : public PluginTest {
  protected:
    // Lets the plugin do everything it calls the host for: start, a talk, a followed frequency, shutdown.
    void flyOnce(const HostFunctionTable& table) {
        ASSERT_TRUE(session.load());
        session.plugin.exports().setFunctionPointers(table);
        ASSERT_TRUE(session.start());
        session.plugin.exports().currentServerConnectionChanged(kSchid);
        session.plugin.exports().onTalkStatusChangeEvent(kSchid, 1, 0, kOtherClient);
        session.tune(1, 122800);
        session.waitUntil([] { return false; }, 450);  // past the standstill and the shortest talk; nothing to look for
        session.plugin.exports().onTalkStatusChangeEvent(kSchid, 0, 0, kOtherClient);
        session.waitUntil([] { return false; }, 300);
        session.stop();
    }
    bool wasCalled(const char* function) const { return !host.callsOf(function).empty(); }
};

class WithoutOneFunction : public HostTrouble, public ::testing::WithParamInterface<PositionRow> {};

TEST_P(WithoutOneFunction, ThePluginStillDoesWhatItCan) {
    const HostPosition missing = GetParam().position;
    host.removeFunction(missing);
    flyOnce(host.table());
    EXPECT_FALSE(wasCalled(GetParam().name));
    EXPECT_EQ(wasCalled("logMessage"), missing != kLogMessagePosition);
    EXPECT_EQ(wasCalled("playWaveFile"), missing != kPlayWaveFilePosition);
    EXPECT_EQ(wasCalled("createReturnCode"), missing != kCreateReturnCodePosition);
    if (missing == kFreeMemoryPosition) mayLeak = true;  // nothing can be given back
}

INSTANTIATE_TEST_SUITE_P(Host, WithoutOneFunction, ::testing::ValuesIn(kPositions),
                         [](const auto& row) { return std::string(row.param.name); });

class WithOneFunctionFailing : public HostTrouble, public ::testing::WithParamInterface<PositionRow> {};

TEST_P(WithOneFunctionFailing, ThePluginStartsWorksAndStops) {
    host.failFunction(GetParam().position, kHostErrorNotConnected);
    flyOnce(host.table());
    EXPECT_TRUE(wasCalled("logMessage"));
    EXPECT_TRUE(wasCalled("playWaveFile"));
}

INSTANTIATE_TEST_SUITE_P(Host, WithOneFunctionFailing, ::testing::ValuesIn(kPositions),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(HostTrouble, ATableOfNullsIsLivedWith) {
    flyOnce(HostFunctionTable());
    EXPECT_TRUE(host.calls().empty());
    EXPECT_EQ(fileBytes(session.dataFolder / "radio_tail.wav"), 28844u);
}

TEST_F(HostTrouble, NoTableAtAllIsLivedWith) {
    ASSERT_TRUE(session.load());
    session.plugin.unload();
    ASSERT_TRUE(session.plugin.load(session.dll));
    ASSERT_TRUE(session.start());
    session.tune(1, 122800);
    session.plugin.exports().currentServerConnectionChanged(kSchid);
    session.waitUntil([] { return false; }, 600);
    session.stop();
    EXPECT_TRUE(host.calls().empty());
}

TEST_F(HostTrouble, AMissingReturnCodeFunctionLeavesMovesWithoutOne) {
    host.removeFunction(kCreateReturnCodePosition);
    session.telemetry.radios[0].activeKhz = 122800;
    session.publish();
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(session.waitForCalls("requestClientMove", 1));
    EXPECT_EQ(host.callsOf("requestClientMove")[0].returnCode, std::nullopt);
}

// A channel of an odd name stands before the right one; the right one is found all the same.
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
    EXPECT_TRUE(session.waitForCalls("requestClientMove", 1));
}

TEST_F(HostTrouble, AServerThatVanishesIsLivedWith) {
    session.telemetry.radios[0].activeKhz = 119000;
    session.publish();
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(session.waitForCalls("getChannelList", 1));
    host.removeServer(kSchid);
    session.tune(1, 122800);
    session.waitUntil([] { return false; }, 700);
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

TEST_F(HostTrouble, ASlowHostDoesNotKeepShutdownFromEnding) {
    host.setBeforeCall([](const HostCall& call) {
        if (call.function == "getChannelList") waitFor([] { return false; }, 1000);
    });
    session.telemetry.radios[0].activeKhz = 122800;
    session.publish();
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(session.waitUntil([&] { return host.callsOf("getChannelOfClient").size() == 1; }));
    const std::uint64_t before = session.clock.tickMs();
    session.stop();
    EXPECT_LT(session.clock.tickMs() - before, 4000u);
}
