// reconnect_test.cpp - through the real DLL: what comes back with a connection in the same tab besides the following
// (tests/unit/plugin/reconnect_test.cpp has the rules), what a restart of the plugin forgets, and two voice clients on
// one data folder.
#include <windows.h>
#include <algorithm>
#include "panel/panel_requests.h"
#include "tests/client/new_client_win.h"
#include "tests/client/panel_test.h"
#include "tests/client/window_watch_win.h"
#include "tests/simulator/program_win.h"

namespace {

constexpr std::uint64_t kTalkMs = 150;  // long enough for a tail
constexpr std::uint64_t kPatienceMs = 30'000;

}  // namespace

class Reconnects : public PanelTest {
  protected:
    const PluginExports& plugin() const { return session.plugin.exports(); }
    std::size_t played(const char* file) const {
        return static_cast<std::size_t>(
            std::ranges::count_if(host.playedSounds(), [&](const std::string& path) { return path.ends_with(file); }));
    }
    void receiveText() {
        HostTextMessage message;
        message.message = "cleared for take-off";
        session.plugin.deliver(message);
    }
};

TEST_F(Reconnects, InTheSameTabBringBackChimeAndTails) {
    ASSERT_TRUE(session.writeSettings("panel_visible=0\r\ntext_auto_open=0\r\n"));
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(session.waitPasses(1));
    plugin().onConnectStatusChangeEvent(kSchid, 0, 0);
    receiveText();
    EXPECT_EQ(played("text_alert.wav"), 0u);  // there is no server to play it on
    for (int status = 1; status <= 4; status++) plugin().onConnectStatusChangeEvent(kSchid, status, 0);
    receiveText();
    EXPECT_EQ(played("text_alert.wav"), 1u);
    host.setOwnTalkingFlag(kSchid, true);
    ASSERT_TRUE(session.waitPasses(2));
    ASSERT_TRUE(session.waitTicks(kTalkMs));
    host.setOwnTalkingFlag(kSchid, false);
    EXPECT_TRUE(session.waitUntil([&] { return played("radio_tail.wav") == 1; }));
}

TEST_F(Reconnects, OfThePluginSendTheAircraftNothingThatWasAskedForBefore) {
    ASSERT_TRUE(startWith(kGeneralTheme, ""));
    ASSERT_TRUE(session.waitUntil([] { return findPanel() != nullptr; }, kPatienceMs));
    // A turn waits for a moment whether another follows.
    PostMessageW(findPanel(), kPanelStepMessage, 1U | 1U << 8U, 1);
    ASSERT_TRUE(waitForPosted(findPanel()));
    session.stop();
    std::filesystem::remove(session.dataFolder / "command.json");
    host.forgetCalls();
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(session.waitUntil([] { return findPanel() != nullptr; }, kPatienceMs));
    ASSERT_TRUE(session.waitTicks(600));  // twice that moment
    EXPECT_EQ(readFile(session.dataFolder / "command.json"), "");
    PostMessageW(findPanel(), kPanelSwapMessage, 1, 0);
    EXPECT_EQ(jsonValue(CommandReader(session).next(kPatienceMs), "slot"), "swap");
}

// The other client is a process of its own with a server of its own; it, too, has the plugin on our data folder.
TEST_F(Reconnects, OfAnotherClientOnTheSameDataFolderDisturbNeither) {
    session.telemetry.radios[0].activeKhz = 122800;
    session.publish();
    ASSERT_TRUE(session.load());
    const EnvironmentValue noWorkerBesideIt(L"CORVALIS_PRODUCT_FOLDER", session.pluginFolder.wstring());
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(session.waitForArrival(kTower122800));
    const auto isAnywhere = [](const standin::Program& client) {
        return std::ranges::any_of(client.lines(), [](const std::string& line) { return line.starts_with("in "); });
    };
    for (int times = 0; times < 2; times++) {
        standin::Program other;
        ASSERT_TRUE(other.start(standin::besideUs(programName(L"restarts.exe"), L"--client")));
        EXPECT_TRUE(session.waitUntil([&] { return isAnywhere(other); }, kPatienceMs)) << times;
        session.tune(1, 121500);
        ASSERT_TRUE(session.waitForArrival(kGround121500));
        session.tune(1, 122800);
        ASSERT_TRUE(session.waitForArrival(kTower122800));
        other.kill();
    }
    receiveText();
    EXPECT_EQ(played("text_alert.wav"), 1u);
}
