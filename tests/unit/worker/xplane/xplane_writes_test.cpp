// xplane_writes_test.cpp - what the link sends, what it makes of the read-back, and what it learns of an aircraft.
#include <cmath>
#include <deque>
#include "tests/unit/worker/xplane/xplane_rig.h"

namespace {

const std::string kActuators = "sim/cockpit2/radios/actuators/";

}  // namespace

TEST_F(XPlaneRadios, WriteByTheRightNames) {
    fly();
    const struct {
        std::size_t radio;
        RadioSlot slot;
        double value;
        std::string said;
    } rows[] = {
        {0, kSlotActive, 118005, kActuators + "com1_frequency_hz_833 118005.000000"},
        {0, kSlotStandby, 136990, kActuators + "com1_standby_frequency_hz_833 136990.000000"},
        {0, kSlotVolume, 0.5, kActuators + "audio_volume_com1 0.500000"},
        {0, kSlotSwap, 0, "sim/radios/com1_standy_flip"},
        {1, kSlotActive, 128855, kActuators + "com2_frequency_hz_833 128855.000000"},
        {1, kSlotStandby, 121500, kActuators + "com2_standby_frequency_hz_833 121500.000000"},
        {1, kSlotVolume, 1.0, kActuators + "audio_volume_com2 1.000000"},
        {1, kSlotSwap, 0, "sim/radios/com2_standy_flip"},
    };
    for (const auto& row : rows) {
        ASSERT_TRUE(link->write({row.radio, row.slot, row.value}, nowMs)) << row.said;
        EXPECT_EQ(writes().back(), row.said);
    }
    EXPECT_EQ(writes().size(), std::size(rows));
}

TEST_F(XPlaneRadios, SendNothingThatIsNoChannelOrNoVolume) {
    EXPECT_FALSE(link->write({0, kSlotActive, 118005}, nowMs));  // no X-Plane
    fly();
    const RadioWrite rows[] = {{0, kSlotActive, 118020}, {0, kSlotStandby, 137000}, {1, kSlotActive, 136995},
                               {0, kSlotVolume, 1.01},   {0, kSlotVolume, -0.01},   {0, kSlotActive, NAN},
                               {0, kSlotVolume, NAN},    {0, kSlotActive, 1e300}};
    for (const auto& row : rows) EXPECT_FALSE(link->write(row, nowMs)) << row.value;
    EXPECT_TRUE(writes().empty());
    datagrams->refusesSends = true;
    EXPECT_FALSE(link->write({0, kSlotActive, 118005}, nowMs));
}

TEST_F(XPlaneRadios, AcknowledgeWhatXPlaneShows) {
    fly();
    command(0, kSlotStandby, 118005);
    cruise(400);
    EXPECT_TRUE(handler.isPending());
    EXPECT_EQ(shown().radios[0].standby, 121500);  // not before X-Plane says so
    set("com1_standby_frequency_hz_833", 118005.0f);
    EXPECT_EQ(handler.ack(), (CommandAck{"1-1", true, "COM1 STBY 118.005"}));
    command(0, kSlotVolume, 0.637);
    set("audio_volume_com1", 0.64f);
    EXPECT_EQ(handler.ack(), (CommandAck{"1-2", true, "COM1 volume 64 %"}));
    command(0, kSlotSwap, 0);
    set("com1_frequency_hz_833", 118005.0f);
    EXPECT_TRUE(handler.isPending());
    set("com1_standby_frequency_hz_833", 122800.0f);
    EXPECT_EQ(handler.ack(), (CommandAck{"1-3", true, "COM1 swapped to 118.005"}));
}

