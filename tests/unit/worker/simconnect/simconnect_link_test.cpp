#include "worker/simconnect/simconnect_link.h"
#include <gtest/gtest.h>
#include <cmath>
#include <map>
#include "exchange/frequency_grid.h"
#include "tests/unit/worker/simconnect/fake_simulator.h"
#include "tests/unit/worker/worker_fakes.h"
#include "worker/command_handler.h"

namespace {

using simconnect::SimConnectLink;

// A flight with both radios, as a stock aircraft reports it.
struct SimConnectRadios : testing::Test {
    FakeTransport* transport = new FakeTransport;  // the link owns it
    FakeSimulator simulator{*transport};
    SimConnectLink link{std::unique_ptr<simconnect::Transport>(transport)};
    ManualClock clock;
    MemoryLogFile logFile;
    WorkerLog log{logFile, clock};
    CommandHandler handler{link, log};
    std::uint64_t nowMs = 50'000;
    std::vector<std::string> notes;
    std::map<std::string, double> cockpit = {
        {"COM ACTIVE FREQUENCY:1", 122.8},
        {"COM STANDBY FREQUENCY:1", 121.5},
        {"COM SPACING MODE:1", 1},
        {"COM VOLUME:1", 80},
        {"COM AVAILABLE:1", 1},
        {"COM STATUS:1", 0},
        {"COM ACTIVE FREQUENCY:2", 118.0},
        {"COM STANDBY FREQUENCY:2", 119.1},
        {"COM SPACING MODE:2", 0},
        {"COM VOLUME:2", 100},
        {"COM AVAILABLE:2", 1},
        {"COM STATUS:2", 0},
    };

    void pass(std::uint64_t ms = 20) {
        nowMs += ms;
        link.poll(nowMs);
        handler.pass(nowMs);
        for (auto& line : link.takeNotes()) notes.push_back(std::move(line));
    }
    void openAndRun() {
        pass();
        simulator.open();
        pass();
        simulator.simState(1);
        pass();
    }
    // All present values, as a rereading reports them.
    void tellAll() {
        for (const auto& [name, value] : cockpit) simulator.tell(name, value);
        pass();
    }
    void fly() {
        openAndRun();
        tellAll();
        ASSERT_TRUE(sim().ok) << sim().status;
    }
    void set(const std::string& name, double value) {
        cockpit[name] = value;
        simulator.tell(name, value);
        pass();
    }
    // Seconds of flight in which nothing changes.
    void cruise(std::uint64_t ms) {
        for (std::uint64_t passed = 0; passed < ms; passed += 500) {
            pass(500 - 20);
            tellAll();
        }
    }
    CommandAck command(std::size_t radio, RadioSlot slot, double value) {
        handler.accept({"1-" + std::to_string(++commands), {radio, slot, value}, 0.0}, nowMs);
        return handler.ack();
    }
    // The same, but the aircraft does not react.
    CommandAck ignoredCommand(std::size_t radio, RadioSlot slot, double value) {
        command(radio, slot, value);
        cruise(kReadbackLimitMs);
        return handler.ack();
    }
    const SimSnapshot& sim() const { return link.snapshot(); }
    int commands = 0;
};

}  // namespace

TEST_F(SimConnectRadios, SaysWhereItStandsOnTheWayToTheRadios) {
    const auto status = [&] { return (sim().ok ? "ok: " : "no: ") + sim().status; };
    EXPECT_EQ(status(), "no: waiting for the simulator");
    pass();
    EXPECT_EQ(status(), "no: connecting to the simulator");
    simulator.open();
    pass();
    EXPECT_EQ(status(), "no: connecting to the simulator");
    simulator.simState(0);
    pass();
    EXPECT_EQ(status(), "no: simulator in menu");
    simulator.simEvent(1);
    pass();
    EXPECT_EQ(status(), "no: reading the radios");
    tellAll();
    EXPECT_EQ(status(), "ok: flying");
    pass(999);
    EXPECT_EQ(status(), "ok: flying");
    pass(1);
    EXPECT_EQ(status(), "no: the simulator sends no data");
    EXPECT_EQ(sim().radios[0], RadioReading());
    tellAll();
    EXPECT_EQ(status(), "ok: flying");
    simulator.quit();
    pass();
    EXPECT_EQ(status(), "no: waiting for the simulator");
    EXPECT_EQ(sim().radios[0], RadioReading());
}

