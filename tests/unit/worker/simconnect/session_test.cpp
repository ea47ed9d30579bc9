#include "worker/simconnect/session.h"
#include <set>
#include "tests/unit/worker/simconnect/session_rig.h"

using State = sc::Reading::State;

TEST_F(SimConnectSession, SaysNothingButItsIntroductionUntilItIsAnswered) {
    pass();
    ASSERT_EQ(transport.sent.size(), 1u);
    EXPECT_EQ(transport.sent[0].size(), 296u);
    EXPECT_EQ(textIn(transport.sent[0], 16), "Corvalis");
    EXPECT_EQ(u32At(transport.sent[0], 12), 1u);
    EXPECT_EQ(session.status(), "connecting to the simulator");
    pass(4900);
    EXPECT_EQ(transport.sent.size(), 1u);
    EXPECT_FALSE(session.isOpen());
}

TEST_F(SimConnectSession, SetsUpEverythingOnceOpen) {
    open();
    EXPECT_TRUE(session.isOpen());
    EXPECT_TRUE(noted("connected to KittyHawk 11.0, protocol 5"));
    EXPECT_EQ(simulator.all(FakeSimulator::kMap).size(), 2u);
    EXPECT_EQ(simulator.all(FakeSimulator::kVariable).size(), 3u);
    EXPECT_EQ(simulator.all(FakeSimulator::kSubscribe).size(), 3u);
    EXPECT_EQ(simulator.all(FakeSimulator::kState).size(), 1u);
    EXPECT_EQ(simulator.all(FakeSimulator::kRequest).size(), 0u);  // in a menu the values mean nothing
    std::set<std::uint32_t> defines;
    for (const auto& packet : simulator.all(FakeSimulator::kVariable)) defines.insert(u32At(packet, 16));
    EXPECT_EQ(defines.size(), 3u);
    for (std::size_t i = 0; i < transport.sent.size(); i++) EXPECT_EQ(u32At(transport.sent[i], 12), i + 1);
    EXPECT_EQ(session.isSimRunning(), std::nullopt);
}

TEST_F(SimConnectSession, AsksForChangesARereadingAndAHeartbeatOnceAFlightRuns) {
    fly();
    EXPECT_EQ(session.isSimRunning(), true);
    int changes = 0, rereadings = 0, heartbeats = 0;
    std::set<std::uint32_t> ids;
    for (const auto& packet : simulator.all(FakeSimulator::kRequest)) {
        const auto period = u32At(packet, 28), flags = u32At(packet, 32), interval = u32At(packet, 40);
        changes += period == 2 && flags == 1 && interval == 0;
        rereadings += period == 4 && flags == 0 && interval == 4;
        heartbeats += period == 2 && flags == 0 && interval == 3;
        ids.insert(u32At(packet, 16));
    }
    EXPECT_EQ(changes, 3);
    EXPECT_EQ(rereadings, 3);
    EXPECT_EQ(heartbeats, 1);
    EXPECT_EQ(ids.size(), 7u);
}

TEST_F(SimConnectSession, ReadsValuesAsTheyAreTold) {
    fly();
    EXPECT_FALSE(session.isAllRead());
    EXPECT_EQ(session.dataMs(), std::nullopt);
    simulator.tell("ALPHA", 122.8);
    simulator.tell("BETA", -1);
    pass();
    EXPECT_EQ(session.reading(0).value, 122.8);
    EXPECT_EQ(session.reading(1).value, -1.0);
    EXPECT_EQ(stateOf(2), State::kAwaited);
    EXPECT_EQ(session.dataMs(), nowMs);
    // The rereading and the heartbeat say the same.
    const auto change = simulator.changeRequestOf("GAMMA");
    simulator.sayData(change + 1, "GAMMA", 40.0);
    pass();
    EXPECT_EQ(session.reading(2).value, 40.0);
    simulator.sayData(change + 2, "ALPHA", 118.005);
    pass();
    EXPECT_EQ(session.reading(0).value, 118.005);
    EXPECT_TRUE(session.isAllRead());
}

