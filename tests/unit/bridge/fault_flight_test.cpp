// fault_flight_test.cpp - a flight during which disk, folder, worker or host fail for a while, and what is left of it
// afterwards: nothing.
#include <gtest/gtest.h>
#include <random>
#include "settings/settings_text.h"
#include "tests/unit/bridge/flight_rig.h"

namespace {

struct DiskFault {
    const char* name;
    void (*begin)(Flight& flight);
};

void failEachStep(Flight& flight, FileStep failing, FileResult result) {
    flight.files.trouble = [=](FileStep step, const std::string&) { return step == failing ? result : FileResult{}; };
}

constexpr DiskFault kDiskFaults[] = {
    {"disk full",
     [](Flight& flight) {
         failEachStep(flight, FileStep::kWrite, {FileState::kFailed, 112});
     }},
    {"folder read-only",
     [](Flight& flight) {
         failEachStep(flight, FileStep::kWrite, {FileState::kFailed, 5});
     }},
    {"files read-only",
     [](Flight& flight) {
         failEachStep(flight, FileStep::kMove, {FileState::kReadOnly, 5});
     }},
    {"files held",
     [](Flight& flight) {
         failEachStep(flight, FileStep::kMove, {FileState::kHeld, 32});
     }},
    {"folder gone",
     [](Flight& flight) {
         for (const std::string& name : flight.files.names()) flight.files.remove(name);
         flight.files.trouble = [](FileStep, const std::string&) { return FileResult{FileState::kMissing, 3}; };
     }},
};

}  // namespace

TEST(FaultInFlight, OfTheDiskIsSaidAndLivedThroughAndNoSettingIsLost) {
    for (const DiskFault& fault : kDiskFaults) {
        SCOPED_TRACE(fault.name);
        Flight flight;
        flight.runFor(2000);
        ASSERT_EQ(flight.ownChannel(), kTowerOf122800);
        fault.begin(flight);
        updateSettings(flight.settings, [](Settings& live) { live.theme = 2; });
        flight.runFor(2000);
        EXPECT_EQ(copySettings(flight.settings).theme, 2);
        flight.swap();  // refused, or lost
        flight.runFor(3000);
        EXPECT_FALSE(flight.isConnected());
        EXPECT_EQ(flight.statusText(), "DISCONNECTED: waiting for the worker");
        flight.runFor(60'000);
        flight.files.trouble = {};
        const int ms = flight.msUntil([&] { return flight.isConnected(); }, 5000);
        EXPECT_GE(ms, 0);
        EXPECT_LE(ms, 200);
        ASSERT_TRUE(flight.swap());
        EXPECT_GE(flight.msUntil([&] { return flight.ownChannel() == kGuardOf121500; }, 5000), 0);
        savePendingSettings(flight.settings);  // as the end of the plugin does
        EXPECT_EQ(readSettingsText(flight.files.text(pathOf(kSettingsFile))).theme, 2);
        EXPECT_EQ(flight.host.problems(), std::vector<std::string>{});
        for (const std::string& name : flight.files.names()) EXPECT_EQ(name.find(".tmp"), std::string::npos) << name;
    }
}

TEST(FaultInFlight, OfAHangingWorkerIsSaidWithinThreeSecondsAndOverWhenItGoesOn) {
    Flight flight;
    flight.worker.state = WorkerLife::State::kRunning;
    flight.runFor(2000);
    flight.isWorkerRunning = false;
    const int ms = flight.msUntil([&] { return !flight.isConnected(); }, 10'000);
    EXPECT_GT(ms, 2000);
    EXPECT_LE(ms, 3100);
    EXPECT_EQ(flight.statusText(), "DISCONNECTED: waiting for the worker");
    EXPECT_EQ(flight.ownChannel(), kTowerOf122800);
    flight.isWorkerRunning = true;
    EXPECT_LE(flight.msUntil([&] { return flight.isConnected(); }, 5000), 100);
}

// Each answer of the host is drawn anew: done, or one of its errors.
TEST(FaultInFlight, OfTheHostAtRandomEndsWithTheLastError) {
    const std::pair<const char*, HostPosition> positions[] = {
        {"logMessage", kLogMessagePosition},
        {"playWaveFile", kPlayWaveFilePosition},
        {"requestClientMove", kRequestClientMovePosition},
        {"getClientID", kGetClientIdPosition},
        {"getClientSelfVariableAsInt", kGetClientSelfVariableAsIntPosition},
        {"getChannelOfClient", kGetChannelOfClientPosition},
        {"getChannelVariableAsString", kGetChannelVariableAsStringPosition},
        {"getChannelList", kGetChannelListPosition},
    };
    for (unsigned seed = 1; seed <= 8; seed++) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        Flight flight;
        bool isFailing = true;
        int failures = 0;
        flight.host.setBeforeCall([&](const HostCall& call) {
            for (const auto& [name, position] : positions) {
                if (call.function != name) continue;
                const bool fails = isFailing && random() % 3 == 0;
                failures += fails;
                flight.host.failFunction(position, fails ? kHostErrorNotConnected : 0);
            }
        });
        for (int i = 0; i < 20; i++) {
            flight.swap();
            flight.host.setTalking(1, 5, random() % 2 == 0);
            flight.host.setOwnTalkingFlag(1, random() % 2 == 0);
            flight.runFor(random() % 2000);
        }
        EXPECT_GT(failures, 20);
        isFailing = false;
        flight.host.setOwnTalkingFlag(1, false);
        flight.runFor(8000);
        EXPECT_TRUE(flight.isConnected());
        EXPECT_EQ(flight.ownChannel(), flight.active() == 121500 ? kGuardOf121500 : kTowerOf122800);
        EXPECT_FALSE(flight.talk.ownTransmit);
        EXPECT_EQ(flight.host.problems(), std::vector<std::string>{});
        EXPECT_EQ(flight.host.leaks(), std::vector<std::string>{});
    }
}

TEST(FaultInFlight, TenThousandChannelsAreWalkedToTheLast) {
    Flight flight;
    flight.host.removeChannel(1, kGuardOf121500);
    constexpr std::uint64_t kChannels = 10'000;
    for (std::uint64_t i = 1; i <= kChannels - 2; i++)
        flight.host.addChannel(1, {100 + i, "[spacer" + std::to_string(i) + "] 118.27 or 121.5 " + std::to_string(i)});
    flight.host.addChannel(1, {kGuardOf121500, "Guard 121.500"});
    flight.runFor(3000);  // the first move is confirmed
    flight.host.forgetCalls();
    ASSERT_TRUE(flight.swap());
    EXPECT_GE(flight.msUntil([&] { return flight.ownChannel() == kGuardOf121500; }, 5000), 0);
    EXPECT_GE(flight.host.callsOf("getChannelVariableAsString").size(), kChannels);
    EXPECT_EQ(flight.host.leaks(), std::vector<std::string>{});
}
