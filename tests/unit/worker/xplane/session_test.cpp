#include "worker/xplane/session.h"
#include <gtest/gtest.h>
#include <array>
#include <cmath>
#include "tests/unit/worker/xplane/fake_xplane.h"

namespace {

using xplane::DataRef;
using xplane::Session;
using xplane::Simulator;
using xplane::ValueKind;

constexpr std::array<DataRef, 3> kThree = {
    {{"tune", 30, ValueKind::kChannel}, {"loud", 30, ValueKind::kVolume}, {"on", 5, ValueKind::kSwitch}}};
enum Row : std::size_t { kTune, kLoud, kOn };
constexpr Simulator kSimulator = {{kHere, 49000}, 122015, true};

struct XPlaneSession : testing::Test {
    FakeDatagrams datagrams;
    FakeXPlane sim{datagrams};
    std::optional<Session> session{std::in_place, datagrams, kThree};
    std::uint64_t nowMs = 100'000;
    std::vector<std::string> notes;

    XPlaneSession() { sim.cockpit = {{"tune", 118005.0f}, {"loud", 0.5f}, {"on", 1.0f}}; }
    void begin(bool isHeard = true) { session->begin(kSimulator, isHeard, nowMs); }
    void pass(std::uint64_t ms = 20) {
        nowMs += ms;
        session->poll(nowMs);
        for (auto& line : session->takeNotes()) notes.push_back(std::move(line));
    }
    // X-Plane says all that it is asked for, again and again.
    void fly(std::uint64_t ms = 40) {
        for (std::uint64_t passed = 0; passed < ms; passed += 40) {
            sim.answer();
            pass(40);
        }
    }
    int requests() {
        sim.listen();
        int all = 0;
        for (const auto& [name, count] : sim.requests) all += count;
        return all;
    }
    std::vector<std::optional<double>> values() const {
        return {session->value(kTune), session->value(kLoud), session->value(kOn)};
    }
};

const std::vector<std::optional<double>> kNothing(3);

}  // namespace

TEST_F(XPlaneSession, AsksAnXPlaneThatIsHeardForEverythingAtOnce) {
    pass();
    EXPECT_TRUE(datagrams.sent.empty());  // nobody is there
    begin();
    sim.listen();
    EXPECT_EQ(sim.rates, (std::map<std::string, int>{{"tune", 30}, {"loud", 30}, {"on", 5}}));
    EXPECT_EQ(values(), kNothing);
    EXPECT_EQ(session->dataMs(), std::nullopt);
    fly();
    EXPECT_EQ(values(), (std::vector<std::optional<double>>{118005.0, 0.5, 1.0}));
    EXPECT_TRUE(session->isAllRead());
    EXPECT_EQ(session->dataMs(), nowMs);
    EXPECT_EQ(requests(), 3);
    EXPECT_TRUE(notes.empty());
}

TEST_F(XPlaneSession, AsksOneThatIsNotHeardOneThingASecondUntilItAnswers) {
    begin(false);
    EXPECT_EQ(requests(), 1);
    pass(999);
    EXPECT_EQ(requests(), 1);
    pass(1);
    EXPECT_EQ(requests(), 2);
    pass(1000);
    pass(1000);
    EXPECT_EQ(requests(), 4);
    EXPECT_EQ(sim.requests, (std::map<std::string, int>{{"tune", 2}, {"loud", 1}, {"on", 1}}));  // each in its turn
    EXPECT_FALSE(session->hasSpoken());
    sim.restart();
    begin(false);
    sim.answer();  // the first question's
    pass();
    EXPECT_TRUE(session->hasSpoken());
    sim.listen();
    EXPECT_EQ(sim.asked.size(), 3u);
}

TEST_F(XPlaneSession, AsksAgainForWhatIsSilentForASecond) {
    begin();
    fly();
    sim.cockpit.erase("loud");  // the request is lost, or its answers
    fly(960);
    EXPECT_EQ(sim.requests["loud"], 1);
    fly(80);
    sim.listen();
    EXPECT_EQ(sim.requests["loud"], 2);
    EXPECT_EQ(sim.requests["tune"], 1);
    sim.cockpit["loud"] = 0.25f;
    fly();
    EXPECT_EQ(session->value(kLoud), 0.25);
    fly(2000);
    EXPECT_EQ(sim.requests["loud"], 2);
}

