#include "worker/command_handler.h"
#include <gtest/gtest.h>
#include "tests/unit/worker/worker_fakes.h"

namespace {

struct CommandHandling : testing::Test {
    ManualClock clock;
    MemoryLogFile logFile;
    WorkerLog log{logFile, clock};
    ManualLink link;
    CommandHandler handler{link, log};

    void send(std::size_t radio, RadioSlot slot, double value, std::uint64_t nowMs = 1000) {
        handler.accept({"1-2", {radio, slot, value}, 0.0}, nowMs);
    }
};

}  // namespace

TEST_F(CommandHandling, AcknowledgesOnlyOnceTheValueIsReadBack) {
    send(0, kSlotStandby, 118005);
    EXPECT_TRUE(handler.isPending());
    EXPECT_EQ(handler.ack(), CommandAck{});
    handler.pass(1100);
    EXPECT_TRUE(handler.isPending());
    link.sim.radios[0].standby = 118005;
    handler.pass(1145);
    EXPECT_FALSE(handler.isPending());
    EXPECT_EQ(handler.ack(), (CommandAck{"1-2", true, "COM1 STBY 118.005"}));
    EXPECT_TRUE(logFile.has("command 1-2 (COM1 STBY 118.005) done after 145 ms: COM1 STBY 118.005"));
}

TEST_F(CommandHandling, NamesWhatWasWrittenInPlainEnglish) {
    const struct {
        std::size_t radio;
        RadioSlot slot;
        double value;
        RadioReading after;
        const char* message;
    } rows[] = {
        {0, kSlotActive, 118105, {118105, 121500, 1, 0.5, {}}, "COM1 ACTIVE 118.105"},
        {1, kSlotStandby, 121975, {122800, 121975, 1, 0.5, {}}, "COM2 STBY 121.975"},
        {1, kSlotVolume, 0.6, {122800, 121500, 1, 0.598, {}}, "COM2 volume 60 %"},
        {1, kSlotVolume, 0.0, {122800, 121500, 1, 0.0, {}}, "COM2 volume 0 %"},
        {0, kSlotSwap, 0.0, {121500, 122800, 1, 0.5, {}}, "COM1 swapped to 121.500"},
    };
    for (const auto& row : rows) {
        link = ManualLink();
        send(row.radio, row.slot, row.value);
        handler.pass(1000);
        EXPECT_TRUE(handler.isPending()) << row.message;
        link.sim.radios[row.radio] = row.after;
        handler.pass(1001);
        EXPECT_EQ(handler.ack(), (CommandAck{"1-2", true, row.message}));
        ASSERT_EQ(link.writes.size(), 1u);
        EXPECT_EQ(link.writes[0].radio, row.radio);
        EXPECT_EQ(link.writes[0].slot, row.slot);
        EXPECT_DOUBLE_EQ(link.writes[0].value, row.value);
    }
}

TEST_F(CommandHandling, TheOtherRadioOrSlotIsNoReadBack) {
    send(0, kSlotStandby, 118005);
    link.sim.radios[1].standby = 118005;
    link.sim.radios[0].active = 118005;
    handler.pass(1100);
    EXPECT_TRUE(handler.isPending());
}

TEST_F(CommandHandling, AVolumeHalfAPercentOffIsNotReadBackYet) {
    send(0, kSlotVolume, 0.6);
    link.sim.radios[0].volume = 0.594;
    handler.pass(1100);
    EXPECT_TRUE(handler.isPending());
}

TEST_F(CommandHandling, GivesUpOnTheReadBackAfterItsLimit) {
    send(1, kSlotVolume, 0.6);
    for (std::uint64_t ms = 0; ms < kReadbackLimitMs; ms += 100) handler.pass(1000 + ms);
    handler.pass(1000 + kReadbackLimitMs - 1);
    EXPECT_TRUE(handler.isPending());
    handler.pass(1000 + kReadbackLimitMs);
    EXPECT_EQ(handler.ack(), (CommandAck{"1-2", false, "COM2 volume refused"}));
    EXPECT_TRUE(logFile.has("failed after 1500 ms: COM2 volume refused"));
}

