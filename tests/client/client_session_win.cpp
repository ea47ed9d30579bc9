#include "tests/client/client_session_win.h"

namespace {

constexpr std::uint64_t kPublishEveryMs = 400;  // a worker's slowest pace is 500 ms

}  // namespace

ClientSession::ClientSession(const std::wstring& appDataName)
    : appData(machine.path / appDataName),
      dataFolder(appData / L"Corvalis"),
      pluginFolder(machine.path / L"plugins"),
      dll(pluginFolder / L"corvalis_win64.dll"),
      appDataVariable(L"APPDATA", appData.wstring()) {
    std::filesystem::create_directories(appData);
    std::filesystem::create_directories(pluginFolder);
    host.addServer(kSchid, kOwnClient, kLobby);
    host.addClient(kSchid, kOtherClient, kLobby);
    host.addChannel(kSchid, {kLobby, "Lobby"});
    host.addChannel(kSchid, {kTower122800, "TWR 122.800"});
    host.addChannel(kSchid, {kGround121500, "GND 121,500"});
    host.addChannel(kSchid, {kApproach118005, "APP 118.005 / DEP 127.250"});
}

ClientSession::~ClientSession() {
    stop();
    plugin.unload();
}

::testing::AssertionResult ClientSession::load() {
    std::error_code error;
    std::filesystem::copy_file(productFile("corvalis_win64.dll"), dll,
                               std::filesystem::copy_options::overwrite_existing, error);
    if (error) return ::testing::AssertionFailure() << "cannot copy the DLL: " << error.message();
    if (!plugin.load(dll) || !plugin.introduce(host)) return ::testing::AssertionFailure() << plugin.error();
    plugin.exports().registerPluginID(kPluginId);
    return ::testing::AssertionSuccess();
}

::testing::AssertionResult ClientSession::start() {
    if (!plugin.isLoaded()) {
        const auto loaded = load();
        if (!loaded) return loaded;
    }
    const int answer = plugin.exports().init();
    isRunning_ = true;
    if (answer != 0) return ::testing::AssertionFailure() << "init answered " << answer;
    return ::testing::AssertionSuccess();
}

void ClientSession::stop() {
    if (isRunning_) plugin.exports().shutdown();
    isRunning_ = false;
}

void ClientSession::publish() {
    isPublishing_ = true;
    publishedAt_ = clock.tickMs();
    std::filesystem::create_directories(dataFolder);
    EXPECT_TRUE(replaceFile(dataFolder / "telemetry.json", telemetryText(telemetry, clock.unixSeconds())));
}

std::uint64_t ClientSession::tune(int com, std::int32_t activeKhz) {
    telemetry.radios[static_cast<std::size_t>(com - 1)].activeKhz = activeKhz;
    const std::uint64_t before = clock.tickMs();
    publish();
    return before;
}

void ClientSession::pump() {
    for (const HostEvent& event : host.advance(clock.tickMs())) {
        const int answer = plugin.deliver(event);
        if (event.kind == HostEventKind::kServerError) eventAnswers.push_back(answer);
    }
    if (isPublishing_ && clock.tickMs() - publishedAt_ >= kPublishEveryMs) publish();
}

bool ClientSession::waitPasses(int passes) {
    const auto seen = [&] { return host.callsOf("getClientSelfVariableAsInt").size(); };
    const std::size_t wanted = seen() + static_cast<std::size_t>(passes);
    return waitUntil([&] { return seen() >= wanted; });
}

bool ClientSession::waitTicks(std::uint64_t ms) {
    const std::uint64_t end = clock.tickMs() + ms;
    while (clock.tickMs() < end) {
        if (!waitPasses(1)) return false;
    }
    return true;
}

std::size_t ClientSession::passesBetween(std::uint64_t fromMs, std::uint64_t toMs) const {
    std::size_t count = 0;
    for (const HostCall& call : host.callsOf("getClientSelfVariableAsInt"))
        count += call.atMs > fromMs && call.atMs <= toMs;
    return count;
}

bool ClientSession::waitForCalls(const char* function, std::size_t count, std::uint64_t deadlineMs) {
    return waitUntil([&] { return host.callsOf(function).size() >= count; }, deadlineMs);
}

::testing::AssertionResult ClientSession::waitForArrival(std::uint64_t channelId) {
    if (!waitUntil([&] { return host.ownChannel(kSchid) == channelId; })) {
        return ::testing::AssertionFailure() << "the user is in channel " << host.ownChannel(kSchid);
    }
    // A look that was under way may have begun before the arrival, and then so did its channel query.
    const std::size_t looks = host.callsOf("getChannelOfClient").size();
    if (waitForCalls("getChannelOfClient", looks + 1) && waitPasses(1)) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "no further look at the channel";
}

bool ClientSession::waitForLog(const std::string& part, std::uint64_t deadlineMs) {
    return waitUntil(
        [&] {
            for (const std::string& line : host.logLines()) {
                if (line.find(part) != std::string::npos) return true;
            }
            return false;
        },
        deadlineMs);
}

bool ClientSession::writeSettings(const std::string& lines) {
    std::filesystem::create_directories(dataFolder);
    return writeFile(dataFolder / "settings.ini", lines);
}

bool ClientSession::copyWorker(const std::filesystem::path& program) {
    std::error_code error;
    return std::filesystem::copy_file(program, pluginFolder / "hopline_worker.exe",
                                      std::filesystem::copy_options::overwrite_existing, error);
}

void PluginTest::TearDown() {
    session.stop();
    for (const std::string& problem : host.problems()) ADD_FAILURE() << problem;
    if (mayLeak) return;
    for (const std::string& leak : host.leaks()) ADD_FAILURE() << leak;
}
