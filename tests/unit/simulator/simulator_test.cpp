// simulator_test.cpp - the stand-in simulator as a client sees it: radios, requests, events and system states.
#include "tests/unit/simulator/simulator_test.h"
#include <functional>

using namespace standin;

TEST_F(SimulatorTest, OpensVersionsUpToItsOwnAndRefusesNewerOnes) {
    const struct {
        const char* personality;
        std::uint32_t version;
        bool opens;
    } rows[] = {{"stock", 4, true},
                {"stock", 5, true},
                {"stock", 6, false},
                {"stock_2024", 5, true},
                {"stock_2024", 6, true},
                {"stock_2024", 7, false},
                {"refuses_version_5", 5, false},
                {"refuses_version_5", 6, true}};
    for (const auto& row : rows) {
        begin(row.personality, row.version);
        EXPECT_EQ(visitor->count(kOpenId), row.opens ? 1u : 0u) << row.personality << ' ' << row.version;
        EXPECT_EQ(visitor->exceptionFor(1), row.opens ? 0u : 5u) << row.personality << ' ' << row.version;
    }
}

TEST_F(SimulatorTest, RefusesEverythingBeforeOpen) {
    simulator = std::make_unique<Simulator>(*findPersonality("stock"), nowMs);
    visitor = std::make_unique<Visitor>(*simulator, nowMs);
    EXPECT_EQ(visitor->exceptionFor(visitor->mapEvent(1, "COM1_RADIO_SWAP")), 4u);
}

TEST_F(SimulatorTest, RefusesWhatItCannotDoByTheNumber) {
    begin("stock");
    visitor->define(1, "COM VOLUME:1", "Percent");
    visitor->mapEvent(1, "COM1_VOLUME_SET");
    visitor->subscribe(1, "1sec");
    std::string twoIds, data, longer;
    for (const auto field : {1U, 1U}) putU32(twoIds, field);
    for (const auto field : {1U, 0U, 0U, 1U, 8U, 0U, 0U}) putU32(data, field);
    longer = data + "more";
    const auto expect = [&](std::uint32_t sendId, std::uint32_t code, const char* what) {
        EXPECT_EQ(visitor->exceptionFor(sendId), code) << what;
        visitor->forget();
    };
    expect(visitor->send(0x99, ""), 3, "unknown opcode");
    expect(visitor->send(0x0D, twoIds), 2, "wrong size");
    expect(visitor->define(2, "COM CHARM:1", "Percent"), 7, "unknown variable");
    expect(visitor->define(2, "COM VOLUME:4", "Percent"), 7, "unknown radio");
    expect(visitor->define(2, "COM VOLUME:1", "Furlong"), 7, "unknown units");
    expect(visitor->define(2, "COM VOLUME:1", "Percent", 0), 18, "no type");
    expect(visitor->define(2, "TITLE", "", 4), 18, "a text as a number");
    expect(visitor->request({1, 2, 0, kOnce, 0, 0, 0, 0}), 3, "undefined");
    expect(visitor->request({1, 1, 0, 5, 0, 0, 0, 0}), 27, "no period");
    expect(visitor->request({1, 1, 77, kOnce, 0, 0, 0, 0}), 3, "no such object");
    expect(visitor->mapEvent(2, "COM1_RADIO_SET_HZ"), 7, "no such event: COM1's has no 1");
    expect(visitor->mapEvent(1, "COM1_RADIO_SWAP"), 9, "id in use");
    expect(visitor->transmit(2, 0), 3, "unmapped event");
    expect(visitor->subscribe(2, "Sim2"), 7, "no such system event");
    expect(visitor->subscribe(1, "Sim"), 26, "id in use");
    expect(visitor->send(0x10, data), 20, "not settable");
    expect(visitor->send(0x10, longer), 19, "size and count disagree");
}