TEST_F(XPlaneRadios, SayAValueAgainWhileNothingOfItIsToBeSeen) {
    fly();
    command(0, kSlotStandby, 118005);
    EXPECT_EQ(writes().size(), 1u);
    cruise(230);
    EXPECT_EQ(writes().size(), 1u);
    cruise(60);
    EXPECT_EQ(writes().size(), 2u);
    EXPECT_EQ(writes()[1], writes()[0]);
    cruise(300);
    EXPECT_EQ(writes().size(), 3u);
    set("com1_standby_frequency_hz_833", 118005.0f);
    EXPECT_TRUE(handler.ack().ok);
    cruise(2000);
    EXPECT_EQ(writes().size(), 3u);
    // Whoever turns the knob meanwhile is not fought.
    command(0, kSlotStandby, 118010);
    set("com1_standby_frequency_hz_833", 119000.0f);
    cruise(1000);
    EXPECT_EQ(writes().size(), 4u);
}

TEST_F(XPlaneRadios, SayASwapAgainOnceAndOnlyAfterASecondInWhichXPlaneSpeaks) {
    fly();
    command(0, kSlotSwap, 0);
    cruise(970);
    EXPECT_EQ(writes().size(), 1u);
    cruise(60);
    EXPECT_EQ(writes().size(), 2u);
    cruise(2000);
    EXPECT_EQ(writes().size(), 2u);
    EXPECT_EQ(handler.ack().message, "COM1 swap refused");

    command(1, kSlotSwap, 0);
    silence(1500);  // it may have the command and carry it out as soon as it goes on
    cruise(60);
    EXPECT_EQ(writes().size(), 3u);
    std::swap(cockpit("com2_frequency_hz_833"), cockpit("com2_standby_frequency_hz_833"));
    cruise(1500);
    EXPECT_EQ(writes().size(), 3u);
    EXPECT_EQ(handler.ack().message, "COM2 swapped to 119.105");
}

TEST_F(XPlaneRadios, SayNothingAgainInAPause) {
    fly();
    set("sim/time/paused", 1.0f);
    command(0, kSlotSwap, 0);
    cruise(kReadbackLimitMs + 40);
    EXPECT_EQ(writes().size(), 1u);
    EXPECT_EQ(handler.ack().message, "COM1 swap unchanged; simulator paused");
}

TEST_F(XPlaneRadios, ASlotIsUnwritableAfterTwoIgnoredWrites) {
    fly();
    EXPECT_EQ(ignoredCommand(0, kSlotStandby, 118005).message, "COM1 STBY refused");
    EXPECT_TRUE(shown().radios[0].writable[kSlotStandby]);
    EXPECT_EQ(ignoredCommand(0, kSlotStandby, 118005).message, "COM1 STBY refused; not tried again");
    EXPECT_EQ(shown().radios[0].writable, (std::array<bool, 4>{true, false, true, true}));
    EXPECT_TRUE(shown().radios[1].writable[kSlotStandby]);
    EXPECT_EQ(std::count(notes.begin(), notes.end(),
                         "COM1 STBY: the aircraft has ignored 2 writes; not writable until the aircraft changes"),
              1);
    const auto said = writes().size();
    EXPECT_FALSE(command(0, kSlotStandby, 118005).ok);
    EXPECT_EQ(writes().size(), said);
    silence(2900);
    cruise(100);
    EXPECT_FALSE(shown().radios[0].writable[kSlotStandby]);  // a stutter
    silence(3500);
    cruise(2000);  // it has loaded something, perhaps another aircraft
    EXPECT_TRUE(shown().radios[0].writable[kSlotStandby]);
}

TEST_F(XPlaneRadios, AnAircraftHasIgnoredNothingThatXPlaneCouldNotCarryOut) {
    fly();
    const auto expectBlameless = [&](const char* message) {
        EXPECT_EQ(handler.ack().message, std::string("COM1 swap ") + message);
        EXPECT_TRUE(shown().radios[0].writable[kSlotSwap]);
    };
    for (int i = 0; i < 3; i++) {
        command(0, kSlotSwap, 0);
        set("sim/time/paused", 1.0f);
        cruise(500);
        set("sim/time/paused", 0.0f);
        cruise(1200);
        expectBlameless("unchanged; simulator paused");
    }
    for (int i = 0; i < 3; i++) {
        command(0, kSlotSwap, 0);
        silence(1200);
        cruise(2000);
        expectBlameless("unchanged; simulator silent");
    }
    for (int i = 0; i < 2; i++) ignoredCommand(0, kSlotSwap, 0);
    EXPECT_FALSE(shown().radios[0].writable[kSlotSwap]);  // now it has
}

