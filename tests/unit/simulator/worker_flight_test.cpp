// worker_flight_test.cpp - the worker and the stand-in simulator, which share no code, in one process and on one clock
// set by hand: everything between command.json and telemetry.json except the pipe.
#include <gtest/gtest.h>
#include <algorithm>
#include <array>
#include <deque>
#include "exchange/telemetry_text.h"
#include "tests/simulator/simulator.h"
#include "tests/unit/worker/worker_fakes.h"
#include "worker/simconnect/simconnect_link.h"
#include "worker/worker_loop.h"

namespace {

constexpr std::uint64_t kPassEveryMs = 20;

// The transport of one worker, straight into the simulator.
class SimulatorLine : public simconnect::Transport {
  public:
    SimulatorLine(standin::Simulator& simulator, const ManualClock& clock) : simulator_(simulator), clock_(clock) {}

    void connect() override {
        close();
        if (simulator_.isReachable()) client_ = simulator_.connect(clock_.tickMs());
    }
    void close() override {
        simulator_.disconnect(client_, clock_.tickMs());
        client_ = 0;
        waiting_.clear();
    }
    simconnect::TransportState poll(std::uint64_t) override {
        for (const auto& output : simulator_.takeOutput()) {
            if (output.client != client_ || client_ == 0) continue;
            waiting_ += output.bytes;
            if (output.isLast) client_ = 0;
        }
        return client_ == 0 ? simconnect::TransportState::kClosed : simconnect::TransportState::kOpen;
    }
    std::size_t receive(std::span<std::uint8_t> into) override {
        const auto count = std::min(into.size(), waiting_.size());
        std::copy_n(waiting_.begin(), count, into.begin());
        waiting_.erase(0, count);
        return count;
    }
    bool send(std::span<const std::uint8_t> packet) override {
        simulator_.receive(client_, {reinterpret_cast<const char*>(packet.data()), packet.size()}, clock_.tickMs());
        return client_ != 0;
    }
    std::string problem() const override { return {}; }

  private:
    standin::Simulator& simulator_;
    const ManualClock& clock_;
    int client_ = 0;
    std::string waiting_;
};

class WorkerFlight : public ::testing::Test {
  protected:
    void begin(const char* personality) {
        files.remove("data\\telemetry.json");
        simulator = std::make_unique<standin::Simulator>(*standin::findPersonality(personality), clock.tickMs());
        link = std::make_unique<simconnect::SimConnectLink>(std::make_unique<SimulatorLine>(*simulator, clock));
        loop = std::make_unique<WorkerLoop>("data", files, folder, *link, log);
    }
    // Until the radios are read, as after a few frames.
    void beginAndRead(const char* personality) {
        begin(personality);
        EXPECT_TRUE(flyUntil([&] { return telemetry().ok; }, 6000)) << telemetry().status;
    }
    void act(const char* line) {
        standin::Action action;
        std::string error;
        EXPECT_TRUE(standin::parseAction(line, action, error) && simulator->act(action, clock.tickMs(), error))
            << error;
    }
    template <class Condition>
    bool flyUntil(Condition condition, std::uint64_t ms) {
        for (std::uint64_t flown = 0; flown < ms; flown += kPassEveryMs) {
            if (condition()) return true;
            clock.advance(kPassEveryMs);
            simulator->advance(clock.tickMs());
            loop->pass(clock.tickMs(), clock.unixSeconds());
            judge();
        }
        return condition();
    }
    void fly(std::uint64_t ms) {
        flyUntil([] { return false; }, ms);
    }
    Telemetry telemetry() { return parseTelemetry(files.text("data\\telemetry.json")); }

    // Writes the command like the plugin and flies until it is acknowledged.
    Telemetry command(int com, const char* slot, const char* target) {
        const auto id = "1-" + std::to_string(++commands);
        files.put("data\\command.json", commandText(id, com, slot, target, clock.unixSeconds()));
        startedMs = clock.tickMs();
        EXPECT_TRUE(flyUntil([&] { return telemetry().ackId == id; }, 4500)) << slot;
        return telemetry();
    }
    int heard(const std::string& event) {
        for (auto& report : simulator->takeReports()) reports.push_back(report.text);
        return static_cast<int>(std::count_if(reports.begin(), reports.end(), [&](const std::string& text) {
            return text.find(" event " + event) != std::string::npos;
        }));
    }