TEST_F(SimulatorTest, ServesTheRadiosInTheUnitsAskedFor) {
    begin("stock");
    act("tune COM1 active 128.855");
    act("volume COM1 35");
    EXPECT_NEAR(read("COM ACTIVE FREQUENCY:1", "MHz"), 128.855, 1e-9);
    EXPECT_EQ(read("com active frequency:1", "hz"), 128'855'000.0);
    EXPECT_EQ(read("COM ACTIVE FREQUENCY:1", "Frequency BCD16"), 0x2885);
    EXPECT_EQ(read("COM STANDBY FREQUENCY:1", "kHz"), 121'500.0);
    EXPECT_EQ(read("COM VOLUME:1", "Percent"), 35.0);
    EXPECT_EQ(read("COM VOLUME:1", "Percent over 100"), 0.35);
    EXPECT_EQ(read("COM SPACING MODE:1", "Enum"), 1.0);
    EXPECT_EQ(read("COM SPACING MODE:2", "Enum"), 0.0);
    EXPECT_EQ(read("COM AVAILABLE:2", "Bool"), 1.0);
    EXPECT_EQ(read("COM AVAILABLE:3", "Bool"), 0.0);
    EXPECT_EQ(read("COM STATUS:3", "Enum"), 1.0);
    EXPECT_EQ(read("COM TRANSMIT:1", "Bool"), 1.0);
}

TEST_F(SimulatorTest, GivesEachTypeItsWidthInTheOrderDefined) {
    begin("stock");
    visitor->define(1, "COM ACTIVE FREQUENCY:1", "Hz", kInt32);
    visitor->define(1, "COM NONSENSE:1", "Hz", kInt32);  // is left out
    visitor->define(1, "COM ACTIVE FREQUENCY:2", "Hz", kInt64);
    visitor->define(1, "COM VOLUME:1", "Percent", kFloat32);
    visitor->define(1, "TITLE", "", kString32);
    visitor->request({1, 1, 0, kOnce, 0, 0, 0, 0});
    visitor->fly(70);
    const auto answers = visitor->packets(kDataId);
    ASSERT_EQ(answers.size(), 1u);
    ASSERT_EQ(answers[0].packet.size(), 40u + 4 + 8 + 4 + 32);
    EXPECT_EQ(answers[0].u32(36), 4u);
    EXPECT_EQ(answers[0].u32(40), 122'800'000u);
    EXPECT_EQ(answers[0].u32(44), 121'500'000u);
    EXPECT_EQ(f32At(answers[0].packet, 52), 100.0f);
    EXPECT_EQ(textAt(answers[0].packet, 56, 32), "Stand-in twin");
}

TEST_F(SimulatorTest, TakesWritesFromEitherEventAndShowsThemAtTheNextFrame) {
    begin("stock");
    write("COM_STBY_RADIO_SET_HZ", 121'800'000);
    EXPECT_EQ(read("COM STANDBY FREQUENCY:1", "Hz"), 121'800'000.0);
    write("COM1_RADIO_SWAP", 0);
    EXPECT_EQ(read("COM ACTIVE FREQUENCY:1", "Hz"), 121'800'000.0);
    EXPECT_EQ(read("COM STANDBY FREQUENCY:1", "Hz"), 122'800'000.0);
    write("COM2_RADIO_SET_HZ", 118'300'000);
    EXPECT_EQ(read("COM ACTIVE FREQUENCY:2", "Hz"), 118'300'000.0);
    write("COM1_VOLUME_SET", 40);
    EXPECT_EQ(read("COM VOLUME:1", "Percent"), 40.0);
    write("COM2_STBY_RADIO_SET", 0x2797);
    EXPECT_EQ(read("COM STANDBY FREQUENCY:2", "Hz"), 127'970'000.0);
    write("COM_1_SPACING_MODE_SWITCH", 0);
    EXPECT_EQ(read("COM SPACING MODE:1", "Enum"), 0.0);
    write("COM_RADIO_SET_HZ", 137'000'000);  // beyond the band
    EXPECT_EQ(read("COM ACTIVE FREQUENCY:1", "Hz"), 121'800'000.0);
    std::string body;
    for (const auto field : {0U, 1U, 1U, 0x10U, 119'100'000U, 0U, 0U, 0U, 0U}) putU32(body, field);
    visitor->mapEvent(1, "COM_RADIO_SET_HZ");
    visitor->send(0x44, body);
    EXPECT_EQ(read("COM ACTIVE FREQUENCY:1", "Hz"), 119'100'000.0);
}

// Each event on a fresh aircraft with a COM3; nothing else may change.
TEST(SimulatorKeyEvents, EachWorksItsOwnRadioAndNothingElse) {
    const auto hz = [](std::uint32_t Radio::*field, std::uint32_t value) {
        return [=](Radio& radio) { radio.*field = value; };
    };
    const auto volume = [](double percent) { return [=](Radio& radio) { radio.volumePercent = percent; }; };
    const auto swapped = [](Radio& radio) { std::swap(radio.activeHz, radio.standbyHz); };
    const struct {
        const char* event;
        std::uint32_t data;
        std::size_t radio;
        std::function<void(Radio&)> change;
    } rows[] = {
        {"COM_RADIO_SET_HZ", 119'000'000, 0, hz(&Radio::activeHz, 119'000'000)},
        {"COM2_RADIO_SET_HZ", 119'000'000, 1, hz(&Radio::activeHz, 119'000'000)},
        {"COM3_RADIO_SET_HZ", 119'000'000, 2, hz(&Radio::activeHz, 119'000'000)},
        {"COM_STBY_RADIO_SET_HZ", 119'000'000, 0, hz(&Radio::standbyHz, 119'000'000)},
        {"COM2_STBY_RADIO_SET_HZ", 119'000'000, 1, hz(&Radio::standbyHz, 119'000'000)},
        {"COM3_STBY_RADIO_SET_HZ", 119'000'000, 2, hz(&Radio::standbyHz, 119'000'000)},
        {"COM_RADIO_SET", 0x1900, 0, hz(&Radio::activeHz, 119'000'000)},
        {"COM2_RADIO_SET", 0x1900, 1, hz(&Radio::activeHz, 119'000'000)},
        {"COM_STBY_RADIO_SET", 0x1900, 0, hz(&Radio::standbyHz, 119'000'000)},
        {"COM2_STBY_RADIO_SET", 0x1900, 1, hz(&Radio::standbyHz, 119'000'000)},
        {"COM1_RADIO_SWAP", 0, 0, swapped},
        {"COM_RADIO_SWAP", 0, 0, swapped},
        {"COM_STBY_RADIO_SWAP", 0, 0, swapped},
        {"COM2_RADIO_SWAP", 0, 1, swapped},
        {"COM3_RADIO_SWAP", 0, 2, swapped},
        {"COM1_VOLUME_SET", 30, 0, volume(30)},
        {"COM2_VOLUME_SET", 300, 1, volume(100)},
        {"COM3_VOLUME_SET", 0, 2, volume(0)},
        {"COM1_VOLUME_INC", 0, 0, volume(52)},
        {"COM2_VOLUME_DEC", 0, 1, volume(48)},
        {"COM1_RECEIVE_SELECT", 0, 0, [](Radio& radio) { radio.isReceiving = false; }},
        {"COM_1_SPACING_MODE_SWITCH", 0, 0, [](Radio& radio) { radio.is833 = !radio.is833; }},
        {"COM_2_SPACING_MODE_SWITCH", 0, 1, [](Radio& radio) { radio.is833 = !radio.is833; }},
    };
    Aircraft fresh;
    ASSERT_TRUE(makeAircraft("twin", fresh));
    fresh.radios[2].isFitted = true;
    for (auto& radio : fresh.radios) radio.volumePercent = 50;
    for (const auto& row : rows) {
        Aircraft aircraft = fresh;
        Aircraft expected = fresh;
        row.change(expected.radios[row.radio]);
        const KeyEvent* event = findKeyEvent(row.event);
        ASSERT_NE(event, nullptr) << row.event;
        event->apply(aircraft, Habits{}, event->radio, row.data);
        EXPECT_TRUE(aircraft.radios == expected.radios) << row.event;
    }
}

TEST_F(SimulatorTest, SendsEveryPeriodAsAsked) {
    begin("stock");
    visitor->define(1, "SIMULATION TIME", "Seconds");
    const struct {
        DataRequest request;
        std::size_t answers;  // within two seconds: 60 frames
    } rows[] = {
        {{1, 1, 0, kOnce, 0, 0, 0, 0}, 1},        {{1, 1, 0, kVisualFrame, 0, 0, 0, 0}, 60},
        {{1, 1, 0, kSimFrame, 0, 0, 9, 0}, 6},    {{1, 1, 0, kVisualFrame, 0, 30, 0, 0}, 30},
        {{1, 1, 0, kVisualFrame, 0, 0, 0, 7}, 7}, {{1, 1, 0, kSecond, 0, 0, 0, 0}, 2},
        {{1, 1, 0, kSecond, 0, 1, 0, 0}, 1},      {{1, 1, 0, kNever, 0, 0, 0, 0}, 0},
    };
    for (const auto& row : rows) {
        visitor->request(row.request);
        visitor->forget();
        visitor->fly(2000);
        EXPECT_EQ(visitor->count(kDataId), row.answers)
            << "period " << row.request.period << " interval " << row.request.interval;
    }
}

TEST_F(SimulatorTest, SendsChangesBeyondEpsilonOnly) {
    begin("stock");
    visitor->define(1, "COM VOLUME:1", "Percent", kFloat64, 5.0f);
    visitor->define(1, "COM ACTIVE FREQUENCY:1", "Hz");
    visitor->request({1, 1, 0, kVisualFrame, 1, 0, 0, 0});
    visitor->fly(500);
    EXPECT_EQ(visitor->count(kDataId), 1u);
    act("volume COM1 96");
    visitor->fly(500);
    EXPECT_EQ(visitor->count(kDataId), 1u);
    act("volume COM1 94");
    visitor->fly(500);
    ASSERT_EQ(visitor->count(kDataId), 2u);
    EXPECT_EQ(visitor->packets(kDataId)[1].f64(40), 94.0);
    EXPECT_EQ(visitor->packets(kDataId)[1].f64(48), 122'800'000.0);  // the whole definition
}

TEST_F(SimulatorTest, TagsWhatHasChangedWithItsDatumId) {
    begin("stock");
    visitor->define(1, "COM VOLUME:1", "Percent", kFloat64, 0.0f, 11);
    visitor->define(1, "COM ACTIVE FREQUENCY:1", "Hz", kFloat64, 0.0f, 12);
    visitor->request({1, 1, 0, kVisualFrame, 1 | 2, 0, 0, 0});
    visitor->fly(100);
    ASSERT_EQ(visitor->count(kDataId), 1u);
    EXPECT_EQ(visitor->packets(kDataId)[0].u32(36), 2u);
    act("tune COM1 active 118.100");
    visitor->fly(100);
    ASSERT_EQ(visitor->count(kDataId), 2u);
    const auto second = visitor->packets(kDataId)[1];
    EXPECT_EQ(second.u32(36), 1u);
    EXPECT_EQ(second.u32(40), 12u);
    EXPECT_EQ(second.f64(44), 118'100'000.0);
}

TEST_F(SimulatorTest, StopsSimulatedFramesButNotVisualOnesInAPause) {
    begin("stock");
    visitor->define(1, "SIMULATION TIME", "Seconds");
    visitor->subscribe(5, "Pause");
    visitor->request({1, 1, 0, kSimFrame, 0, 0, 0, 0});
    visitor->request({2, 1, 0, kVisualFrame, 0, 0, 0, 0});
    act("pause on");
    visitor->forget();
    visitor->fly(1000);
    EXPECT_EQ(visitor->count(kDataId), 30u);
    EXPECT_EQ(visitor->packets(kEventId).at(0).u32(20), 1u);
}

TEST_F(SimulatorTest, TellsSystemEventsAndStates) {
    begin("stock");
    visitor->subscribe(1, "Sim");
    visitor->subscribe(2, "1sec");
    visitor->subscribe(3, "AircraftLoaded");
    visitor->subscribe(4, "6Hz");
    std::string off;
    for (const auto field : {4U, 0U}) putU32(off, field);
    visitor->send(0x06, off);
    ASSERT_EQ(visitor->count(kEventId), 1u);  // Sim at once
    EXPECT_EQ(visitor->packets(kEventId)[0].u32(16), 1u);
    EXPECT_EQ(visitor->packets(kEventId)[0].u32(20), 1u);
    visitor->forget();
    visitor->fly(3000);
    EXPECT_EQ(visitor->count(kEventId), 3u);
    act("aircraft glider");
    visitor->fly(100);
    ASSERT_EQ(visitor->count(kFileId), 1u);
    EXPECT_EQ(textAt(visitor->packets(kFileId)[0].packet, 24, 260), simulator->aircraft().file);
    std::string state;
    putU32(state, 9);
    putText(state, "Sim", 256);
    visitor->send(0x35, state);
    ASSERT_EQ(visitor->count(kStateId), 1u);
    EXPECT_EQ(visitor->packets(kStateId)[0].u32(12), 9u);
    EXPECT_EQ(visitor->packets(kStateId)[0].u32(16), 1u);
}

TEST_F(SimulatorTest, TellsNotificationGroupsWhatOthersPress) {
    begin("stock");
    visitor->mapEvent(7, "COM1_RADIO_SWAP");
    std::string member;
    for (const auto field : {5U, 7U, 0U}) putU32(member, field);
    visitor->send(0x07, member);
    act("event COM1_RADIO_SWAP 0");
    visitor->fly(50);
    ASSERT_EQ(visitor->count(kEventId), 1u);
    EXPECT_EQ(visitor->packets(kEventId)[0].u32(12), 5u);
    EXPECT_EQ(visitor->packets(kEventId)[0].u32(16), 7u);
}

TEST_F(SimulatorTest, ReportsWhatItsClientsDo) {
    begin("stock");
    write("COM_STBY_RADIO_SET_HZ", 121'800'000);
    visitor->define(1, "COM CHARM:1", "Percent");
    std::vector<std::string> texts;
    for (const auto& report : simulator->takeReports()) texts.push_back(report.text);
    EXPECT_EQ(texts, (std::vector<std::string>{"client 1 connected", "client 1 opened \"Visitor\" version 5",
                                               "client 1 event COM_STBY_RADIO_SET_HZ 121800000",
                                               "client 1 refused packet 4 with exception 7: COM CHARM:1 in Percent"}));
}

TEST_F(SimulatorTest, TakesRequestsCutAndJoinedAndDropsBrokenFraming) {
    begin("stock");
    std::string map;
    putU32(map, 276);
    putU32(map, 5);
    putU32(map, 0xF0000004U);
    putU32(map, 2);
    putU32(map, 1);
    putText(map, "COM1_RADIO_SWAP", 256);
    for (const char byte : map) visitor->sendBytes({&byte, 1});
    visitor->sendBytes(map + map);  // the same id two more times
    EXPECT_EQ(visitor->count(kExceptionId), 2u);
    EXPECT_FALSE(visitor->isClosed);
    visitor->sendBytes(bytesOfHex("0f 00 00 00"));
    EXPECT_TRUE(visitor->isClosed);
}

TEST(SimulatorScript, PlaysInTimesOrderAndRefusesWhatItDoesNotUnderstand) {
    std::vector<TimedAction> script;
    std::string error;
    ASSERT_TRUE(parseScript("# a flight\n2.5 swap com1\r\n\n0 tune COM2 standby 118.105 # early\n", script, error));
    ASSERT_EQ(script.size(), 2u);
    EXPECT_EQ(script[0].action.kind, ActionKind::kTune);
    EXPECT_EQ(script[0].action.radio, 1u);
    EXPECT_EQ(script[0].action.value, 118'105'000.0);
    EXPECT_EQ(script[1].atMs, 2500u);
    for (const char* line : {"swap COM1", "1 swap", "1 swap COM4", "1 tune COM1 volume 118", "1 tune COM1 active high",
                             "1 power COM1 maybe", "x", "1 fly", "1 exit now", "-1 exit"}) {
        EXPECT_FALSE(parseScript(line, script, error)) << line;
        EXPECT_FALSE(error.empty()) << line;
    }
}
