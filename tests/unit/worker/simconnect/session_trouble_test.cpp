// session_trouble_test.cpp - a session whose simulator quits, crashes, falls silent, stops reading or says too much.
#include "tests/unit/worker/simconnect/session_rig.h"
#include "worker/pilot_texts.h"

using State = sc::Reading::State;

TEST_F(SimConnectSession, LeavesAConnectionThatIsBeingMadeToTheTransport) {
    transport.onConnect = sc::TransportState::kConnecting;
    pass();
    pass(60'000);
    EXPECT_EQ(session.status(), "waiting for the simulator");
    EXPECT_EQ(transport.connects, 1);
    transport.state = sc::TransportState::kClosed;
    transport.reason = "no answer from simpc";
    pass();
    EXPECT_EQ(session.status(), "no answer from simpc");
    EXPECT_EQ(transport.connects, 1);
}

TEST_F(SimConnectSession, NamesASimulatorThatReadsNothingAnyMore) {
    fly();
    transport.refusesSends = true;
    transport.reason = pilot::kDoesNotRead;  // as a transport says when too much is waiting
    session.sendKeyEvent(0, 1, nowMs);
    pass();
    EXPECT_FALSE(session.isOpen());
    EXPECT_TRUE(noted("connection to the simulator lost: the simulator does not read what it is told"));
}

TEST_F(SimConnectSession, SetsUpAnewAfterQuitCrashAndNonsense) {
    for (const int way : {0, 1, 2, 3}) {
        notes.clear();
        if (!session.isOpen()) fly();
        simulator.tell("ALPHA", 122.8);
        pass(10'000);  // the connection has lasted
        ASSERT_EQ(stateOf(0), State::kKnown);
        const auto aircraft = session.aircraft();
        const int connects = transport.connects;
        if (way == 0) simulator.quit();
        if (way == 1) transport.state = sc::TransportState::kClosed;
        if (way == 2) simulator.say(FakeBytes(64, 0xff));
        if (way == 3) transport.refusesSends = true;
        session.sendKeyEvent(0, 1, nowMs);
        pass();
        pass();
        EXPECT_FALSE(session.isOpen()) << way;
        EXPECT_EQ(session.status(), way == 0 ? "waiting for the simulator" : "simulator link lost") << way;
        EXPECT_EQ(stateOf(0), State::kAwaited) << way;
        EXPECT_EQ(session.dataMs(), std::nullopt) << way;
        EXPECT_EQ(session.isSimRunning(), std::nullopt) << way;
        EXPECT_TRUE(noted("connection to the simulator lost")) << way;
        EXPECT_FALSE(session.sendKeyEvent(0, 1, nowMs)) << way;
        transport.refusesSends = false;
        pass(900);
        EXPECT_EQ(transport.connects, connects) << way;
        pass(100);
        EXPECT_EQ(transport.connects, connects + 1) << way;
        fly();
        EXPECT_GT(session.aircraft(), aircraft) << way;
        EXPECT_EQ(simulator.all(FakeSimulator::kVariable).size(), 3u) << way;
        EXPECT_EQ(simulator.all(FakeSimulator::kRequest).size(), 7u) << way;
    }
}

TEST_F(SimConnectSession, TakesInWhatCameBeforeTheEnd) {
    fly();
    simulator.quit();
    transport.state = sc::TransportState::kClosed;
    pass();
    EXPECT_TRUE(noted("the simulator has quit"));
    EXPECT_EQ(std::count_if(notes.begin(), notes.end(), [](auto& line) { return line.find("lost") != line.npos; }), 1);
}

TEST_F(SimConnectSession, AsksForASignOfLifeAndGivesUpAfterTwoMinutes) {
    fly();
    const auto questions = [&] { return simulator.all(FakeSimulator::kState).size(); };
    pass(9'999);
    EXPECT_EQ(questions(), 1u);
    pass(1);
    EXPECT_EQ(questions(), 2u);
    simulator.simState(1);
    pass();
    for (int i = 0; i < 119; i++) pass(1000);
    EXPECT_TRUE(session.isOpen());
    EXPECT_EQ(questions(), 13u);
    pass(1000);
    EXPECT_FALSE(session.isOpen());
    EXPECT_TRUE(noted("nothing heard for two minutes"));
}

TEST_F(SimConnectSession, BelievesAnAnswerAboutTheFlightOnlyWhereNoEventMayHaveSaidIt) {
    fly();
    for (int i = 0; i < 11; i++) {
        simulator.tell("ALPHA", 122.8);
        pass(1000);
    }
    EXPECT_EQ(simulator.all(FakeSimulator::kState).size(), 2u);
    simulator.simState(0);  // the answer to one that was only asked to be answered
    pass();
    EXPECT_EQ(session.isSimRunning(), true);
    session.sendKeyEvent(0, 1, nowMs);
    simulator.simState(0);  // nor does that to the question behind a write
    pass();
    EXPECT_EQ(session.isSimRunning(), true);
    for (int i = 0; i < 11; i++) pass(1000);  // silence: it may have been loading
    EXPECT_EQ(simulator.all(FakeSimulator::kState).size(), 4u);
    simulator.simState(0);
    pass();
    EXPECT_EQ(session.isSimRunning(), false);
}

TEST_F(SimConnectSession, KnowsWhatTheSimulatorHasReadByItsAnswers) {
    open();
    EXPECT_TRUE(session.isAnswered(session.question()));  // it need not answer questions at all
    simulator.answerQuestion();
    pass();
    ASSERT_TRUE(session.sendKeyEvent(0, 1, nowMs));
    const auto first = session.question();
    EXPECT_FALSE(session.isAnswered(first));
    ASSERT_TRUE(session.sendKeyEvent(0, 2, nowMs));
    const auto second = session.question();
    const auto packets = simulator.all(FakeSimulator::kState);
    ASSERT_EQ(packets.size(), 3u);
    EXPECT_EQ(u32At(packets[1], 12), u32At(simulator.all(FakeSimulator::kKeyEvent)[0], 12) + 1);  // right behind it
    simulator.say(FakePacket(15).u32(u32At(packets[1], 16)).u32(1).u32(0).text("", 260));
    pass();
    EXPECT_TRUE(session.isAnswered(first));
    EXPECT_FALSE(session.isAnswered(second));
    simulator.answerQuestion();
    pass();
    EXPECT_TRUE(session.isAnswered(second));
}

TEST_F(SimConnectSession, NotesOnceThatASimulatorWhichSpeaksDoesNotRead) {
    fly();
    const auto noticed = [&] { return std::count(notes.begin(), notes.end(), pilot::kDoesNotRead); };
    const auto speak = [&](int seconds) {
        for (int i = 0; i < seconds; i++) {
            simulator.tell("ALPHA", 122.8);
            pass(1000);
        }
    };
    speak(19);  // the question after ten seconds is the first without an answer
    EXPECT_EQ(noticed(), 0);
    speak(2);
    EXPECT_EQ(noticed(), 1);
    speak(60);
    EXPECT_EQ(noticed(), 1);
    EXPECT_FALSE(noted("the simulator reads again"));
    simulator.answerQuestion();
    pass();
    EXPECT_TRUE(noted("the simulator reads again"));
    EXPECT_TRUE(session.isOpen());
    for (int i = 0; i < 60; i++) pass(1000);  // silent in both directions: it may be loading
    EXPECT_EQ(noticed(), 1);
}

TEST_F(SimConnectSession, TakesAnAnswerForTheQuestionsBeforeItOnly) {
    fly();
    session.sendKeyEvent(0, 1, nowMs);
    const auto first = session.question();
    session.sendKeyEvent(0, 2, nowMs);
    simulator.say(FakePacket(15).u32(first).u32(1).u32(0).text("", 260));
    for (int i = 0; i < 11; i++) {
        simulator.tell("ALPHA", 122.8);
        pass(1000);
    }
    EXPECT_TRUE(noted(pilot::kDoesNotRead));  // it has not read the second
}

TEST_F(SimConnectSession, NeverSaysSoOfASimulatorThatHasNoAnswers) {
    open();
    simulator.simEvent(1);
    pass();
    for (int i = 0; i < 60; i++) {
        simulator.tell("ALPHA", 122.8);
        pass(1000);
    }
    EXPECT_FALSE(noted(pilot::kDoesNotRead));
}

TEST_F(SimConnectSession, StartsAfreshOnceASecondHoweverManyAircraftAreReported) {
    fly();
    pass(2000);
    const auto requests = [&] { return simulator.all(FakeSimulator::kRequest).size(); };
    const auto lines = [&] {
        return std::count_if(notes.begin(), notes.end(),
                             [](auto& line) { return line.starts_with("aircraft loaded"); });
    };
    const auto before = requests();
    for (int i = 0; i < 100; i++) {  // two seconds
        for (int j = 0; j < 50; j++) simulator.loadAircraft("flood.cfg");
        pass();
        simulator.tell("ALPHA", 118.0);
    }
    EXPECT_EQ(lines(), 2);
    EXPECT_EQ(requests() - before, 2u * 14);  // each stops seven and begins seven
    EXPECT_TRUE(noted("aircraft loaded (the last of 50): flood.cfg")) << notes.back();
    EXPECT_TRUE(noted("aircraft loaded (the last of 2500): flood.cfg")) << notes.back();
    EXPECT_EQ(stateOf(0), State::kAwaited);  // what was told since may be the aircraft before's
    simulator.loadAircraft("last.cfg");
    pass(1000);
    EXPECT_TRUE(noted(": last.cfg"));
    EXPECT_EQ(requests() - before, 3u * 14);
    simulator.tell("ALPHA", 119.0);
    pass();
    EXPECT_EQ(session.reading(0).value, 119.0);
}

TEST_F(SimConnectSession, TakesNothingBetweenAnAircraftAndItsFreshStart) {
    fly();
    pass(2000);
    simulator.loadAircraft("first.cfg");
    pass();
    simulator.tell("ALPHA", 118.0);
    pass();
    ASSERT_EQ(stateOf(0), State::kKnown);
    simulator.loadAircraft("second.cfg");
    pass();
    simulator.tell("ALPHA", 118.0);  // asked for of the first
    pass();
    EXPECT_EQ(stateOf(0), State::kAwaited);
    EXPECT_EQ(session.dataMs(), std::nullopt);
    pass(1000);
    simulator.tell("ALPHA", 119.0);
    pass();
    EXPECT_EQ(session.reading(0).value, 119.0);
}

TEST_F(SimConnectSession, StartsAfreshOnceASecondHoweverOftenTheFlightBegins) {
    fly();
    pass(2000);
    const auto begun = [&] {
        const auto all = simulator.all(FakeSimulator::kRequest);
        return std::count_if(all.begin(), all.end(), [](auto& packet) { return u32At(packet, 28) != 0; });
    };
    const auto before = begun();
    for (int i = 0; i < 50; i++) {  // two seconds
        simulator.simEvent(0);
        pass();
        simulator.simEvent(1);
        pass();
    }
    EXPECT_EQ(begun() - before, 2 * 7);
    pass(1000);
    simulator.tell("ALPHA", 119.0);
    pass();
    EXPECT_EQ(session.reading(0).value, 119.0);
}

TEST_F(SimConnectSession, KnowsWhereItStandsAtTheSecondFailureOrTheFirstWithAReason) {
    EXPECT_FALSE(session.isSettled());
    transport.onConnect = sc::TransportState::kClosed;
    pass();
    EXPECT_FALSE(session.isSettled());
    pass(1000);
    EXPECT_TRUE(session.isSettled());

    FakeTransport full;
    full.onConnect = sc::TransportState::kClosed;
    full.reason = "the simulator takes no more programs";
    sc::Session other(full, {kThree, kTwo});
    other.poll(1000);
    EXPECT_TRUE(other.isSettled());

    FakeTransport silent;
    sc::Session third(silent, {kThree, kTwo});
    std::uint64_t ms = 0;
    for (; ms < 60'000 && !third.isSettled(); ms += 20) third.poll(1'000 + ms);
    EXPECT_GE(ms, 15'000u);  // another version of the introduction may do
    EXPECT_LE(ms, 15'200u);
    EXPECT_EQ(third.status(), "the simulator does not answer");
}