    ManualClock clock;
    MemoryFiles files;
    MemoryFolder folder{files};
    MemoryLogFile logFile;
    WorkerLog log{logFile, clock};
    std::unique_ptr<standin::Simulator> simulator;
    std::unique_ptr<simconnect::SimConnectLink> link;
    std::unique_ptr<WorkerLoop> loop;
    std::vector<std::string> reports;
    std::uint64_t startedMs = 0;    // of the last command
    std::uint64_t mayLagMs = 1000;  // how far the telemetry may lag behind the simulator
    int commands = 0;

  private:
    // What the telemetry shows must have been true in the simulator shortly before.
    void judge() {
        recent_.push_back(simulator->aircraft());
        if (recent_.size() > mayLagMs / kPassEveryMs) recent_.pop_front();
        const auto shown = telemetry();
        if (!shown.ok) return;
        for (std::size_t i = 0; i < kRadioCount; i++) {
            const auto& radio = shown.radios[i];
            const bool isTrue = std::any_of(recent_.begin(), recent_.end(), [&](const standin::Aircraft& aircraft) {
                const auto& real = aircraft.radios[i];
                return (radio.active == 0 || radio.active * 1000 == static_cast<std::int64_t>(real.activeHz)) &&
                       (radio.standby == 0 || radio.standby * 1000 == static_cast<std::int64_t>(real.standbyHz));
            });
            EXPECT_TRUE(isTrue) << "COM" << i + 1 << " shows " << radio.active << " / " << radio.standby;
        }
    }

    std::deque<standin::Aircraft> recent_;
};

std::array<bool, 4> allWritable(bool writable) {
    return {writable, writable, writable, writable};
}

}  // namespace

TEST_F(WorkerFlight, InStockReadsWritesAndFollowsTheCockpit) {
    beginAndRead("stock");
    const auto first = telemetry();
    EXPECT_EQ(first.radios[0].active, 122800);
    EXPECT_EQ(first.radios[0].standby, 121500);
    EXPECT_EQ(first.radios[0].spacing, 1);
    EXPECT_EQ(first.radios[1].spacing, 0);
    EXPECT_EQ(first.radios[1].volume, 1.0f);
    EXPECT_EQ(first.radios[0].writable, allWritable(true));
    EXPECT_EQ(first.rangeMax, 136990);
    EXPECT_TRUE(command(1, "standby", "128855").ackOk);
    EXPECT_TRUE(command(1, "swap", "0").ackOk);
    EXPECT_EQ(telemetry().radios[0].active, 128855);
    EXPECT_TRUE(command(2, "active", "136975").ackOk);
    EXPECT_TRUE(command(2, "volume", "0.4").ackOk);
    EXPECT_FALSE(command(2, "active", "118005").ackOk);  // COM2 keeps to 25 kHz
    EXPECT_EQ(heard("COM_STBY_RADIO_SET_HZ 128855000"), 1);
    EXPECT_EQ(heard("COM1_RADIO_SWAP 0"), 1);
    EXPECT_EQ(heard("COM2_RADIO_SET_HZ"), 1);
    EXPECT_EQ(heard("COM2_VOLUME_SET 40"), 1);
    act("tune COM1 active 118.005");
    fly(60);
    EXPECT_EQ(telemetry().radios[0].active, 118005);
}

TEST_F(WorkerFlight, IsNotRefusedAnything) {
    beginAndRead("stock_2024");
    for (const auto& report : simulator->takeReports())
        EXPECT_EQ(report.text.find("refused"), std::string::npos) << report.text;
}

TEST_F(WorkerFlight, ReportsSwapsThatAreIgnoredAndStopsOfferingThem) {
    beginAndRead("ignores_swaps");
    EXPECT_FALSE(command(1, "swap", "0").ackOk);
    EXPECT_FALSE(command(1, "swap", "0").ackOk);
    fly(200);
    EXPECT_FALSE(telemetry().radios[0].writable[3]);
    EXPECT_TRUE(telemetry().radios[0].writable[1]);
    EXPECT_TRUE(command(1, "standby", "119000").ackOk);
    EXPECT_EQ(heard("COM1_RADIO_SWAP"), 2);
    EXPECT_FALSE(command(1, "swap", "0").ackOk);
    EXPECT_EQ(heard("COM1_RADIO_SWAP"), 2);  // not even tried
    act("aircraft twin");
    fly(500);
    EXPECT_TRUE(telemetry().radios[0].writable[3]);
}

