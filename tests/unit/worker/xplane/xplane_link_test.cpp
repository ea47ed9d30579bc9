#include "worker/xplane/xplane_link.h"
#include <cmath>
#include "tests/unit/worker/xplane/xplane_rig.h"

TEST_F(XPlaneRadios, SayWhereTheyStandOnTheWay) {
    EXPECT_EQ(status(), "no: waiting for the simulator");
    pass();
    EXPECT_EQ(status(), "no: waiting for the simulator");
    EXPECT_TRUE(datagrams->sent.empty());  // nobody is heard, so nobody is asked
    sim.sayBeacon();
    pass();
    EXPECT_EQ(status(), "no: connecting to the simulator");
    sim.listen();
    sim.tell(1, 0.0f);
    pass();
    EXPECT_EQ(status(), "no: reading the radios");
    sim.answer();
    pass();
    EXPECT_EQ(status(), "ok: flying, X-Plane 12.2.0");
    EXPECT_EQ(notes, std::vector<std::string>{"X-Plane 12.2.0 found on this computer, port 49000"});
}

TEST_F(XPlaneRadios, ShowBothRadios) {
    fly();
    const std::array<bool, kSlotCount> all = {true, true, true, true};
    EXPECT_EQ(shown().radios[0], (RadioReading{122800, 121500, kSpacing833, 0.8f, all}));
    EXPECT_EQ(shown().radios[1], (RadioReading{118000, 119105, kSpacing833, 1.0f, all}));
    EXPECT_EQ(shown().rangeMinKHz, 118000);
    EXPECT_EQ(shown().rangeMaxKHz, 136990);
    set("com1_frequency_hz_833", 136990.0f);
    EXPECT_EQ(shown().radios[0].active, 136990);
    set("audio_volume_com2", 0.0f);
    EXPECT_EQ(shown().radios[1].volume, 0.0f);
}