TEST_F(XPlaneRadios, AnAircraftThatRoundsIsNotOneThatIgnores) {
    fly();
    for (int i = 0; i < 3; i++) {
        set("com1_standby_frequency_hz_833", 121500.0f);
        command(0, kSlotStandby, 118005);
        cockpit("com1_standby_frequency_hz_833") = 118000.0f;
        cruise(kReadbackLimitMs + 40);
        EXPECT_EQ(handler.ack().message, "COM1 STBY refused; shows 118.000");
        EXPECT_TRUE(shown().radios[0].writable[kSlotStandby]);
    }
}

TEST_F(XPlaneRadios, ThatGoDuringAWriteFailItAndCountForNothing) {
    fly();
    command(0, kSlotStandby, 118005);
    silence(3100);
    EXPECT_EQ(handler.ack(), (CommandAck{"1-1", false, "COM1 STBY not written: link down"}));
    const auto said = writes().size();
    sim.restart();
    fly();
    cruise(1000);
    EXPECT_EQ(writes().size(), said);  // and it is not said to the next one
}

TEST_F(XPlaneRadios, TurnNoRadioOffByItsVolumeUntilItHasBeenSeenToStayOn) {
    fly();
    command(0, kSlotVolume, 0.0);
    EXPECT_EQ(writes().back(), kActuators + "audio_volume_com1 0.010000");
    set("audio_volume_com1", 0.01f);
    EXPECT_EQ(handler.ack(), (CommandAck{"1-1", true, "COM1 volume 1 %"}));
    set("audio_volume_com1", 0.0f);  // in the cockpit
    cruise(2200);
    set("audio_volume_com1", 0.5f);
    command(0, kSlotVolume, 0.0);
    EXPECT_EQ(writes().back(), kActuators + "audio_volume_com1 0.000000");
    set("audio_volume_com1", 0.0f);
    EXPECT_EQ(handler.ack(), (CommandAck{"1-2", true, "COM1 volume 0 %"}));
}

// One datagram in ten is lost, one doubled, one late: in both directions.
TEST_F(XPlaneRadios, AreRightOnABadNetwork) {
    fly();
    std::uint32_t dice = 4711;
    const auto oneInTen = [&] {
        dice = dice * 1664525U + 1013904223U;
        return (dice >> 16U) % 10 == 0;
    };
    std::size_t taken = datagrams->sent.size();
    std::deque<FakeDatagrams::Arrived> late;
    const auto goOn = [&](int passes) {
        for (int i = 0; i < passes; i++) {
            for (; taken < datagrams->sent.size(); taken++) {
                const auto& bytes = datagrams->sent[taken].second;
                if (oneInTen() || textOf(bytes, 0) != "DREF") continue;
                cockpit(textOf(bytes, 9)) = FakeXPlane::floatAt(bytes, 5);
            }
            if (i % 30 == 0 && !oneInTen()) sim.sayBeacon();
            sim.answer();
            auto answer = datagrams->answers.back();
            if (oneInTen()) datagrams->answers.pop_back();
            if (oneInTen()) datagrams->answers.push_back(answer);
            if (!late.empty()) {
                datagrams->answers.push_back(late.front());
                late.pop_front();
            }
            if (oneInTen()) late.push_back(answer);
            pass(33);
        }
    };
    int done = 0;
    for (std::size_t i = 0; i < 100; i++) {
        const double khz = 118000.0 + 1000.0 * static_cast<double>(i % 18) + (i % 2 == 0 ? 5.0 : 10.0);
        command(i % 2, kSlotStandby, khz);
        goOn(60);
        EXPECT_FALSE(handler.isPending());
        done += handler.ack().ok ? 1 : 0;
        EXPECT_TRUE(shown().ok) << shown().status;
    }
    EXPECT_EQ(done, 100);
}