TEST_F(SimConnectRadios, SayThatTheLinkIsLostUntilThereIsAnother) {
    fly();
    transport->state = simconnect::TransportState::kClosed;  // no word of farewell
    transport->onConnect = simconnect::TransportState::kClosed;
    for (const std::uint64_t ms : {0, 1000, 2000, 60'000}) {
        pass(ms);
        EXPECT_EQ(sim().status, "simulator link lost") << ms;
    }
    transport->onConnect = simconnect::TransportState::kOpen;
    pass(5000);
    EXPECT_EQ(sim().status, "connecting to the simulator");
    fly();
    EXPECT_EQ(sim().status, "flying");
    simulator.quit();
    transport->onConnect = simconnect::TransportState::kClosed;
    pass(5000);
    EXPECT_EQ(sim().status, "waiting for the simulator");
}

TEST_F(SimConnectRadios, ShowsBothRadios) {
    fly();
    const std::array<bool, kSlotCount> all = {true, true, true, true};
    EXPECT_EQ(sim().radios[0], (RadioReading{122800, 121500, kSpacing833, 0.8, all}));
    EXPECT_EQ(sim().radios[1], (RadioReading{118000, 119100, kSpacing25, 1.0, all}));
    EXPECT_EQ(sim().rangeMinKHz, 118000);
    EXPECT_EQ(sim().rangeMaxKHz, 136990);
    set("COM SPACING MODE:1", 0);
    EXPECT_EQ(sim().rangeMaxKHz, 136975);
}

TEST_F(SimConnectRadios, RoundsFrequenciesAndKnowsNoneOutsideTheBand) {
    fly();
    const struct {
        double mhz;
        int khz;
    } rows[] = {{118.00499999, 118005},
                {128.85499999999999, 128855},
                {136.99, 136990},
                {118.0, 118000},
                {136.995, 0},
                {117.995, 0},
                {0.0, 0},
                {-5.0, 0},
                {1e300, 0},
                {NAN, 0},
                {INFINITY, 0}};
    for (const auto& row : rows) {
        set("COM STANDBY FREQUENCY:1", row.mhz);
        EXPECT_EQ(sim().radios[0].standby, row.khz) << row.mhz;
        EXPECT_EQ(sim().radios[0].writable[kSlotStandby], row.khz != 0) << row.mhz;
    }
}

TEST_F(SimConnectRadios, KnowsNoVolumeAndNoSpacingThatCannotBe) {
    fly();
    const struct {
        double percent;
        double volume;
    } rows[] = {{0, 0}, {100, 1}, {100.0000001, 1}, {-1, -1}, {101, -1}, {NAN, -1}};
    for (const auto& row : rows) {
        set("COM VOLUME:1", row.percent);
        EXPECT_EQ(sim().radios[0].volume, row.volume) << row.percent;
        EXPECT_EQ(sim().radios[0].writable[kSlotVolume], row.volume >= 0) << row.percent;
    }
    set("COM SPACING MODE:2", 2);
    EXPECT_EQ(sim().radios[1].spacing, -1);
    EXPECT_FALSE(sim().radios[1].writable[kSlotStandby]);
    EXPECT_TRUE(sim().radios[1].writable[kSlotSwap]);
}

TEST_F(SimConnectRadios, IsWritableWhileFittedAndPowered) {
    fly();
    const struct {
        double available, status;
        bool writable, shown;
        const char* text;
    } rows[] = {
        {1, 0, true, true, "flying"},
        {1, 2, false, true, "COM2 unpowered"},
        {1, 3, false, true, "COM2 failed"},
        {1, -1, false, true, "COM2 not usable"},
        {1, 1, false, false, "COM2 not in this aircraft"},
        {0, 0, false, false, "COM2 not in this aircraft"},
    };
    for (const auto& row : rows) {
        set("COM AVAILABLE:2", row.available);
        set("COM STATUS:2", row.status);
        for (const bool writable : sim().radios[1].writable) EXPECT_EQ(writable, row.writable) << row.text;
        EXPECT_EQ(sim().radios[1].active, row.shown ? 118000 : 0) << row.text;
        EXPECT_EQ(sim().status, row.text);
        EXPECT_TRUE(sim().radios[0].writable[kSlotActive]);
        EXPECT_TRUE(sim().ok);
    }
    set("COM STATUS:1", 2);
    EXPECT_EQ(sim().status, "COM1 unpowered, COM2 not in this aircraft");
    set("COM AVAILABLE:2", 1);
    set("COM STATUS:2", 2);
    EXPECT_EQ(sim().status, "COM1 and COM2 unpowered");
}

TEST_F(SimConnectRadios, AMissingVariableCostsOnlyWhatDependsOnIt) {
    openAndRun();
    for (const char* name : {"COM VOLUME:1", "COM AVAILABLE:1", "COM STATUS:2"}) {
        simulator.exception(7, simulator.sendIdOf(FakeSimulator::kVariable, name));
        cockpit.erase(name);
    }
    tellAll();
    ASSERT_TRUE(sim().ok);
    EXPECT_EQ(sim().radios[0].volume, -1.0);
    EXPECT_EQ(sim().radios[0].writable, (std::array<bool, 4>{true, true, false, true}));
    EXPECT_EQ(sim().radios[1].writable, (std::array<bool, 4>{true, true, true, true}));
}

TEST_F(SimConnectRadios, AMissingKeyEventCostsItsSlot) {
    openAndRun();
    simulator.exception(7, simulator.sendIdOf(FakeSimulator::kMap, "COM2_RADIO_SWAP"));
    tellAll();
    EXPECT_EQ(sim().radios[1].writable, (std::array<bool, 4>{true, true, true, false}));
    EXPECT_FALSE(command(1, kSlotSwap, 0).ok);
    EXPECT_TRUE(simulator.keyEvents().empty());
}

TEST_F(SimConnectRadios, DoesNotWaitForeverForAValueThatNeverComes) {
    openAndRun();
    cockpit.erase("COM STATUS:2");
    tellAll();
    EXPECT_EQ(sim().status, "reading the radios");
    cruise(1500);
    EXPECT_TRUE(sim().ok);
    EXPECT_EQ(sim().status, "COM2 not known yet");
    EXPECT_FALSE(sim().radios[1].writable[kSlotActive]);
}

TEST_F(SimConnectRadios, WritesInHertzAndPercentByTheRightNames) {
    fly();
    set("COM SPACING MODE:2", 1);
    const struct {
        std::size_t radio;
        RadioSlot slot;
        double value;
        const char* event;
    } rows[] = {
        {0, kSlotActive, 118005, "COM_RADIO_SET_HZ 118005000"},
        {0, kSlotStandby, 136990, "COM_STBY_RADIO_SET_HZ 136990000"},
        {0, kSlotVolume, 0.64, "COM1_VOLUME_SET 64"},
        {0, kSlotSwap, 0, "COM1_RADIO_SWAP 0"},
        {1, kSlotActive, 128855, "COM2_RADIO_SET_HZ 128855000"},
        {1, kSlotStandby, 121500, "COM2_STBY_RADIO_SET_HZ 121500000"},
        {1, kSlotVolume, 1.0, "COM2_VOLUME_SET 100"},
        {1, kSlotSwap, 0, "COM2_RADIO_SWAP 0"},
    };
    for (const auto& row : rows) {
        ASSERT_TRUE(link.write({row.radio, row.slot, row.value}, nowMs)) << row.event;
        EXPECT_EQ(simulator.keyEvents().back(), row.event);
    }
}

TEST_F(SimConnectRadios, SendsNothingThatIsNoChannelOrNoVolume) {
    fly();
    const RadioWrite rows[] = {{0, kSlotActive, 118020}, {0, kSlotStandby, 137000}, {1, kSlotActive, 118005},
                               {0, kSlotVolume, 1.01},   {0, kSlotVolume, -0.01},   {0, kSlotActive, NAN},
                               {0, kSlotVolume, NAN},    {0, kSlotActive, 1e300}};
    for (const auto& row : rows) EXPECT_FALSE(link.write(row, nowMs)) << row.value;
    EXPECT_TRUE(simulator.keyEvents().empty());
}

TEST_F(SimConnectRadios, AcknowledgesWhatTheSimulatorShows) {
    fly();
    command(0, kSlotStandby, 118005);
    pass(400);
    EXPECT_TRUE(handler.isPending());
    EXPECT_EQ(sim().radios[0].standby, 121500);  // not before the simulator reports it
    set("COM STANDBY FREQUENCY:1", 118.00499999999999);
    EXPECT_EQ(handler.ack(), (CommandAck{"1-1", true, "COM1 standby 118.005"}));
    command(0, kSlotVolume, 0.637);
    set("COM VOLUME:1", 64);
    EXPECT_EQ(handler.ack(), (CommandAck{"1-2", true, "COM1 volume 64 %"}));
    command(0, kSlotSwap, 0);
    simulator.tell("COM ACTIVE FREQUENCY:1", 118.005);
    simulator.tell("COM STANDBY FREQUENCY:1", 122.8);
    pass();
    EXPECT_EQ(handler.ack(), (CommandAck{"1-3", true, "COM1 swapped to 118.005"}));
}

TEST_F(SimConnectRadios, ASlotIsUnwritableAfterTwoIgnoredWritesUntilTheAircraftChanges) {
    fly();
    EXPECT_EQ(ignoredCommand(0, kSlotSwap, 0).message, "COM1 swap not accepted by this aircraft");
    EXPECT_TRUE(sim().radios[0].writable[kSlotSwap]);
    EXPECT_EQ(ignoredCommand(0, kSlotSwap, 0).message,
              "COM1 swap not accepted by this aircraft; not tried again until the aircraft changes");
    EXPECT_EQ(sim().radios[0].writable, (std::array<bool, 4>{true, true, true, false}));
    EXPECT_TRUE(sim().radios[1].writable[kSlotSwap]);
    EXPECT_EQ(std::count(notes.begin(), notes.end(),
                         "COM1 swap: the aircraft has ignored 2 writes; not writable until "
                         "the aircraft changes"),
              1);
    const auto sent = simulator.keyEvents().size();
    EXPECT_FALSE(command(0, kSlotSwap, 0).ok);
    EXPECT_EQ(simulator.keyEvents().size(), sent);
    simulator.loadAircraft("other.cfg");
    pass();
    EXPECT_EQ(sim().status, "reading the radios");
    tellAll();
    EXPECT_TRUE(sim().radios[0].writable[kSlotSwap]);
}

TEST_F(SimConnectRadios, AWriteThatWorksClearsTheOneThatDidNot) {
    fly();
    ignoredCommand(0, kSlotStandby, 118005);
    command(0, kSlotStandby, 118010);
    set("COM STANDBY FREQUENCY:1", 118.01);
    EXPECT_TRUE(handler.ack().ok);
    ignoredCommand(0, kSlotStandby, 118005);
    EXPECT_TRUE(sim().radios[0].writable[kSlotStandby]);
}

TEST_F(SimConnectRadios, AnAircraftThatRoundsIsNotOneThatIgnores) {
    fly();
    for (int i = 0; i < 3; i++) {
        cockpit["COM STANDBY FREQUENCY:1"] = 121.5;
        tellAll();
        command(0, kSlotStandby, 118005);
        cockpit["COM STANDBY FREQUENCY:1"] = 118.0;
        cruise(kReadbackLimitMs);
        EXPECT_EQ(handler.ack().message, "COM1 standby not accepted by this aircraft; it shows 118.000");
        EXPECT_TRUE(sim().radios[0].writable[kSlotStandby]);
    }
}

TEST_F(SimConnectRadios, ARadioThatLosesItsPowerMeanwhileHasIgnoredNothing) {
    fly();
    for (int i = 0; i < 3; i++) {
        command(0, kSlotStandby, 118005);
        cockpit["COM STATUS:1"] = 2;
        cruise(kReadbackLimitMs);
        EXPECT_EQ(handler.ack().message, "COM1 standby not accepted by this aircraft");
        cockpit["COM STATUS:1"] = 0;
        tellAll();
        EXPECT_TRUE(sim().radios[0].writable[kSlotStandby]);
    }
}

TEST_F(SimConnectRadios, QuittingDuringAWriteFailsItAndCountsForNothing) {
    fly();
    command(0, kSlotStandby, 118005);
    simulator.quit();
    pass();
    EXPECT_EQ(handler.ack(), (CommandAck{"1-1", false, "COM1 standby not written: waiting for the simulator"}));
}

TEST_F(SimConnectRadios, TurnsNoRadioOffByItsVolume) {
    fly();
    command(0, kSlotVolume, 0.0);
    EXPECT_EQ(simulator.keyEvents().back(), "COM1_VOLUME_SET 1");
    set("COM VOLUME:1", 1);
    EXPECT_EQ(handler.ack(), (CommandAck{"1-1", true, "COM1 volume 1 %"}));
    EXPECT_EQ(sim().radios[0].volume, 0.01f);
}

TEST_F(SimConnectRadios, SendsVolume0ToARadioThatHasBeenSeenToStayOnAtIt) {
    fly();
    set("COM VOLUME:1", 0);  // in the cockpit
    cruise(1500);
    set("COM VOLUME:1", 50);
    command(0, kSlotVolume, 0.0);
    EXPECT_EQ(simulator.keyEvents().back(), "COM1_VOLUME_SET 1");
    set("COM VOLUME:1", 1);
    set("COM VOLUME:1", 0);
    cruise(2500);
    set("COM VOLUME:1", 50);
    command(0, kSlotVolume, 0.0);
    EXPECT_EQ(simulator.keyEvents().back(), "COM1_VOLUME_SET 0");
    set("COM VOLUME:1", 0);
    EXPECT_EQ(handler.ack().message, "COM1 volume 0 %");
    command(1, kSlotVolume, 0.0);  // the other radio has not shown that it stays on
    EXPECT_EQ(simulator.keyEvents().back(), "COM2_VOLUME_SET 1");
    set("COM VOLUME:2", 1);
    simulator.loadAircraft("other.cfg");
    pass();
    cockpit["COM VOLUME:1"] = 50;
    tellAll();
    command(0, kSlotVolume, 0.0);
    EXPECT_EQ(simulator.keyEvents().back(), "COM1_VOLUME_SET 1");
}

TEST_F(SimConnectRadios, ARadioThatGoesOffAtVolume0HasNotStayedOn) {
    fly();
    set("COM VOLUME:1", 0);
    set("COM STATUS:1", 2);
    cruise(5000);
    cockpit["COM STATUS:1"] = 0;
    cockpit["COM VOLUME:1"] = 50;
    tellAll();
    command(0, kSlotVolume, 0.0);
    EXPECT_EQ(simulator.keyEvents().back(), "COM1_VOLUME_SET 1");
}