TEST_F(XPlaneRadios, AreLostAfterThreeSecondsOfSilenceAndComeBack) {
    fly();
    const auto radios = shown().radios;
    silence(2900);
    EXPECT_TRUE(shown().ok);
    EXPECT_EQ(shown().radios, radios);  // a stutter
    EXPECT_GE(link->unheardMs(nowMs), kStutterMs);
    silence(200);
    EXPECT_EQ(status(), "no: simulator link lost");
    EXPECT_EQ(shown().radios[0], RadioReading());
    EXPECT_EQ(notes.back(), "X-Plane 12.2.0 is not heard any more");
    EXPECT_FALSE(link->isThere());
    silence(60'000);
    EXPECT_EQ(status(), "no: simulator link lost");
    sim.restart();
    fly();
    EXPECT_EQ(status(), "ok: flying, X-Plane 12.2.0");
}

TEST_F(XPlaneRadios, SayThatNothingComesWhileXPlaneIsStillHeard) {
    fly();
    answers = false;
    cruise(2900);
    EXPECT_TRUE(shown().ok);
    cruise(200);
    EXPECT_EQ(status(), "no: X-Plane silent: menu, or Settings, Network");
    EXPECT_TRUE(link->isThere());
    answers = true;
    cruise(2000);
    EXPECT_EQ(status(), "ok: flying, X-Plane 12.2.0");
}

TEST_F(XPlaneRadios, SayThatTimeStandsStill) {
    fly();
    set("paused", 1.0f);
    EXPECT_EQ(status(), "ok: paused, X-Plane 12.2.0");
    set("com1_power", 0.0f);
    EXPECT_EQ(status(), "ok: X-Plane 12.2.0: COM1 unpowered");
    set("com1_power", 1.0f);
    set("paused", 0.0f);
    EXPECT_EQ(status(), "ok: flying, X-Plane 12.2.0");
}

// Each look for a beacon is a system call, and each pass of a worker that waits for a simulator would have one.
TEST_F(XPlaneRadios, LookForBeaconsTwiceASecond) {
    int event = 0;
    datagrams->wakes = &event;
    pass();
    sim.sayBeacon();
    for (int ms = 20; ms < 500; ms += 20) pass();
    EXPECT_EQ(datagrams->beacons.size(), 1u);
    EXPECT_EQ(datagrams->beaconLooks, 1);
    pass();
    EXPECT_EQ(datagrams->beacons.size(), 0u);
    sim.answer();
    EXPECT_EQ(status(), "no: connecting to the simulator");
    pass();
    sim.answer();
    pass();
    EXPECT_EQ(status(), "ok: flying, X-Plane 12.2.0");
    const auto before = datagrams->beaconLooks;
    cruise(5000);
    EXPECT_NEAR(datagrams->beaconLooks - before, 15, 2);  // each look takes a beacon, and then nothing
}

TEST_F(XPlaneRadios, SayWhereToLookIfXPlaneNeverAnswers) {
    answers = false;
    cruise(3500);
    EXPECT_EQ(status(), "no: X-Plane silent: menu, or Settings, Network");
    EXPECT_TRUE(link->isSettled());
    answers = true;  // switched on
    cruise(1200);
    EXPECT_EQ(status(), "ok: flying, X-Plane 12.2.0");
}

TEST_F(XPlaneRadios, KnowOfNoSwitchInAnOlderXPlane) {
    answers = false;
    sim.beacon = {115501, 49000, 1, 1, 1, 1};
    cruise(3500);
    EXPECT_EQ(status(), "no: X-Plane is silent: loading or in its menu");
    answers = true;
    cruise(1200);
    EXPECT_EQ(status(), "ok: flying, X-Plane 11.55");
}

TEST_F(XPlaneRadios, GoOnThroughLostBeacons) {
    fly();
    hasBeacon = false;
    cruise(30'000);
    EXPECT_EQ(status(), "ok: flying, X-Plane 12.2.0");
}

TEST_F(XPlaneRadios, MoveToTheXPlaneOnThisComputer) {
    FakeXPlane other(*datagrams, {kElsewhere, 49010});
    other.cockpit = sim.cockpit;
    other.cockpit["sim/cockpit2/radios/actuators/com1_frequency_hz_833"] = 123450.0f;
    pass();
    other.sayBeacon();
    pass(1600);
    EXPECT_EQ(notes, std::vector<std::string>{"X-Plane 12.2.0 found, simulator at 192.168.1.32:49010"});
    other.answer();
    pass();
    EXPECT_EQ(shown().radios[0].active, 123450);
    sim.sayBeacon();
    pass(500);
    EXPECT_FALSE(shown().ok);
    other.listen();
    EXPECT_TRUE(other.asked.empty());  // it is not asked any more
    sim.answer();
    pass();
    EXPECT_EQ(shown().radios[0].active, 122800);
    EXPECT_EQ(notes.back(), "X-Plane 12.2.0 found on this computer, port 49000");
}

TEST_F(XPlaneRadios, AnotherVersionIsAnotherXPlane) {
    fly();
    sim.restart();
    sim.beacon.version = 122100;
    sim.sayBeacon();
    pass(500);
    EXPECT_EQ(status(), "no: connecting to the simulator");
    sim.answer();
    pass();
    EXPECT_EQ(status(), "ok: flying, X-Plane 12.2.1");
}

TEST_F(XPlaneRadios, WithoutPowerAreShownAndNotWritable) {
    fly();
    const std::array<bool, kSlotCount> none{}, all = {true, true, true, true};
    set("com2_power", 0.0f);
    EXPECT_EQ(status(), "ok: X-Plane 12.2.0: COM2 unpowered");
    EXPECT_EQ(shown().radios[1].active, 118000);
    EXPECT_EQ(shown().radios[1].writable, none);
    EXPECT_EQ(shown().radios[0].writable, all);
    set("avionics_power_on", 0.0f);
    EXPECT_EQ(status(), "ok: X-Plane 12.2.0: COM1 and COM2 unpowered");
    EXPECT_EQ(shown().radios[0].writable, none);
    set("avionics_power_on", 1.0f);
    set("com2_power", 1.0f);
    EXPECT_EQ(status(), "ok: flying, X-Plane 12.2.0");
    EXPECT_EQ(shown().radios[1].writable, all);
}

TEST_F(XPlaneRadios, DoWithoutNamesThatThisXPlaneDoesNotKnow) {
    forget("com2_power");
    forget("audio_volume_com1");
    forget("com2_standby_frequency_hz_833");
    pass();
    sim.sayBeacon();
    pass();
    sim.answer();
    pass();
    EXPECT_EQ(status(), "no: reading the radios");
    cruise(1600);
    EXPECT_EQ(status(), "ok: flying, X-Plane 12.2.0");
    EXPECT_EQ(shown().radios[0].volume, -1.0f);
    EXPECT_EQ(shown().radios[0].writable, (std::array<bool, 4>{true, true, false, true}));
    EXPECT_EQ(shown().radios[1].standby, 0);
    EXPECT_EQ(shown().radios[1].writable, (std::array<bool, 4>{true, false, true, false}));
    forget("avionics_power_on");
    cruise(3100);
    EXPECT_EQ(status(), "ok: X-Plane 12.2.0: COM2 not known");
    EXPECT_EQ(shown().radios[1].writable, (std::array<bool, 4>{}));
    EXPECT_TRUE(shown().radios[0].writable[kSlotActive]);  // its own power is known
}

TEST_F(XPlaneRadios, ANameAnsweredWith0IsNoFrequency) {
    cockpit("com1_frequency_hz_833") = 0.0f;
    fly();
    EXPECT_EQ(shown().radios[0].active, 0);
    EXPECT_FALSE(shown().radios[0].writable[kSlotActive]);
    EXPECT_FALSE(shown().radios[0].writable[kSlotSwap]);
    EXPECT_TRUE(shown().radios[0].writable[kSlotStandby]);
}

TEST_F(XPlaneRadios, KnowWhereTheyStandOnceTheySaySomethingLasting) {
    EXPECT_FALSE(link->isSettled());
    pass();
    pass(2900);
    EXPECT_FALSE(link->isSettled());
    pass(100);
    EXPECT_TRUE(link->isSettled());  // nobody is heard
    sim.sayBeacon();
    pass();
    EXPECT_FALSE(link->isSettled());
    sim.answer();
    pass();
    EXPECT_TRUE(link->isSettled());
}

TEST_F(XPlaneRadios, SayWhyTheBeaconCannotBeHeardAndGoOnTrying) {
    datagrams->listenProblem = 10048;
    pass();
    EXPECT_EQ(status(), "no: simulator not reachable (error 10048)");
    EXPECT_EQ(notes, std::vector<std::string>{"X-Plane's beacon cannot be listened to (error 10048)"});
    pass(30'000);
    pass(30'000);
    EXPECT_EQ(notes.size(), 1u);
    EXPECT_EQ(datagrams->listens, 3);
    datagrams->listenProblem = 0;
    pass(30'000);
    EXPECT_EQ(status(), "no: waiting for the simulator");
    fly();
}

TEST_F(XPlaneRadios, LookForNewNetworksOnlyWhileNobodyIsFound) {
    pass();
    pass(29'900);
    EXPECT_EQ(datagrams->listens, 1);
    pass(100);
    EXPECT_EQ(datagrams->listens, 2);
    fly();
    cruise(60'000);
    EXPECT_EQ(datagrams->listens, 2);
}

TEST_F(XPlaneRadios, StopAskingWhenTheLinkGoes) {
    // The datagrams are the link's own and go with it, so what it says last is kept aside.
    struct Remembering : FakeDatagrams {
        explicit Remembering(std::vector<Arrived>& kept) : said(kept) {}
        bool send(const xplane::Endpoint& to, std::span<const std::uint8_t> datagram) override {
            said.emplace_back(to, FakeBytes(datagram.begin(), datagram.end()));
            return FakeDatagrams::send(to, datagram);
        }
        std::vector<Arrived>& said;
    };
    std::vector<FakeDatagrams::Arrived> said;
    auto owned = std::make_unique<Remembering>(said);
    FakeXPlane other(*owned);
    auto brief = std::make_unique<xplane::XPlaneLink>(std::move(owned));
    other.sayBeacon();
    brief->poll(1000);
    const auto asked = said.size();
    EXPECT_EQ(asked, 10u);
    brief.reset();
    ASSERT_EQ(said.size(), 2 * asked);
    for (std::size_t i = asked; i < said.size(); i++) EXPECT_EQ(u32Of(said[i].second, 5), 0u);
}

TEST_F(XPlaneRadios, OnANamedComputerNeedNoBeacon) {
    struct Named {
        FakeDatagrams* datagrams = new FakeDatagrams;
        FakeXPlane sim{*datagrams, {kElsewhere, 49000}};
        xplane::XPlaneLink link{std::unique_ptr<xplane::Datagrams>(datagrams), HostPort{"192.168.1.32", 49000}};
    } named;
    std::uint64_t now = 10'000;
    const auto pass = [&](std::uint64_t ms) {
        named.link.poll(now += ms);
        return named.link.snapshot().status;
    };
    EXPECT_EQ(pass(0), "connecting to the simulator");
    EXPECT_EQ(named.datagrams->listens, 0);
    EXPECT_EQ(pass(1900), "connecting to the simulator");
    EXPECT_FALSE(named.link.isSettled());
    EXPECT_EQ(pass(200), "no answer from 192.168.1.32");
    EXPECT_TRUE(named.link.isSettled());
    EXPECT_FALSE(named.link.isThere());
    named.sim.cockpit = sim.cockpit;
    named.sim.answer();
    EXPECT_EQ(pass(20), "reading the radios");
    EXPECT_TRUE(named.link.isThere());
    named.sim.answer();
    EXPECT_EQ(pass(20), "flying, X-Plane");
    for (int i = 0; i < 29; i++) pass(100);
    EXPECT_TRUE(named.link.snapshot().ok);
    EXPECT_EQ(pass(100), "simulator link lost");
    EXPECT_FALSE(named.link.isThere());
    EXPECT_EQ(pass(10'000), "simulator link lost");
    pass(1000);
    named.sim.answer();
    pass(20);
    named.sim.answer();
    EXPECT_EQ(pass(20), "flying, X-Plane");
}