namespace {

// Says when the simulator was last heard of.
struct StutteringLink : ManualLink {
    std::uint64_t unheardMs(std::uint64_t nowMs) const override { return nowMs - heardMs; }
    std::uint64_t heardMs = 0;
};

}  // namespace

TEST_F(CommandHandling, CountsOnlyTheTimeInWhichTheSimulatorIsHeardOf) {
    for (const std::uint64_t beforeMs : {0, 500, 1400}) {  // the stutter begins so long after the write
        StutteringLink stuttering;
        CommandHandler held(stuttering, log);
        std::uint64_t nowMs = 10'000;
        const auto live = [&](std::uint64_t ms) {
            for (const auto end = nowMs + ms; nowMs < end; held.pass(nowMs)) stuttering.heardMs = nowMs += 20;
        };
        stuttering.heardMs = nowMs;
        held.accept({"1-2", {0, kSlotStandby, 118005}, 0.0}, nowMs);
        live(beforeMs);
        for (int i = 0; i < 60; i++) held.pass(nowMs += 20);
        live(kReadbackLimitMs - beforeMs);
        EXPECT_TRUE(held.isPending()) << beforeMs;
        live(40);
        EXPECT_FALSE(held.isPending()) << beforeMs;
        EXPECT_FALSE(held.ack().ok);
    }
}

TEST_F(CommandHandling, CountsNoTimeInWhichTheWorkerItselfWasHeldUp) {
    send(0, kSlotStandby, 118005);
    handler.pass(1020);
    handler.pass(3500);
    EXPECT_TRUE(handler.isPending());
    link.sim.radios[0].standby = 118005;
    handler.pass(3520);
    EXPECT_TRUE(handler.ack().ok);
}