TEST_F(SimConnectSession, IsNotConfusedByWhatItDidNotAskFor) {
    fly();
    simulator.tell("ALPHA", 122.8);
    pass();
    for (const std::uint32_t id : {0u, 1000u, 0xFFFFFFFFu}) simulator.sayData(id, "ALPHA", 1.0);
    simulator.say(FakePacket(8).u32(simulator.changeRequestOf("ALPHA")).u32(0).u32(1).u32(0).u32(1).u32(1).u32(1));
    simulator.say(FakePacket(40).text("", 100));
    simulator.say(FakePacket(4).u32(0).u32(77).u32(0));
    simulator.say(FakePacket(15).u32(9).u32(0).u32(0).text("", 260));
    simulator.say(FakePacket(8));
    pass();
    EXPECT_EQ(session.reading(0).value, 122.8);
    EXPECT_EQ(session.isSimRunning(), true);
    EXPECT_TRUE(noted("a packet of kind 8 is too short"));
}

TEST_F(SimConnectSession, FallsBackToTheOtherVersionsOnANewConnectionEach) {
    for (const int way : {0, 1, 2}) {
        FakeTransport fresh;
        FakeSimulator other(fresh);
        sc::Session tried(fresh, {kThree, kTwo});
        std::vector<std::uint32_t> protocols;
        std::uint64_t now = 1000;
        for (int i = 0; i < 3; i++) {
            tried.poll(now += 20);
            protocols.push_back(u32At(fresh.sent.at(0), 4));
            EXPECT_EQ(fresh.connects, i + 1);
            if (way == 0) other.exception(5, 1);
            if (way == 1) fresh.state = sc::TransportState::kClosed;
            tried.poll(now += way == 2 ? 5000 : 20);
            if (i < 2) {
                EXPECT_EQ(tried.status(), "connecting to the simulator");
            }
        }
        EXPECT_EQ(protocols, (std::vector<std::uint32_t>{5, 6, 4})) << way;
        // All three refused: it waits, and says why.
        const char* const problems[] = {"the simulator refuses the connection",
                                        "the simulator closes the connection at once", "the simulator does not answer"};
        EXPECT_EQ(tried.status(), problems[way]);
        EXPECT_LE(tried.status().size(), 44u) << "no room in the panel's status line";
        tried.poll(now += 900);
        EXPECT_EQ(fresh.connects, 3) << way;
        tried.poll(now += 200);
        EXPECT_EQ(fresh.connects, 4) << way;
    }
}

TEST_F(SimConnectSession, StaysWithTheVersionThatWasTaken) {
    pass();
    simulator.exception(5, 1);
    pass();
    open();
    EXPECT_EQ(protocol(), 6u);
    EXPECT_TRUE(noted("VERSION_MISMATCH"));
    EXPECT_TRUE(noted("protocol 6"));
    for (const auto& packet : transport.sent) EXPECT_EQ(u32At(packet, 4), 6u);
    simulator.quit();
    pass();
    pass(1000);
    EXPECT_EQ(protocol(), 6u);
}

TEST_F(SimConnectSession, WaitsLongerFromFailureToFailure) {
    transport.onConnect = sc::TransportState::kClosed;
    pass();
    std::vector<std::uint64_t> waits;
    for (auto last = nowMs; waits.size() < 5;) {
        const int before = transport.connects;
        while (transport.connects == before) pass(10);
        waits.push_back(nowMs - last);
        last = nowMs;
    }
    EXPECT_EQ(waits, (std::vector<std::uint64_t>{1000, 2000, 5000, 5000, 5000}));
    EXPECT_EQ(session.status(), "waiting for the simulator");
    transport.reason = "the simulator refuses this user's programs";
    pass(5000);
    EXPECT_EQ(session.status(), "the simulator refuses this user's programs");
    EXPECT_TRUE(notes.empty());
}