TEST_F(WorkerFlight, DoesNotCallASnappedFrequencyDone) {
    beginAndRead("snaps_frequencies");
    const auto answer = command(1, "active", "118105");
    EXPECT_FALSE(answer.ackOk);
    EXPECT_EQ(answer.radios[0].active, 118100);
    EXPECT_TRUE(command(1, "active", "118125").ackOk);
}

TEST_F(WorkerFlight, TunesARadioOffItsGridByWholeMegahertz) {
    beginAndRead("stock");
    act("tune COM2 standby 118.010");  // COM2 keeps to 25 kHz, its cockpit does not
    EXPECT_TRUE(flyUntil([&] { return telemetry().radios[1].standby == 118010; }, 200));
    EXPECT_TRUE(command(2, "standby", "119010").ackOk) << telemetry().ackMessage;
    EXPECT_EQ(telemetry().radios[1].standby, 119010);
    EXPECT_FALSE(command(2, "standby", "119015").ackOk);
    beginAndRead("snaps_frequencies");
    act("tune COM2 standby 118.010");
    EXPECT_TRUE(flyUntil([&] { return telemetry().radios[1].standby == 118010; }, 200));
    EXPECT_FALSE(command(2, "standby", "119010").ackOk);  // the aircraft has decided
    EXPECT_EQ(telemetry().radios[1].standby, 119000);
}

TEST_F(WorkerFlight, OffersNothingOnAnUnpoweredRadio) {
    beginAndRead("unpowered_radio");
    EXPECT_EQ(telemetry().radios[0].writable, allWritable(true));
    EXPECT_EQ(telemetry().radios[1].writable, allWritable(false));
    EXPECT_NE(telemetry().status.find("COM2 unpowered"), std::string::npos) << telemetry().status;
    EXPECT_FALSE(command(2, "active", "118100").ackOk);
    act("power COM2 on");
    fly(200);
    EXPECT_TRUE(command(2, "active", "118100").ackOk);
}

TEST_F(WorkerFlight, WaitsForALateAnswer) {
    beginAndRead("answers_late");
    EXPECT_TRUE(command(1, "standby", "119000").ackOk);
    EXPECT_GE(clock.tickMs() - startedMs, 900u);
    EXPECT_LT(clock.tickMs() - startedMs, 1100u);
}

TEST_F(WorkerFlight, SurvivesASimulatorThatQuitsOrCrashesInTheMiddleOfAWrite) {
    for (const char* personality : {"quits_mid_write", "crashes"}) {
        beginAndRead(personality);
        const auto answer = command(1, "standby", "119000");
        EXPECT_FALSE(answer.ackOk) << personality;
        EXPECT_FALSE(answer.ok) << personality;
        EXPECT_EQ(answer.radios[0].active, 0) << personality;
        EXPECT_LT(clock.tickMs() - startedMs, 500u) << personality;
        act("tune COM1 active 118.005");
        EXPECT_TRUE(flyUntil([&] { return telemetry().ok; }, 8000)) << personality;
        EXPECT_EQ(telemetry().radios[0].active, 118005) << personality;
    }
}

TEST_F(WorkerFlight, UnderstandsRoughPackets) {
    beginAndRead("rough_packets");
    EXPECT_TRUE(command(1, "standby", "119000").ackOk);
    EXPECT_TRUE(command(1, "swap", "0").ackOk);
    fly(5000);
    EXPECT_TRUE(telemetry().ok);
    EXPECT_EQ(telemetry().radios[0].active, 119000);
    EXPECT_EQ(logFile.count("connected to"), 1);
}

TEST_F(WorkerFlight, FindsAVersionThatTheSimulatorTakes) {
    beginAndRead("refuses_version_5");
    EXPECT_TRUE(command(1, "standby", "119000").ackOk);
    EXPECT_TRUE(logFile.has("protocol 6")) << logFile.text;
}