TEST_F(CommandHandling, AnswersWithinFourSecondsWhateverIsHeard) {
    StutteringLink stuttering;
    CommandHandler held(stuttering, log);
    stuttering.heardMs = 10'000;
    held.accept({"1-2", {0, kSlotStandby, 118005}, 0.0}, 10'000);
    held.pass(10'000 + kReadbackLastMs - 1);
    EXPECT_TRUE(held.isPending());
    held.pass(10'000 + kReadbackLastMs);
    EXPECT_EQ(held.ack(), (CommandAck{"1-2", false, "COM1 STBY refused"}));
}

TEST_F(CommandHandling, RefusesAnUnwritableSlotAtOnce) {
    const struct {
        RadioSlot slot;
        const char* message;
    } rows[] = {
        {kSlotActive, "COM1 ACTIVE refused"},
        {kSlotStandby, "COM1 STBY refused"},
        {kSlotVolume, "COM1 volume refused"},
        {kSlotSwap, "COM1 swap refused"},
    };
    for (const auto& row : rows) {
        link = ManualLink();
        link.sim.radios[0].writable[row.slot] = false;
        send(0, row.slot, row.slot == kSlotVolume ? 0.5 : 118005);
        EXPECT_EQ(handler.ack(), (CommandAck{"1-2", false, row.message}));
        EXPECT_TRUE(link.writes.empty());
    }
}

TEST_F(CommandHandling, AWriteTheLinkDoesNotTakeIsNotAccepted) {
    link.takesWrites = false;
    send(0, kSlotSwap, 0.0);
    EXPECT_EQ(handler.ack(), (CommandAck{"1-2", false, "COM1 swap refused"}));
}

TEST_F(CommandHandling, SaysThatTheLinkIsLostBeforeAndDuringTheWrite) {
    link.sim.ok = false;
    link.sim.status = "simulator link lost";
    send(0, kSlotStandby, 118005);
    EXPECT_EQ(handler.ack(), (CommandAck{"1-2", false, "COM1 STBY not written: link down"}));
    EXPECT_TRUE(link.writes.empty());

    link.sim.ok = true;
    send(1, kSlotSwap, 0.0);
    ASSERT_TRUE(handler.isPending());
    link.sim.ok = false;
    handler.pass(1025);
    EXPECT_EQ(handler.ack(), (CommandAck{"1-2", false, "COM2 swap not written: link down"}));
}

TEST_F(CommandHandling, RefusesValuesNoRadioCouldShow) {
    link.sim.radios[1].spacing = 0;
    const struct {
        std::size_t radio;
        RadioSlot slot;
        double value;
        const char* message;
    } rows[] = {
        {0, kSlotStandby, 118020, "COM1 STBY 118.020 is not a channel"},
        {1, kSlotStandby, 118005, "COM2 STBY 118.005 is not a channel"},
        {0, kSlotActive, 117995, "COM1 ACTIVE 117.995 is not a channel"},
        {0, kSlotActive, 136995, "COM1 ACTIVE 136.995 is not a channel"},
        {0, kSlotActive, 118000.5, "COM1 ACTIVE 118.001 is not a channel"},
        {0, kSlotActive, 0, "COM1 ACTIVE 0.000 is not a channel"},
        {0, kSlotActive, 1e300, "COM1 ACTIVE 1e+297 is not a channel"},
        {0, kSlotVolume, 1.5, "COM1 volume 150 % is out of range"},
        {0, kSlotVolume, -0.1, "COM1 volume -10 % is out of range"},
        {0, kSlotVolume, 1e300, "COM1 volume 1e+302 % is out of range"},
    };
    for (const auto& row : rows) {
        send(row.radio, row.slot, row.value);
        EXPECT_EQ(handler.ack(), (CommandAck{"1-2", false, row.message}));
    }
    EXPECT_TRUE(link.writes.empty());
}

TEST_F(CommandHandling, ARadioOfUnknownGridTakesNoFrequency) {
    link.sim.radios[0].spacing = -1;
    for (const double khz : {118000.0, 121800.0}) {  // the second is whole megahertz from where it stands
        send(0, kSlotActive, khz);
        EXPECT_EQ(handler.ack().message, "COM1 ACTIVE " + mhzText(khz) + " is not a channel");
    }
}

// An aircraft may let its pilot tune past the grid that it reports. The large knob then keeps the kilohertz.
TEST_F(CommandHandling, ASlotOffTheGridIsTunedByWholeMegahertz) {
    const struct {
        std::int32_t spacing, stands;
        double value;
        bool isTried;
    } rows[] = {
        {0, 118010, 119010, true},   // 25 kHz grid
        {0, 118010, 136010, true},   // several turns in one
        {1, 122820, 121820, true},   // 8.33 kHz grid
        {0, 118010, 119000, true},   // a channel like any other
        {0, 118010, 119005, false},  // nor any other kilohertz off it
        {0, 118010, 117010, false},  // out of range
        {0, 136010, 137010, false}, {0, 118000, 119010, false}, {0, 0, 119010, false}, {0, 118010, 119010.5, false},
    };
    for (const auto& row : rows) {
        for (const RadioSlot slot : {kSlotActive, kSlotStandby}) {
            CommandHandler fresh(link, log);
            link.writes.clear();
            link.sim.radios[1].spacing = row.spacing;
            link.sim.radios[1].active = slot == kSlotActive ? row.stands : 118000;
            link.sim.radios[1].standby = slot == kSlotStandby ? row.stands : 118000;
            fresh.accept({"1-2", {1, slot, row.value}, 0.0}, 1000);
            EXPECT_EQ(link.writes.size(), row.isTried ? 1u : 0u) << row.stands << ' ' << row.value;
            EXPECT_EQ(fresh.isPending(), row.isTried) << row.stands << ' ' << row.value;
        }
    }
}

TEST_F(CommandHandling, AValueThatStandsAlreadyIsDoneOnTheNextPass) {
    send(0, kSlotActive, 122800);
    EXPECT_TRUE(handler.isPending());
    handler.pass(1025);
    EXPECT_TRUE(handler.ack().ok);
}
