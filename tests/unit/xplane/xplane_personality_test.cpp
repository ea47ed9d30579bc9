// xplane_personality_test.cpp - how each personality differs from version 12 on a good day.
#include <algorithm>
#include "tests/unit/xplane/xplane_test.h"

using namespace xstandin;

using XplanePersonality = XplaneTest;

TEST_F(XplanePersonality, StartsEveryScriptThatItHas) {
    for (const auto* row = personalitiesBegin(); row != personalitiesEnd(); row++) {
        std::vector<TimedAction> script;
        std::string error;
        EXPECT_TRUE(parseScript(row->script, script, error)) << row->name << ": " << error;
    }
}

TEST_F(XplanePersonality, SaysInItsBeaconWhatItIs) {
    const struct {
        const char* personality;
        int minor, program, version, role;
    } rows[] = {
        {"stock_12", 2, 1, 122'015, 1},    {"stock_11", 1, 1, 115'501, 1},   {"stock_10", 1, 1, 105'103, 1},
        {"plane_maker", 2, 2, 122'015, 1}, {"instructor", 2, 1, 122'015, 3}, {"external_visual", 2, 1, 122'015, 2},
    };
    for (const auto& row : rows) {
        begin(row.personality);
        fly(50);
        ASSERT_EQ(beacons.size(), 1u) << row.personality;
        EXPECT_EQ(beacons[0][5], 1);
        EXPECT_EQ(beacons[0][6], row.minor) << row.personality;
        EXPECT_EQ(numberAt<int>(beacons[0], 7), row.program) << row.personality;
        EXPECT_EQ(numberAt<int>(beacons[0], 11), row.version) << row.personality;
        EXPECT_EQ(numberAt<int>(beacons[0], 15), row.role) << row.personality;
    }
}

TEST_F(XplanePersonality, Version10HasAnotherFifthByte) {
    for (const auto* name : {"stock_10", "stock_11"}) {
        begin(name);
        ask(kCom1Active, 20, 1);
        fly(50);
        ASSERT_FALSE(answers.empty());
        EXPECT_EQ(answers[0].bytes[4], name[7] == '0' ? 'O' : ',');
    }
}

TEST_F(XplanePersonality, IgnoringOneThingTakesTheOther) {
    begin("ignores_standby");
    write(kCom1Standby, 119'000);
    write(kCom1Active, 119'100);
    fly(50);
    EXPECT_EQ(simulator->cockpit().radios[0].standbyKhz, 121'500);
    EXPECT_EQ(simulator->cockpit().radios[0].activeKhz, 119'100);
    begin("ignores_swaps");
    command(kCom1Flip);
    write(kCom1Standby, 119'000);
    fly(50);
    EXPECT_EQ(simulator->cockpit().radios[0].activeKhz, 122'800);
    EXPECT_EQ(simulator->cockpit().radios[0].standbyKhz, 119'000);
}

TEST_F(XplanePersonality, AnOwnPanelShowsAWriteForAMoment) {
    begin("own_panel");
    ask(kCom1Standby, 30, 1);
    write(kCom1Standby, 119'000);
    fly(50);
    EXPECT_EQ(value(1), 119'000);
    fly(200);
    EXPECT_EQ(value(1), 121'500);
}

TEST_F(XplanePersonality, SnappingFrequenciesTakesTheNext25Below) {
    begin("snaps_frequencies");
    write(kCom1Active, 118'105);
    fly(50);
    EXPECT_EQ(simulator->cockpit().radios[0].activeKhz, 118'100);
}

TEST_F(XplanePersonality, VolumePowerKnobAtZeroSwitchesTheRadioOff) {
    begin("volume_power_knob");
    ask(kCom1Power, 20, 1);
    write(kCom1Volume, 0.01f);
    fly(100);
    EXPECT_EQ(value(1), 1);
    write(kCom1Volume, 0);
    fly(100);
    EXPECT_EQ(value(1), 0);
}

TEST_F(XplanePersonality, PowerAndAvionicsAreOffFromTheFirstAnswer) {
    begin("unpowered_radio");
    ask("sim/cockpit2/radios/actuators/com2_power", 20, 1);
    fly(40);
    EXPECT_EQ(value(1), 0);
    begin("avionics_off");
    ask("sim/cockpit2/switches/avionics_power_on", 20, 1);
    fly(40);
    EXPECT_EQ(value(1), 0);
    fly(2100);
    EXPECT_EQ(value(1), 1);
}

TEST_F(XplanePersonality, WithItsNetworkSwitchOffAnnouncesItselfAndAnswersNothing) {
    begin("network_off");
    ask(kCom1Active, 20, 1);
    write(kCom1Active, 119'000);
    fly(3000);
    EXPECT_TRUE(answers.empty());
    EXPECT_EQ(beacons.size(), 3u);
    EXPECT_EQ(simulator->cockpit().radios[0].activeKhz, 122'800);
    act("network on");
    ask(kCom1Active, 20, 1);
    fly(100);
    EXPECT_EQ(value(1), 122'800);
    act("network off");
    forget();
    fly(100);
    EXPECT_TRUE(answers.empty());
}

TEST_F(XplanePersonality, LackingCom2SaysNothingOfItOrZero) {
    for (const bool isZero : {false, true}) {
        begin(isZero ? "lacks_com2_says_zero" : "lacks_com2");
        ask(kCom1Active, 20, 1);
        ask(kCom2Active, 20, 2);
        write(kCom2Active, 119'000);
        fly(100);
        EXPECT_EQ(value(1), 122'800);
        EXPECT_EQ(value(2), isZero ? 0 : -1000);
        EXPECT_EQ(simulator->cockpit().radios[1].activeKhz, 121'500);
    }
}

TEST_F(XplanePersonality, AnsweringLateShowsAWriteAfter900Ms) {
    begin("answers_late");
    ask(kCom1Active, 30, 1);
    write(kCom1Active, 119'000);
    fly(880);
    EXPECT_EQ(value(1), 122'800);
    fly(80);
    EXPECT_EQ(value(1), 119'000);
}

TEST_F(XplanePersonality, CrashingOnAWriteIsGoneForTwoSecondsAndMayComeBackNewer) {
    for (const bool isNewer : {false, true}) {
        begin(isNewer ? "comes_back_newer" : "crashes");
        ask(kCom1Active, 20, 1);
        fly(100);
        write(kCom1Active, 119'000);
        EXPECT_FALSE(simulator->isReachable());
        EXPECT_EQ(simulator->requestsOf(client), 0u);
        collect();
        forget();
        fly(1950);
        EXPECT_FALSE(simulator->isReachable());
        EXPECT_TRUE(beacons.empty());
        fly(150);
        EXPECT_TRUE(simulator->isReachable());
        ASSERT_EQ(beacons.size(), 1u);
        EXPECT_EQ(numberAt<int>(beacons[0], 11), isNewer ? 122'100 : 122'015);
        EXPECT_EQ(simulator->cockpit().radios[0].activeKhz, 122'800);
    }
}

TEST_F(XplanePersonality, FreezingInPauseTakesWritesWhenThePauseIsOver) {
    begin("freezes_in_pause");
    ask(kCom1Active, 20, 1);
    ask("sim/time/paused", 20, 2);
    act("pause on");
    write(kCom1Active, 119'000);
    fly(2000);
    EXPECT_EQ(value(1), 122'800);
    EXPECT_EQ(value(2), 1);
    act("pause off");
    fly(100);
    EXPECT_EQ(value(1), 119'000);
    EXPECT_EQ(value(2), 0);
}

TEST_F(XplanePersonality, InMenuHasNoFlightForTwoSeconds) {
    begin("in_menu");
    ask(kCom1Active, 20, 1);
    fly(1900);
    EXPECT_TRUE(answers.empty());
    fly(200);
    EXPECT_EQ(value(1), 122'800);
}

TEST_F(XplanePersonality, StutteringSendsAndReadsNothingForTwoAndAHalfSeconds) {
    begin("stutters");
    ask(kCom1Active, 30, 1);
    fly(2050);
    forget();
    write(kCom1Active, 119'000);
    fly(2400);
    EXPECT_TRUE(answers.empty() && beacons.empty());
    EXPECT_EQ(simulator->cockpit().radios[0].activeKhz, 122'800);
    fly(150);
    EXPECT_EQ(value(1), 119'000);
    EXPECT_EQ(beacons.size(), 1u);
    EXPECT_LE(answers.size(), 5u);  // what was missed is not made up for
}

TEST_F(XplanePersonality, ABadNetworkLosesTenPercentAndTheRestGetsThrough) {
    begin("bad_network");
    for (int i = 0; i < 10; i++) ask(kCom1Active, 30, 1);
    fly(10'000);
    EXPECT_GE(answers.size(), 260u);
    EXPECT_LE(answers.size(), 330u);
    EXPECT_EQ(value(1), 122'800);
}

TEST_F(XplanePersonality, OddDatagramsComeInAllKindsBesideTheTruth) {
    begin("odd_datagrams");
    ask(kCom1Active, 30, 1);
    fly(2000);
    std::size_t truths = 0, empty = 0, strangers = 0, longest = 0;
    for (const auto& answer : answers) {
        truths += answer.bytes.size() == 13 && numberAt<float>(answer.bytes, 9) == 122'800;
        empty += answer.bytes.empty();
        strangers += answer.way == Way::kStranger;
        longest = std::max(longest, answer.bytes.size());
    }
    EXPECT_EQ(truths, answers.size() / 2);
    EXPECT_GE(empty, 5u);
    EXPECT_GE(strangers, 5u);
    EXPECT_GE(longest, 60'000u);
    EXPECT_EQ(beacons.size(), 2u * 7);
}

TEST_F(XplanePersonality, SlowFramesSetTheRhythm) {
    begin("slow_frames");
    ask(kCom1Active, 60, 1);
    fly(2000);
    EXPECT_GE(answers.size(), 29u);
    EXPECT_LE(answers.size(), 30u);
}

TEST_F(XplanePersonality, TakesThePlaceOfAnotherAsAfterARestart) {
    begin("stock_12");
    ask(kCom1Active, 20, 1);
    fly(100);
    act("personality stock_11");
    EXPECT_EQ(simulator->requestsOf(client), 0u);
    forget();
    fly(50);
    ASSERT_EQ(beacons.size(), 1u);
    EXPECT_EQ(numberAt<int>(beacons[0], 11), 115'501);
}