TEST_F(SimConnectSession, AnUnknownVariableIsMissingAndTheRestWorks) {
    open();
    simulator.exception(7, simulator.sendIdOf(FakeSimulator::kVariable, "ALPHA"));
    simulator.simState(1);
    pass();
    EXPECT_EQ(stateOf(0), State::kMissing);
    EXPECT_TRUE(noted("the simulator refuses the variable ALPHA (exception 7, NAME_UNRECOGNIZED)"));
    EXPECT_EQ(simulator.all(FakeSimulator::kRequest).size(), 5u);  // two each, and the heartbeat with another one
    simulator.tell("BETA", 1);
    simulator.tell("GAMMA", 50);
    pass();
    EXPECT_TRUE(session.isAllRead());
    EXPECT_EQ(session.reading(2).value, 50.0);
}

TEST_F(SimConnectSession, TheHeartbeatMovesWhenItsVariableTurnsOutToBeMissing) {
    fly();
    simulator.exception(7, simulator.sendIdOf(FakeSimulator::kVariable, "ALPHA"));
    simulator.exception(28, u32At(simulator.all(FakeSimulator::kRequest)[0], 12));
    pass();
    const auto last = transport.sent.back();
    EXPECT_EQ(u32At(last, 8), 0xF000000Eu);
    EXPECT_EQ(u32At(last, 20), u32At(simulator.lastOf(FakeSimulator::kVariable, "BETA"), 16));
    EXPECT_EQ(u32At(last, 40), 3u);
    EXPECT_FALSE(noted("to report ALPHA"));  // follows from the first refusal, so no note
}

TEST_F(SimConnectSession, AHeartbeatOnItsWayIsNobodysOnceNoVariableIsLeft) {
    fly();
    const auto heartbeat = simulator.changeRequestOf("GAMMA") + 2;
    for (const auto& variable : kThree) {
        simulator.exception(7, simulator.sendIdOf(FakeSimulator::kVariable, variable.name));
    }
    simulator.sayData(heartbeat, "ALPHA", 122.8);
    pass();
    for (std::size_t i = 0; i < kThree.size(); i++) EXPECT_EQ(stateOf(i), State::kMissing);
    EXPECT_EQ(session.dataMs(), std::nullopt);
}

TEST_F(SimConnectSession, TracesExceptionsToWhatCausedThem) {
    fly();
    simulator.exception(7, simulator.sendIdOf(FakeSimulator::kMap, "SECOND_SET"));
    simulator.exception(24, u32At(simulator.all(FakeSimulator::kRequest)[2], 12));
    simulator.exception(3, 0);
    simulator.exception(3, 0);
    simulator.exception(9, 4'000'000);
    pass();
    EXPECT_TRUE(session.isKeyEventKnown(0));
    EXPECT_FALSE(session.isKeyEventKnown(1));
    EXPECT_FALSE(session.sendKeyEvent(1, 5, nowMs));
    EXPECT_TRUE(noted("the simulator refuses the key event SECOND_SET (exception 7, NAME_UNRECOGNIZED)"));
    EXPECT_TRUE(noted("the simulator refuses to report BETA (exception 24, OPERATION_INVALID_FOR_OBJECT_TYPE)"));
    EXPECT_EQ(std::count(notes.begin(), notes.end(), "the simulator reports exception 3, UNRECOGNIZED_ID"), 1);
    EXPECT_TRUE(noted("the simulator reports exception 9, EVENT_ID_DUPLICATE"));
}