TEST_F(WorkerFlight, IsNeverOkWithASilentOrNoisySimulatorAndFindsTheNextOne) {
    for (const char* personality : {"silent", "garbage"}) {
        begin(personality);
        EXPECT_FALSE(flyUntil([&] { return telemetry().ok; }, 30'000)) << personality;
        EXPECT_FALSE(telemetry().status.empty()) << personality;
        act("personality stock");
        EXPECT_TRUE(flyUntil([&] { return telemetry().ok; }, 25'000)) << personality;
    }
}

TEST_F(WorkerFlight, ShowsNoRadiosWhileTheMenuIsUp) {
    begin("in_menu");
    EXPECT_FALSE(flyUntil([&] { return telemetry().ok; }, 1900));
    EXPECT_EQ(telemetry().status, "simulator in menu");
    EXPECT_EQ(telemetry().radios[0].active, 0);
    EXPECT_TRUE(flyUntil([&] { return telemetry().ok; }, 1000));
    EXPECT_EQ(telemetry().radios[0].active, 122800);
    act("sim menu");
    fly(100);
    EXPECT_FALSE(telemetry().ok);
}

TEST_F(WorkerFlight, ReadsTheRadiosOfAnotherAircraft) {
    beginAndRead("aircraft_change");
    EXPECT_EQ(telemetry().radios[1].active, 121500);
    EXPECT_TRUE(flyUntil([&] { return telemetry().ok && telemetry().radios[0].active == 123500; }, 4000));
    const auto shown = telemetry();
    EXPECT_EQ(shown.radios[0].spacing, 0);
    EXPECT_EQ(shown.radios[1].active, 0);
    EXPECT_EQ(shown.radios[1].writable, allWritable(false));
    EXPECT_EQ(shown.rangeMax, 136975);
    EXPECT_TRUE(command(1, "standby", "119000").ackOk);
    EXPECT_FALSE(command(2, "standby", "119000").ackOk);
}

TEST_F(WorkerFlight, DoesNotSwitchARadioOffByItsVolume) {
    beginAndRead("volume_power_knob");
    command(1, "volume", "0");
    fly(200);
    EXPECT_TRUE(simulator->aircraft().radios[0].isPowered);
    EXPECT_LE(simulator->aircraft().radios[0].volumePercent, 1.0);
    EXPECT_EQ(telemetry().radios[0].writable, allWritable(true));
}

TEST_F(WorkerFlight, StaysOkAndInTouchInAPause) {
    for (const char* personality : {"stock", "freezes_in_pause"}) {
        beginAndRead(personality);
        act("pause on");
        EXPECT_FALSE(flyUntil([&] { return !telemetry().ok; }, 10'000)) << personality;
    }
}

TEST_F(WorkerFlight, WritesInAPauseThatTheSimulatorObeys) {
    beginAndRead("stock");
    act("pause on");
    EXPECT_TRUE(command(1, "standby", "119000").ackOk);
}

// Only the periodic rereading shows it.
TEST_F(WorkerFlight, ShowsWithinFiveSecondsWhatChangesInAPauseWithoutAWord) {
    constexpr std::uint64_t kRereadMs = 5100;
    mayLagMs = kRereadMs;
    beginAndRead("freezes_in_pause");
    act("pause on");
    for (const std::int32_t khz : {118000, 118025, 118050}) {
        act(("tune COM2 active " + formatFixed(khz / 1000.0, 3)).c_str());  // COM1's is the heartbeat
        EXPECT_TRUE(flyUntil([&] { return telemetry().radios[1].active == khz; }, kRereadMs)) << khz;
        EXPECT_TRUE(telemetry().ok);
        fly(170);  // at a different moment of the five seconds each time
    }
}

TEST_F(WorkerFlight, CallsNothingDoneThatTheSimulatorPutsOffUntilThePauseIsOver) {
    beginAndRead("freezes_in_pause");
    act("pause on");
    const auto answer = command(1, "standby", "119000");
    EXPECT_TRUE(answer.ok);
    EXPECT_FALSE(answer.ackOk);
    EXPECT_EQ(answer.radios[0].standby, 121500);
    EXPECT_GE(clock.tickMs() - startedMs, kReadbackLimitMs);
    EXPECT_EQ(heard("COM_STBY_RADIO_SET_HZ 119000000"), 1);
    act("pause off");
    EXPECT_TRUE(flyUntil([&] { return telemetry().radios[0].standby == 119000; }, 200));
    EXPECT_TRUE(command(1, "standby", "119100").ackOk);  // a late write is not an ignored one
}

TEST_F(WorkerFlight, ComesBackAfterEveryLoss) {
    beginAndRead("stock");
    for (const char* loss : {"drop 2", "quit 3", "crash 1", "drop 0"}) {
        act(loss);
        EXPECT_TRUE(flyUntil([&] { return !telemetry().ok; }, 1000)) << loss;
        EXPECT_TRUE(flyUntil([&] { return telemetry().ok; }, 10'000)) << loss;
        EXPECT_TRUE(command(1, "swap", "0").ackOk) << loss;
    }
}
