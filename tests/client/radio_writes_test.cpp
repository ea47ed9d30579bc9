#include <windows.h>
#include "panel/panel_requests.h"
#include "tests/client/client_session_win.h"
#include "tests/client/command_reader.h"
#include "tests/client/window_watch_win.h"

namespace {

constexpr int kActive = 0;
constexpr int kStandby = 1;

}  // namespace

class RadioWrites : public PluginTest {
  protected:
    void fly() {
        session.telemetry.radios[0].activeKhz = 119000;
        session.telemetry.radios[0].standbyKhz = 121500;
        session.telemetry.radios[1].activeKhz = 120000;
        session.telemetry.radios[1].standbyKhz = 121975;
        session.telemetry.radios[1].spacing = 0;
        session.publish();
        ASSERT_TRUE(session.start());
        ASSERT_TRUE(session.waitForCalls("getChannelList", 1));  // connected to the simulator
        ASSERT_TRUE(session.waitUntil([&] { return panel() != nullptr; }));
    }
    HWND panel() const { return static_cast<HWND>(findOwnWindow(L"CorvalisRadioPanel")); }
    void post(unsigned message, WPARAM wParam, LPARAM lParam) {
        ASSERT_TRUE(PostMessageW(panel(), message, wParam, lParam));
    }
    void step(int com, int slot, bool wholeMegahertz, int steps) {
        post(kPanelStepMessage, static_cast<WPARAM>(com | slot << 8 | (wholeMegahertz ? 1 : 0) << 16), steps);
    }
    std::string nextCommand() { return commands_.next(); }
    void acknowledge(bool ok) { commands_.acknowledge(ok); }
    // Nothing waits in the queue: a swap of the other radio, added at its end, is the next to be written.
    ::testing::AssertionResult nothingElseIsWritten() {
        post(kPanelSwapMessage, 2, 0);
        const std::string command = nextCommand();
        if (jsonValue(command, "com") == "2" && jsonValue(command, "slot") == "swap")
            return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure() << "written: " << command;
    }

  private:
    CommandReader commands_{session};
};

TEST_F(RadioWrites, AStepBecomesOneCommandOfThisForm) {
    fly();
    step(1, kStandby, false, 1);
    const std::string command = nextCommand();
    const std::string id = jsonValue(command, "id");
    const std::string created = jsonValue(command, "created");
    EXPECT_EQ(command,
              "{\"id\":\"" + id + "\",\"com\":1,\"slot\":\"standby\",\"target\":121505,\"created\":" + created + "}");
    EXPECT_EQ(id.rfind(std::to_string(GetCurrentProcessId()) + "-", 0), 0u) << id;
    EXPECT_FALSE(keepsTemporaryFiles(session.dataFolder));
}

TEST_F(RadioWrites, CreatedIsTheTimeOfWriting) {
    constexpr double kRounded = 0.0005;  // to three decimals
    fly();
    const double before = session.clock.unixSeconds();
    step(1, kStandby, false, 1);
    const double created = std::stod(jsonValue(nextCommand(), "created"));
    EXPECT_GE(created, before + 0.2);  // it has waited 300 ms for further turns
    EXPECT_LE(created, session.clock.unixSeconds() + kRounded);
}

TEST_F(RadioWrites, StepsGoAlongTheGridAndWrapInsideTheMegahertz) {
    fly();
    step(2, kStandby, false, 1);
    EXPECT_EQ(jsonValue(nextCommand(), "target"), "121000");
    acknowledge(true);
    step(2, kActive, true, 2);
    const std::string command = nextCommand();
    EXPECT_EQ(jsonValue(command, "target"), "122000");
    EXPECT_EQ(jsonValue(command, "slot"), "active");
    EXPECT_EQ(jsonValue(command, "com"), "2");
}

TEST_F(RadioWrites, RapidStepsBecomeOneCommandWithTheLastValue) {
    fly();
    for (int i = 0; i < 3; i++) step(1, kStandby, false, 1);
    EXPECT_EQ(jsonValue(nextCommand(), "target"), "121515");
    acknowledge(true);
    EXPECT_TRUE(nothingElseIsWritten());
}

TEST_F(RadioWrites, SwapAndVolumeAreWritten) {
    fly();
    post(kPanelSwapMessage, 2, 0);
    const std::string swap = nextCommand();
    EXPECT_EQ(jsonValue(swap, "slot"), "swap");
    EXPECT_EQ(jsonValue(swap, "com"), "2");
    EXPECT_EQ(jsonValue(swap, "target"), "0");
    acknowledge(true);
    post(kPanelVolumeMessage, 1, 40);
    const std::string volume = nextCommand();
    EXPECT_EQ(jsonValue(volume, "slot"), "volume");
    EXPECT_EQ(jsonValue(volume, "com"), "1");
    EXPECT_EQ(jsonValue(volume, "target"), "0.5");  // 80 percent is unity
}

TEST_F(RadioWrites, TwoSwapsAreTwoCommandsOneAfterTheOther) {
    fly();
    post(kPanelSwapMessage, 1, 0);
    post(kPanelSwapMessage, 1, 0);
    const std::string first = nextCommand();
    ASSERT_NE(first, "");
    ASSERT_TRUE(waitForPosted(panel()));
    ASSERT_TRUE(session.waitPasses(2));
    EXPECT_EQ(readFile(session.dataFolder / "command.json"), first);  // not acknowledged yet
    acknowledge(true);
    EXPECT_NE(nextCommand(), "");
}