TEST_F(SimConnectSession, SendsKeyEventsByTheirIds) {
    open();
    EXPECT_TRUE(session.sendKeyEvent(1, 118'005'000, nowMs));
    EXPECT_TRUE(session.sendKeyEvent(0, 0, nowMs));
    EXPECT_EQ(simulator.keyEvents(), (std::vector<std::string>{"SECOND_SET 118005000", "FIRST_SET 0"}));
    simulator.exception(24, u32At(simulator.all(FakeSimulator::kKeyEvent).back(), 12));
    pass();
    EXPECT_TRUE(noted("the simulator refuses the key event FIRST_SET (exception 24"));
    EXPECT_TRUE(session.isKeyEventKnown(0));
}

TEST_F(SimConnectSession, TakesNothingFromTheAircraftBeforeForTheNewOne) {
    fly();
    simulator.tell("ALPHA", 122.8);
    pass();
    pass(1000);
    const auto old = simulator.changeRequestOf("ALPHA");
    const auto aircraft = session.aircraft();
    simulator.loadAircraft("SimObjects\\Airplanes\\C172\\aircraft.cfg");
    simulator.sayData(old, "ALPHA", 122.8);
    pass();
    EXPECT_GT(session.aircraft(), aircraft);
    EXPECT_EQ(stateOf(0), State::kAwaited);
    EXPECT_TRUE(noted("aircraft loaded: SimObjects\\Airplanes\\C172\\aircraft.cfg"));
    int stopped = 0;
    for (const auto& packet : simulator.all(FakeSimulator::kRequest)) stopped += u32At(packet, 28) == 0;
    EXPECT_EQ(stopped, 7);
    simulator.tell("ALPHA", 118.0);
    pass();
    EXPECT_EQ(session.reading(0).value, 118.0);
}

TEST_F(SimConnectSession, ForgetsTheValuesWhenTheFlightEnds) {
    fly();
    simulator.tell("ALPHA", 122.8);
    pass();
    simulator.simEvent(0);
    simulator.tell("ALPHA", 0.0);
    pass();
    EXPECT_EQ(session.isSimRunning(), false);
    EXPECT_EQ(stateOf(0), State::kAwaited);
    const auto before = simulator.all(FakeSimulator::kRequest).size();
    pass(1000);
    simulator.simEvent(1);
    pass();
    EXPECT_EQ(simulator.all(FakeSimulator::kRequest).size(), before + 7);
}

TEST_F(SimConnectSession, KnowsAPauseByItsKindsOrWithoutThem) {
    open();
    EXPECT_FALSE(session.isPaused());
    for (const std::uint32_t kind : {1u, 4u, 9u}) {
        simulator.pauseEvent("Pause_EX1", kind);
        pass();
        EXPECT_TRUE(session.isPaused()) << kind;
        simulator.pauseEvent("Pause_EX1", 0);
        pass();
        EXPECT_FALSE(session.isPaused()) << kind;
    }
    EXPECT_EQ(simulator.sendIdOf(FakeSimulator::kSubscribe, "Pause"), 0u);  // not needed
    simulator.exception(7, simulator.sendIdOf(FakeSimulator::kSubscribe, "Pause_EX1"));
    pass();
    EXPECT_NE(simulator.sendIdOf(FakeSimulator::kSubscribe, "Pause"), 0u);
    simulator.pauseEvent("Pause", 1);
    pass();
    EXPECT_TRUE(session.isPaused());
    simulator.quit();
    pass();
    EXPECT_FALSE(session.isPaused());  // the next one begins without
}

TEST_F(SimConnectSession, IsAnotherFlightAfterTheMenu) {
    fly();
    const auto aircraft = session.aircraft();
    simulator.simEvent(1);
    pass();
    EXPECT_EQ(session.aircraft(), aircraft);  // no news
    simulator.simEvent(0);
    pass();
    EXPECT_EQ(session.aircraft(), aircraft);
    simulator.simEvent(1);
    pass();
    EXPECT_GT(session.aircraft(), aircraft);
}

TEST_F(SimConnectSession, ReadsPacketsByTheByte) {
    transport.mostAtOnce = 7;
    pass();
    simulator.open();
    pass();
    EXPECT_TRUE(session.isOpen());
}
