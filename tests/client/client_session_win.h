// client_session_win.h - one evening at the voice client: a fresh %APPDATA% and plugin folder, a server with channels,
// the real DLL, and a worker's telemetry kept alive while a test waits. Everything is gone afterwards.
// [host] All of it runs on the test's main thread, like the host's callbacks.
#pragma once
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>
#include "base/clock_win.h"
#include "tests/client/fake_telemetry.h"
#include "tests/client/host_model.h"
#include "tests/client/plugin_library_win.h"
#include "tests/client/test_machine_win.h"

// The model's server when a session begins.
inline constexpr std::uint64_t kSchid = 1;
inline constexpr std::uint16_t kOwnClient = 7;
inline constexpr std::uint16_t kOtherClient = 9;
inline constexpr std::uint64_t kLobby = 100;           // "Lobby": the user and the other client sit here
inline constexpr std::uint64_t kTower122800 = 101;     // "TWR 122.800"
inline constexpr std::uint64_t kGround121500 = 102;    // "GND 121,500"
inline constexpr std::uint64_t kApproach118005 = 103;  // "APP 118.005 / DEP 127.250"
inline constexpr const char* kPluginId = "corvalis-test-id";

class ClientSession {
  public:
    // appDataName: the last part of %APPDATA%, any characters.
    explicit ClientSession(const std::wstring& appDataName = L"Roaming");
    ~ClientSession();  // stops, unloads, removes the folders

    // Loads the DLL, asks for its interface version, hands over the host's table and the plugin's id.
    ::testing::AssertionResult load();
    ::testing::AssertionResult start();  // loads the DLL if needed; init must answer 0
    void stop();                         // shutdown, if it is running
    bool isRunning() const { return isRunning_; }

    // Writes the telemetry with the present time; from then on waitUntil keeps it fresh.
    void publish();
    void stopPublishing() { isPublishing_ = false; }
    // Tunes the aircraft's radio and publishes; returns the tick just before the plugin could see it.
    std::uint64_t tune(int com, std::int32_t activeKhz);

    // Waits for the condition while the host's events are delivered and the telemetry stays fresh.
    template <class Condition>
    bool waitUntil(Condition condition, std::uint64_t deadlineMs = 10'000) {
        return waitFor(
            [&] {
                pump();
                return condition();
            },
            deadlineMs);
    }
    // Waits for whole passes of the plugin's poll thread, counted by its talk query (needs a connected server).
    bool waitPasses(int passes);
    bool waitTicks(std::uint64_t ms);  // whole passes until ms have gone by
    // How many passes asked for the talk flag in that time. No pass is shorter than 50 ms, however busy the machine is:
    // a bound in passes holds where one in milliseconds does not.
    std::size_t passesBetween(std::uint64_t fromMs, std::uint64_t toMs) const;
    bool waitForCalls(const char* function, std::size_t count, std::uint64_t deadlineMs = 10'000);
    // Waits until the user is in the channel and the plugin has seen that: the move is over for both.
    ::testing::AssertionResult waitForArrival(std::uint64_t channelId);
    bool waitForLog(const std::string& part, std::uint64_t deadlineMs = 10'000);
    void pump();

    bool writeSettings(const std::string& lines);  // settings.ini in the data folder, before start
    std::string settings() const { return readFile(dataFolder / "settings.ini"); }
    bool copyWorker(const std::filesystem::path& program);  // beside the DLL as hopline_worker.exe

    FreshFolder machine;
    const std::filesystem::path appData;
    const std::filesystem::path dataFolder;    // appData\Corvalis, made by the plugin
    const std::filesystem::path pluginFolder;  // holds the DLL
    const std::filesystem::path dll;
    EnvironmentValue appDataVariable;
    SystemClock clock;  // the plugin's own, so that intervals compare exactly
    HostModel host{clock};
    PluginLibrary plugin;
    FakeTelemetry telemetry;
    std::vector<int> eventAnswers;  // the answers of the server-error export, in order

  private:
    bool isRunning_ = false;
    bool isPublishing_ = false;
    std::uint64_t publishedAt_ = 0;
};

// A test with one session; at its end the plugin must not have broken a rule of the host.
class PluginTest : public ::testing::Test {
  protected:
    void TearDown() override;

    ClientSession session;
    HostModel& host = session.host;
    bool mayLeak = false;  // the test has removed freeMemory
};
