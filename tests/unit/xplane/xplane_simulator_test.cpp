// xplane_simulator_test.cpp - the stand-in X-Plane as a client sees it: beacon, requests, radios, and its network.
#include <cmath>
#include <iterator>
#include <limits>
#include "tests/unit/xplane/xplane_test.h"

using namespace xstandin;

using XplaneSimulator = XplaneTest;

TEST_F(XplaneSimulator, AnnouncesItselfOnceASecondAndAnswersNobodyWhoDoesNotAsk) {
    begin("stock_12");
    fly(5000);
    EXPECT_EQ(beacons.size(), 5u);
    EXPECT_TRUE(answers.empty());
    ASSERT_EQ(beacons[0].size(), 27u);
    EXPECT_EQ(numberAt<int>(beacons[0], 7), 1);
    EXPECT_EQ(numberAt<int>(beacons[0], 11), 122'015);
    EXPECT_EQ(numberAt<int>(beacons[0], 15), 1);
    EXPECT_EQ(numberAt<std::uint16_t>(beacons[0], 19), 49'003);
    EXPECT_STREQ(beacons[0].c_str() + 21, "simpc");
}

TEST_F(XplaneSimulator, TellsEveryValueOfTheRadios) {
    const struct {
        const char* name;
        float value;
    } rows[] = {
        {kCom1Active, 122'800},
        {kCom1Standby, 121'500},
        {kCom2Active, 121'500},
        {kCom2Standby, 118'000},
        {kCom1Volume, 1},
        {"sim/cockpit2/radios/actuators/audio_volume_com2", 1},
        {kCom1Power, 1},
        {"sim/cockpit2/radios/actuators/com2_power", 1},
        {"sim/cockpit2/radios/actuators/audio_com_selection", 6},
        {"sim/cockpit2/switches/avionics_power_on", 1},
        {"sim/time/paused", 0},
    };
    begin("stock_12");
    for (int i = 0; i < static_cast<int>(std::size(rows)); i++) ask(rows[i].name, 10, 100 + i);
    fly(40);
    ASSERT_EQ(answers.size(), 1u);  // all in one datagram
    EXPECT_EQ(answers[0].peer, client);
    EXPECT_EQ(answers[0].bytes.size(), 5 + 8 * std::size(rows));
    for (int i = 0; i < static_cast<int>(std::size(rows)); i++)
        EXPECT_EQ(value(100 + i), rows[i].value) << rows[i].name;
}

TEST_F(XplaneSimulator, AnswersAsOftenAsAskedButNoOftenerThanItsFrames) {
    const struct {
        int perSecond;
        std::size_t lowest, highest;
    } rows[] = {{1, 9, 11}, {10, 98, 101}, {20, 198, 201}, {30, 298, 301}, {100, 298, 301}};
    for (const auto& row : rows) {
        begin("stock_12");
        ask(kCom1Active, row.perSecond, 1);
        fly(10'000);
        EXPECT_GE(answers.size(), row.lowest) << row.perSecond;
        EXPECT_LE(answers.size(), row.highest) << row.perSecond;
    }
}

TEST_F(XplaneSimulator, StopsWhenAskedForNothingAndKeepsTheOtherRequests) {
    begin("stock_12");
    ask(kCom1Active, 20, 1);
    ask(kCom2Active, 20, 2);
    fly(100);
    ask(kCom1Active, 0, 1);
    forget();
    fly(100);
    EXPECT_EQ(value(1), -1000);
    EXPECT_EQ(value(2), 121'500);
    EXPECT_EQ(simulator->requestsOf(client), 1u);
    ask(kCom2Active, -5, 2);
    EXPECT_EQ(simulator->requestsOf(client), 0u);
}

TEST_F(XplaneSimulator, AnswersOtherNamesUnderAnIndexThatIsUsedAgain) {
    begin("stock_12");
    ask(kCom1Active, 20, 1);
    ask(kCom1Standby, 20, 1);
    fly(50);
    EXPECT_EQ(value(1), 121'500);
}

TEST_F(XplaneSimulator, AnswersEachClientAtItsOwnAddress) {
    begin("stock_12");
    const Endpoint other{client.address, 50'124};
    ask(kCom1Active, 20, 1);
    simulator->receive(other, askBytes(kCom2Active, 20, 1), nowMs);
    fly(40);
    ASSERT_EQ(answers.size(), 2u);
    EXPECT_EQ(answers[0].peer, client);
    EXPECT_EQ(numberAt<float>(answers[0].bytes, 9), 122'800);
    EXPECT_EQ(answers[1].peer, other);
    EXPECT_EQ(numberAt<float>(answers[1].bytes, 9), 121'500);
}

TEST_F(XplaneSimulator, TakesWritesAndCommandsAndAcknowledgesNone) {
    begin("stock_12");
    write(kCom1Standby, 128'855);
    write(kCom2Active, 136'975);
    write(kCom1Volume, 0.4f);
    write(kCom1Power, 0);
    write("sim/cockpit2/radios/actuators/audio_com_selection", 7);
    write("sim/cockpit2/switches/avionics_power_on", 0);
    fly(50);
    const auto& cockpit = simulator->cockpit();
    EXPECT_EQ(cockpit.radios[0].standbyKhz, 128'855);
    EXPECT_EQ(cockpit.radios[1].activeKhz, 136'975);
    EXPECT_EQ(cockpit.radios[0].volume, 0.4f);
    EXPECT_FALSE(cockpit.radios[0].isPowered);
    EXPECT_EQ(cockpit.transmitting, 7);
    EXPECT_FALSE(cockpit.hasAvionics);
    command(kCom1Flip);
    fly(50);
    EXPECT_EQ(cockpit.radios[0].activeKhz, 128'855);
    EXPECT_EQ(cockpit.radios[0].standbyKhz, 122'800);
    EXPECT_EQ(cockpit.radios[1].standbyKhz, 118'000);
    EXPECT_TRUE(answers.empty());
    EXPECT_TRUE(hasReported("client 127.0.0.1:50123 write sim/cockpit2/radios/actuators/audio_volume_com1 0.4"));
    EXPECT_TRUE(hasReported("client 127.0.0.1:50123 command sim/radios/com1_standy_flip"));
}

TEST_F(XplaneSimulator, TakesNoValueThatItHasNoPlaceFor) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const struct {
        const char* name;
        float written, shown;
    } rows[] = {
        {kCom1Active, 118'020, 118'015}, {kCom1Active, 118'003, 118'000}, {kCom1Active, 117'995, 122'800},
        {kCom1Active, 136'995, 122'800}, {kCom1Active, 136'990, 136'990}, {kCom1Active, nan, 122'800},
        {kCom1Active, 1e30f, 122'800},   {kCom1Volume, 1.5f, 1},          {kCom1Volume, -1, 0},
        {kCom1Volume, nan, 1},           {"sim/time/paused", 1, 0},
    };
    for (const auto& row : rows) {
        begin("stock_12");
        write(row.name, row.written);
        ask(row.name, 20, 1);
        fly(50);
        EXPECT_EQ(value(1), row.shown) << row.name << ' ' << row.written;
    }
}

TEST_F(XplaneSimulator, SaysNothingOfWhatThereIsNotAndReportsIt) {
    begin("stock_12");
    ask("sim/nonsense", 20, 1);
    write("sim/nonsense", 1);
    command("sim/radios/com1_standby_flip");  // as it would be spelled
    send("RREF");
    fly(200);
    EXPECT_TRUE(answers.empty());
    EXPECT_TRUE(hasReported("means what there is not: sim/nonsense"));
    EXPECT_TRUE(hasReported("means what there is not: sim/radios/com1_standby_flip"));
    EXPECT_TRUE(hasReported("sends 4 strange bytes"));
    EXPECT_EQ(simulator->cockpit().radios[0].activeKhz, 122'800);
}

TEST_F(XplaneSimulator, ObeysThePilotWhateverClientsMayNot) {
    begin("stock_12");
    ask(kCom1Active, 20, 1);
    ask("sim/cockpit2/radios/actuators/audio_com_selection", 20, 2);
    act("ignore COM1 active");
    write(kCom1Active, 119'000);
    act("transmit COM2");
    fly(100);
    EXPECT_EQ(value(1), 122'800);
    EXPECT_EQ(value(2), 7);
    act("tune COM1 active 118.005");
    fly(100);
    EXPECT_EQ(value(1), 118'005);
    act("obey COM1 active");
    write(kCom1Active, 119'000);
    fly(100);
    EXPECT_EQ(value(1), 119'000);
}

TEST_F(XplaneSimulator, ShowsAnythingForAValueWhenTold) {
    begin("stock_12");
    ask(kCom1Active, 20, 1);
    act((std::string("show ") + kCom1Active + " nan").c_str());
    fly(100);
    EXPECT_TRUE(std::isnan(value(1)));
    act((std::string("show ") + kCom1Active + " -118020.5").c_str());
    fly(100);
    EXPECT_EQ(value(1), -118'020.5f);
}

TEST_F(XplaneSimulator, ForgetsItsRequestsWhenItEndsButNotWhenTheNetworkDoes) {
    for (const char* line : {"crash 2", "quit 2", "drop 2"}) {
        begin("stock_12");
        ask(kCom1Active, 20, 1);
        fly(100);
        act(line);
        const bool isNetwork = line[0] == 'd';
        EXPECT_EQ(simulator->isReachable(), isNetwork) << line;
        collect();
        forget();
        fly(1950);
        EXPECT_TRUE(answers.empty() && beacons.empty()) << line;
        fly(1200);
        EXPECT_TRUE(simulator->isReachable());
        EXPECT_EQ(beacons.size(), isNetwork ? 1u : 2u) << line;  // one at once after a start
        EXPECT_EQ(value(1), isNetwork ? 122'800 : -1000) << line;
    }
}

TEST_F(XplaneSimulator, LeavesHalfAnAnswerWhenItCrashes) {
    begin("stock_12");
    ask(kCom1Active, 20, 1);
    fly(100);
    forget();
    act("crash 2");
    collect();
    ASSERT_EQ(answers.size(), 1u);
    EXPECT_EQ(answers[0].bytes.size(), 11u);
}

TEST_F(XplaneSimulator, IsOverOnExit) {
    begin("stock_12");
    act("exit");
    EXPECT_TRUE(simulator->isOver());
    fly(2000);
    EXPECT_TRUE(beacons.empty());
}

TEST_F(XplaneSimulator, TellsOfNoRadiosInTheMenuAndHoldsTheRequests) {
    begin("stock_12");
    ask(kCom1Active, 20, 1);
    act("sim menu");
    fly(3000);
    EXPECT_TRUE(answers.empty());
    EXPECT_GE(beacons.size(), 2u);
    act("sim running");
    fly(100);
    EXPECT_EQ(value(1), 122'800);
}

TEST_F(XplaneSimulator, LosesDoublesAndDelaysAsManyDatagramsAsTold) {
    const struct {
        const char* line;
        std::size_t lowest, highest;  // of a thousand
    } rows[] = {{"lose 10", 860, 940}, {"double 10", 1060, 1140}, {"delay 10", 990, 1000}, {"lose 100", 0, 0}};
    for (const auto& row : rows) {
        begin("stock_12");
        ask(kCom1Active, 100, 1);
        act(row.line);
        while (simulator->nextFrameMs() < 50'000 + 1000 * 1000 / 30 + 1) {
            nowMs = simulator->nextFrameMs();
            // A value that grows shows in which order the datagrams come.
            act((std::string("show ") + kCom1Active + ' ' + std::to_string(nowMs)).c_str());
            simulator->advance(nowMs);
            collect();
        }
        nowMs = 50'000;
        std::size_t late = 0;
        for (std::size_t i = 1; i < answers.size(); i++)
            late += numberAt<float>(answers[i].bytes, 9) < numberAt<float>(answers[i - 1].bytes, 9);
        EXPECT_GE(answers.size(), row.lowest) << row.line;
        EXPECT_LE(answers.size(), row.highest) << row.line;
        EXPECT_EQ(late > 40, std::string_view(row.line) == "delay 10") << row.line << ' ' << late;
    }
}

TEST_F(XplaneSimulator, LosesWhatComesInAsWell) {
    begin("stock_12");
    act("lose 100");
    ask(kCom1Active, 20, 1);
    write(kCom1Active, 119'000);
    fly(50);
    EXPECT_EQ(simulator->requestsOf(client), 0u);
    EXPECT_EQ(simulator->cockpit().radios[0].activeKhz, 122'800);
}

TEST_F(XplaneSimulator, SaysOddThingsOnlyBesideTheTruth) {
    for (const auto word : kOddityWords) {
        begin("stock_12");
        ask(kCom1Active, 30, 1);
        ask(kCom2Active, 30, 2);
        fly(50);
        forget();
        act(("odd " + std::string(word) + " 1").c_str());
        fly(900);
        ASSERT_GE(answers.size(), 50u) << word;
        const std::string truth = answers[0].bytes;
        ASSERT_EQ(truth.size(), 5u + 2 * 8) << word;
        EXPECT_EQ(numberAt<float>(truth, 9), 122'800) << word;
        for (std::size_t i = 0; i + 1 < answers.size(); i += 2) {
            EXPECT_EQ(answers[i].bytes, truth) << word;
            const bool isStranger = answers[i + 1].way == Way::kStranger;
            EXPECT_EQ(isStranger, word == "stranger");
            EXPECT_NE(answers[i + 1].bytes, truth) << word;
        }
        fly(200);
        forget();
        fly(500);
        for (const auto& answer : answers) EXPECT_EQ(answer.bytes, truth) << word;
    }
}

TEST_F(XplaneSimulator, FliesTheScriptsOfTheOtherAircraft) {
    begin("stock_12");
    std::vector<TimedAction> script;
    std::string error;
    ASSERT_TRUE(
        parseScript("# seconds action\n0 tune COM1 active 121.650\n0.2 tune COM1 active 121.600\n"
                    "1 ignore COM2 volume\n1 tune COM1 standby 122.775\n2 drop 5\n",
                    script, error))
        << error;
    simulator->play(script, nowMs);
    fly(50);
    EXPECT_EQ(simulator->cockpit().radios[0].activeKhz, 121'650);
    fly(200);
    EXPECT_EQ(simulator->cockpit().radios[0].activeKhz, 121'600);
    fly(1000);
    EXPECT_FALSE(simulator->cockpit().radios[1].obeys[kVolume]);
    EXPECT_EQ(simulator->cockpit().radios[0].standbyKhz, 122'775);
}

TEST_F(XplaneSimulator, NamesTheLineOfAScriptThatItCannotRead) {
    const struct {
        const char* text;
        const char* error;
    } rows[] = {
        {"0 tune COM3 active 118", "line 1: expected: tune COM1|COM2 active|standby MHZ"},
        {"\n1 nonsense", "line 2: no such action"},
        {"soon swap COM1", "line 1: the line does not begin with seconds"},
        {"0 odd nothing 3", "line 1: expected: odd nan|infinity|half|foreign|stranger|noise|empty|long SECONDS"},
        {"0 tune COM1 volume 50", "line 1: expected: tune COM1|COM2 active|standby MHZ"},
    };
    for (const auto& row : rows) {
        std::vector<TimedAction> script;
        std::string error;
        EXPECT_FALSE(parseScript(row.text, script, error)) << row.text;
        EXPECT_EQ(error, row.error);
    }
}