TEST_F(RadioWrites, ARefusalDropsWhatWaitsForTheSameSlot) {
    fly();
    post(kPanelSwapMessage, 1, 0);
    ASSERT_NE(nextCommand(), "");
    post(kPanelSwapMessage, 1, 0);
    post(kPanelSwapMessage, 1, 0);
    ASSERT_TRUE(waitForPosted(panel()));
    acknowledge(false);
    EXPECT_TRUE(nothingElseIsWritten());
}

TEST_F(RadioWrites, OfASlotThatCannotBeWrittenDoNotLeave) {
    session.telemetry.radios[0].writable = false;
    fly();
    step(1, kStandby, false, 1);
    post(kPanelSwapMessage, 1, 0);
    post(kPanelVolumeMessage, 1, 50);
    EXPECT_TRUE(nothingElseIsWritten());
}

TEST_F(RadioWrites, HoldChannelFollowingWhileUnderWay) {
    fly();
    step(1, kActive, true, 3);
    const std::string command = nextCommand();
    EXPECT_EQ(jsonValue(command, "target"), "122000");
    session.tune(1, 122800);             // half-way, as it were
    ASSERT_TRUE(session.waitPasses(9));  // 350 ms are seven or eight of them
    EXPECT_TRUE(host.callsOf("requestClientMove").empty());
    acknowledge(true);
    EXPECT_TRUE(session.waitForCalls("requestClientMove", 1));
}

TEST_F(RadioWrites, AnAcknowledgedVolumeBecomesTheReceiveVolumeOfTheSettings) {
    fly();
    post(kPanelVolumeMessage, 1, 95);
    const std::string command = nextCommand();
    EXPECT_EQ(jsonValue(command, "target"), "1");
    acknowledge(true);
    EXPECT_TRUE(
        session.waitUntil([&] { return session.settings().find("\r\nreceive_volume=95\r\n") != std::string::npos; }));
}

TEST_F(RadioWrites, ALockedCommandFileCostsThatCommandOnly) {
    fly();
    ASSERT_TRUE(writeFile(session.dataFolder / "command.json", ""));
    const HANDLE lock = CreateFileW((session.dataFolder / "command.json").c_str(), GENERIC_READ, 0, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(lock, INVALID_HANDLE_VALUE);
    post(kPanelSwapMessage, 1, 0);
    EXPECT_TRUE(waitForPosted(panel()));
    EXPECT_TRUE(session.waitPasses(2));  // the second pass began after the post and has failed to write
    CloseHandle(lock);
    EXPECT_TRUE(nothingElseIsWritten());
}

// With the real worker flying its built-in aircraft.
class RealWorker : public PluginTest {
  protected:
    void fly(const std::string& script) {
        std::filesystem::create_directories(session.dataFolder);
        ASSERT_TRUE(writeFile(session.dataFolder / "flight.txt", script));
        ASSERT_TRUE(writeFile(session.dataFolder / "worker.ini", "link=simulate\nscript=flight.txt\n"));
        ASSERT_TRUE(session.copyWorker(productFile("hopline_worker.exe")));
        ASSERT_TRUE(session.start());
    }
    std::string telemetryValue(const char* key) const {
        std::string text = readFile(session.dataFolder / "telemetry.json");
        std::erase_if(text, [](char c) { return c == ' ' || c == '\n' || c == '\r'; });
        return jsonValue(text, key);
    }
    void TearDown() override {
        if (HasFailure()) std::cout << readFile(session.dataFolder / "hopline_worker.log");
        PluginTest::TearDown();
    }
};

TEST_F(RealWorker, TunesTheAircraftByScriptAndTheUserFollows) {
    MoveRule refused;  // so that the next frequency may be asked for at once
    refused.answer = MoveAnswer::kRefuseAtOnce;
    host.setMoveRule(kTower122800, refused);
    fly("0 tune COM1 active 122.800\n1 tune COM1 active 121.500\n");
    ASSERT_TRUE(session.waitForCalls("requestClientMove", 1));
    EXPECT_EQ(host.callsOf("requestClientMove")[0].channelId, kTower122800);
    ASSERT_TRUE(session.waitUntil([&] { return host.ownChannel(kSchid) == kGround121500; }));
    EXPECT_TRUE(host.logLines()[2] == "SimConnect worker started");
}

TEST_F(RealWorker, CarriesOutATuningClickAndTheUserFollows) {
    fly("0 tune COM1 active 121.800\n");
    ASSERT_TRUE(session.waitForCalls("getChannelList", 1));
    ASSERT_TRUE(session.waitUntil([] { return findOwnWindow(L"CorvalisRadioPanel") != nullptr; }));
    PostMessageW(static_cast<HWND>(findOwnWindow(L"CorvalisRadioPanel")), kPanelStepMessage, 1 | 1 << 16, 1);
    ASSERT_TRUE(session.waitForCalls("requestClientMove", 1));
    EXPECT_EQ(host.callsOf("requestClientMove")[0].channelId, kTower122800);
    EXPECT_EQ(telemetryValue("com1_active"), "122800");
    EXPECT_EQ(telemetryValue("ack_ok"), "true");
    EXPECT_EQ(telemetryValue("ack_message"), "COM1ACTIVE122.800");  // the blanks were removed above
}

TEST_F(RealWorker, LeavesNoProcessBehind) {
    fly("");
    ASSERT_TRUE(session.waitForCalls("getChannelList", 1));
    ASSERT_FALSE(childProcesses(L"hopline_worker.exe").empty());
    session.stop();
    EXPECT_TRUE(waitFor([] { return childProcesses(L"hopline_worker.exe").empty(); }));
}