TEST_F(XPlaneSession, AsksRarelyForWhatIsNeverAnswered) {
    sim.cockpit.erase("on");
    begin();
    fly(60'000);
    sim.listen();
    EXPECT_GE(sim.requests["on"], 8);  // five tries, then one every ten seconds
    EXPECT_LE(sim.requests["on"], 12);
    EXPECT_EQ(sim.requests["tune"], 1);
    EXPECT_EQ(session->value(kOn), std::nullopt);
    EXPECT_FALSE(session->isAllRead());
}

TEST_F(XPlaneSession, AnXPlaneThatWasRestartedIsAskedForEverythingAgain) {
    begin();
    fly();
    const auto aircraft = session->aircraft();
    sim.restart();
    for (int i = 0; i < 100; i++) pass(40);  // it loads
    EXPECT_EQ(values(), kNothing);
    EXPECT_GT(session->aircraft(), aircraft);
    EXPECT_EQ(session->dataMs(), std::nullopt);
    EXPECT_TRUE(session->hasSpoken());
    sim.answer();  // what it was asked last
    pass();
    sim.answer();
    pass();
    EXPECT_EQ(values(), (std::vector<std::optional<double>>{118005.0, 0.5, 1.0}));
    EXPECT_EQ(session->speaksSinceMs(), nowMs - 20);
}

TEST_F(XPlaneSession, ALongSilenceIsAskedIntoOnceASecondOnly) {
    begin();
    fly();
    sim.cockpit.clear();
    pass(3000);
    const auto before = requests();
    for (int i = 0; i < 500; i++) pass(20);
    EXPECT_GE(requests() - before, 9);
    EXPECT_LE(requests() - before, 11);
}

TEST_F(XPlaneSession, StopsEveryRequestAtItsEndAndBeforeAnother) {
    const auto isStopped = [&] {
        sim.listen();
        return sim.asked.empty() && sim.rates["tune"] == 0 && sim.rates["loud"] == 0 && sim.rates["on"] == 0;
    };
    begin();
    EXPECT_FALSE(isStopped());
    session->end();
    EXPECT_TRUE(isStopped());
    EXPECT_FALSE(datagrams.isOpen);
    begin();
    EXPECT_FALSE(isStopped());
    FakeXPlane other(datagrams, {kElsewhere, 49000});
    session->begin({{kElsewhere, 49000}, 122015, false}, true, nowMs);
    EXPECT_TRUE(isStopped());
    other.listen();
    EXPECT_EQ(other.asked.size(), 3u);
    session.reset();
    other.listen();
    EXPECT_TRUE(other.asked.empty());
}

TEST_F(XPlaneSession, ForgetsWhatTheOtherXPlaneSaid) {
    begin();
    fly();
    const auto aircraft = session->aircraft();
    session->begin({{kElsewhere, 49000}, 122015, false}, true, nowMs);
    EXPECT_EQ(values(), kNothing);
    EXPECT_FALSE(session->hasSpoken());
    EXPECT_GT(session->aircraft(), aircraft);
    sim.tell(1, 118010.0f);  // the first one goes on all the same
    pass();
    EXPECT_EQ(values(), kNothing);
}

TEST_F(XPlaneSession, TakesAnswersFromAnyPortAndAnyAddressOfItsOwnComputer) {
    begin();
    for (const xplane::Endpoint from : {xplane::Endpoint{kHere, 49001}, xplane::Endpoint{kLoopback, 55555}}) {
        sim.answersFrom = from;
        sim.cockpit["tune"] += 5.0f;
        fly();
        EXPECT_EQ(session->value(kTune), sim.cockpit["tune"]);
    }
    EXPECT_TRUE(notes.empty());
    FakeXPlane other(datagrams, {kElsewhere, 49000});
    session->begin({{kElsewhere, 49000}, 122015, false}, true, nowMs);
    other.cockpit = sim.cockpit;
    other.answersFrom = {kElsewhere, 49001};
    other.answer();
    pass();
    EXPECT_EQ(session->value(kTune), other.cockpit["tune"]);
    other.answersFrom = {kLoopback, 49000};  // not that computer's
    other.tell(1, 118090.0f);
    pass();
    EXPECT_EQ(session->value(kTune), other.cockpit["tune"]);
}

// A second X-Plane on this computer goes on answering a worker that was killed, at the port from which we ask now.
TEST_F(XPlaneSession, TakesNoOtherPortsAnswersOnceTheOneThatWasAskedAnswers) {
    begin();
    sim.answersFrom = {kHere, 49010};
    sim.cockpit["tune"] = 119'000.0f;
    fly();
    EXPECT_EQ(session->value(kTune), 119'000.0);  // perhaps it never answers from the port that was asked
    sim.answersFrom.reset();
    sim.cockpit["tune"] = 120'000.0f;
    fly();
    for (int i = 0; i < 5; i++) {
        sim.answersFrom = {kLoopback, 49010};
        sim.tell(1, 121'000.0f);
        pass();
        EXPECT_EQ(session->value(kTune), 120'000.0);
    }
    EXPECT_EQ(notes, std::vector<std::string>{"something that X-Plane has not sent was ignored"});
}

TEST_F(XPlaneSession, IgnoresStrangersAndNonsenseAndSaysSoOnce) {
    begin();
    fly();
    const auto good = values();
    for (int i = 0; i < 5; i++) {
        sim.answersFrom = {kElsewhere, 49000};
        sim.tell(1, 118010.0f);
        sim.answersFrom.reset();
        sim.tell(0, 118010.0f);
        sim.tell(4, 118010.0f);
        sim.tell(-1, 118010.0f);
        sim.send({'D', 'R', 'E', 'F', 0, 1, 2, 3, 4});
        sim.send({'R'});
        sim.send({});
        sim.send({'R', 'R', 'E', 'F', ',', 1, 0, 0, 0, 0, 0});
        pass();
    }
    EXPECT_EQ(values(), good);
    EXPECT_EQ(notes, (std::vector<std::string>{"something that X-Plane has not sent was ignored",
                                               "X-Plane has sent a value that nobody here has asked for",
                                               "something that X-Plane has sent makes no sense and was ignored",
                                               "X-Plane has sent half a value, which was ignored"}));
}

TEST_F(XPlaneSession, KeepsTheLastGoodValueThroughOnesThatMakeNoSense) {
    begin();
    fly();
    const auto good = values();
    for (const float bad : {NAN, INFINITY, -INFINITY, 0.0f, 117995.0f, 136995.0f, 118020.0f, -118005.0f, 3e38f}) {
        sim.tell(sim.indexOf("tune"), bad);
        pass();
        EXPECT_EQ(values(), good) << bad;
    }
    for (const float bad : {NAN, INFINITY, -0.01f, 1.01f, 100.0f}) {
        sim.tell(sim.indexOf("loud"), bad);
        pass();
        EXPECT_EQ(values(), good) << bad;
    }
    sim.tell(sim.indexOf("on"), NAN);
    pass();
    EXPECT_EQ(values(), good);
    ASSERT_EQ(notes.size(), 3u);  // one for each
    EXPECT_EQ(notes[0], "what X-Plane has sent as tune makes no sense and was ignored: nan");
    // But not for ever: then it is not known.
    for (int i = 0; i < 200; i++) {
        sim.tell(sim.indexOf("tune"), 118020.0f);
        sim.tell(sim.indexOf("loud"), 0.5f);
        pass();
    }
    EXPECT_EQ(session->value(kTune), std::nullopt);
    EXPECT_EQ(session->value(kLoud), 0.5);
}

TEST_F(XPlaneSession, TakesEveryValueThatMakesSense) {
    begin();
    const struct {
        const char* name;
        float sent;
        double taken;
    } rows[] = {{"tune", 118000.0f, 118000},
                {"tune", 136990.0f, 136990},
                {"tune", 118004.99f, 118005},
                {"tune", 121500.0f, 121500},
                {"loud", 0.0f, 0},
                {"loud", 1.0f, 1},
                {"loud", -0.001f, 0},
                {"loud", 1.001f, 1},
                {"on", 0.0f, 0},
                {"on", 1.0f, 1},
                {"on", 2.0f, 1},
                {"on", -1.0f, 1}};
    for (const auto& row : rows) {
        sim.tell(sim.indexOf(row.name), row.sent);
        pass();
        EXPECT_EQ(session->value(static_cast<std::size_t>(sim.indexOf(row.name) - 1)), row.taken) << row.sent;
    }
    EXPECT_TRUE(notes.empty());
}

TEST_F(XPlaneSession, TakesALoneDatagramAndTheRestWhenThatWakesItAgain) {
    begin();
    fly();
    datagrams.wakes = &datagrams;
    for (int i = 0; i < 5; i++) sim.answer();
    pass(40);
    EXPECT_EQ(datagrams.answers.size(), 4u);
    EXPECT_EQ(session->dataMs(), nowMs);
    pass(1);
    EXPECT_TRUE(datagrams.answers.empty());
}

TEST_F(XPlaneSession, LeavesTheRestOfAFloodToTheNextPass) {
    begin();
    const auto index = sim.indexOf("loud");
    for (int i = 0; i < 1000; i++) sim.tell(index, 0.5f);
    pass();
    EXPECT_GT(datagrams.answers.size(), 500u);
    EXPECT_LT(datagrams.answers.size(), 1000u);
    for (int i = 0; i < 4; i++) pass();
    EXPECT_TRUE(datagrams.answers.empty());
}
