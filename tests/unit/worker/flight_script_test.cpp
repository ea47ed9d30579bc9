#include "worker/flight_script.h"
#include <gtest/gtest.h>
#include "exchange/frequency_grid.h"

namespace {

// Every action once.
const std::string kWhole =
    "\xEF\xBB\xBF# a flight\r\n"
    "0.5 tune COM1 active 118.005\r\n"
    "1 swap com2\n"
    "\n"
    "2\tvolume COM1 60  # percent\n"
    "3 power COM2 off\n"
    "4 spacing COM1 25\n"
    "5 unwritable COM1 standby\n"
    "6 writable COM1 standby\n"
    "7 ignore COM1 swap\n"
    "8 obey COM1 swap\n"
    "9 readback 200\n"
    "10 drop 3.5\n"
    "11 repeat";

}  // namespace

TEST(FlightScript, ReadsEveryAction) {
    const auto script = parseFlightScript(kWhole);
    EXPECT_TRUE(script.problems.empty()) << script.problems.front().line << script.problems.front().reason;
    const struct {
        std::uint64_t atMs;
        std::size_t line;
        ScriptAction action;
        std::size_t radio;
        RadioSlot slot;
        double value;
    } rows[] = {
        {500, 2, ScriptAction::kTune, 0, kSlotActive, 118005},
        {1000, 3, ScriptAction::kSwap, 1, kSlotActive, 0},
        {2000, 5, ScriptAction::kVolume, 0, kSlotActive, 0.6},
        {3000, 6, ScriptAction::kPower, 1, kSlotActive, 0},
        {4000, 7, ScriptAction::kSpacing, 0, kSlotActive, 0},
        {5000, 8, ScriptAction::kWritable, 0, kSlotStandby, 0},
        {6000, 9, ScriptAction::kWritable, 0, kSlotStandby, 1},
        {7000, 10, ScriptAction::kObey, 0, kSlotSwap, 0},
        {8000, 11, ScriptAction::kObey, 0, kSlotSwap, 1},
        {9000, 12, ScriptAction::kReadback, 0, kSlotActive, 200},
        {10000, 13, ScriptAction::kDrop, 0, kSlotActive, 3500},
        {11000, 14, ScriptAction::kRepeat, 0, kSlotActive, 0},
    };
    ASSERT_EQ(script.steps.size(), std::size(rows));
    for (std::size_t i = 0; i < std::size(rows); i++) {
        const auto& step = script.steps[i];
        EXPECT_EQ(step.atMs, rows[i].atMs) << i;
        EXPECT_EQ(step.line, rows[i].line) << i;
        EXPECT_EQ(step.action, rows[i].action) << i;
        EXPECT_EQ(step.radio, rows[i].radio) << i;
        EXPECT_EQ(step.slot, rows[i].slot) << i;
        EXPECT_DOUBLE_EQ(step.value, rows[i].value) << i;
    }
}

TEST(FlightScript, SkipsABadLineAndSaysWhichAndWhy) {
    const struct {
        const char* line;
        const char* reason;
    } rows[] = {
        {"tune COM1 active 122.800", "the line does not begin with seconds, 0 to 864000"},
        {"-1 swap COM1", "the line does not begin with seconds, 0 to 864000"},
        {"1e3 swap COM1", "the line does not begin with seconds, 0 to 864000"},
        {"1,5 swap COM1", "the line does not begin with seconds, 0 to 864000"},
        {"864001 swap COM1", "the line does not begin with seconds, 0 to 864000"},
        {"1.2.3 swap COM1", "the line does not begin with seconds, 0 to 864000"},
        {"1. swap COM1", "the line does not begin with seconds, 0 to 864000"},
        {"nan swap COM1", "the line does not begin with seconds, 0 to 864000"},
        {"1", "no such action"},
        {"1 land", "no such action"},
        {"1 swap", "expected: SECONDS swap COM1|COM2"},
        {"1 swap COM1 now", "expected: SECONDS swap COM1|COM2"},
        {"1 tune COM1 active 122.800 MHz", "expected: SECONDS tune COM1|COM2 active|standby MHZ"},
        {"1 swap COM3", "the radio is not COM1 or COM2"},
        {"1 tune COM1 volume 122.800", "tune needs active or standby"},
        {"1 tune COM1 active 117.990", "the frequency is not between 118.000 and 136.990 MHz"},
        {"1 tune COM1 active 122800", "the frequency is not between 118.000 and 136.990 MHz"},
        {"1 tune COM1 active 122,800", "the frequency is not between 118.000 and 136.990 MHz"},
        {"1 tune COM1 active 118.020", "the frequency is not a channel of a COM radio"},
        {"1 tune COM1 active 118.0001", "the frequency is not a channel of a COM radio"},
        {"1 tune COM1 active 137.0", "the frequency is not a channel of a COM radio"},
        {"1 volume COM1 101", "the volume is not between 0 and 100 percent"},
        {"1 volume COM1 60%", "the volume is not between 0 and 100 percent"},
        {"1 power COM1 maybe", "power needs on or off"},
        {"1 spacing COM1 12.5", "spacing needs 25 or 8.33"},
        {"1 writable COM1 squelch", "the slot is not active, standby, volume or swap"},
        {"1 ignore COM1 squelch", "the slot is not active, standby, volume or swap"},
        {"1 readback 10001", "readback needs 0 to 10000 milliseconds"},
        {"1 drop 0", "drop needs 0.001 to 3600 seconds"},
        {"0 repeat", "repeat needs a time of at least 0.1 seconds"},
    };
    for (const auto& row : rows) {
        const auto script = parseFlightScript("0 swap COM1\n" + std::string(row.line) + "\n9 swap COM2\n");
        EXPECT_EQ(script.steps.size(), 2u) << row.line;
        ASSERT_EQ(script.problems.size(), 1u) << row.line;
        EXPECT_EQ(script.problems[0].line, 2u) << row.line;
        EXPECT_EQ(script.problems[0].reason, row.reason) << row.line;
    }
}

TEST(FlightScript, SortsByTimeAndKeepsTheOrderOfEqualTimes) {
    const auto script = parseFlightScript("3 volume COM1 3\n1 volume COM1 1\n3 volume COM1 4\n2 volume COM1 2\n");
    ASSERT_EQ(script.steps.size(), 4u);
    const double percent[] = {1, 2, 3, 4};
    for (std::size_t i = 0; i < 4; i++) EXPECT_DOUBLE_EQ(script.steps[i].value * 100.0, percent[i]);
}

TEST(FlightScript, NothingComesAfterTheFirstEndOrRepeat) {
    for (const std::string last : {"end", "repeat"}) {
        const auto script = parseFlightScript("3 swap COM1\n2 " + last + "\n1 swap COM2\n4 repeat\n");
        ASSERT_EQ(script.steps.size(), 2u) << last;
        EXPECT_EQ(script.steps[0].line, 3u) << last;
        EXPECT_EQ(script.steps[1].line, 2u) << last;
    }
}

TEST(FlightScript, RefusesTheHugeAndTheBinaryAsAWhole) {
    const auto huge = parseFlightScript("1 swap COM1\n" + std::string(kMaxScriptBytes, '#'));
    EXPECT_TRUE(huge.steps.empty());
    ASSERT_EQ(huge.problems.size(), 1u);
    EXPECT_EQ(huge.problems[0].reason, "the script is larger than 1 MB");
    const auto binary = parseFlightScript(std::string("1 swap COM1\n\0\x01", 14));
    EXPECT_TRUE(binary.steps.empty());
    ASSERT_EQ(binary.problems.size(), 1u);
    EXPECT_EQ(binary.problems[0].reason, "this is not a text file");
}

TEST(FlightScript, LimitsActionsLineLengthAndReportedProblems) {
    std::string many;
    for (std::size_t i = 0; i < kMaxScriptSteps + 30; i++) many += "1 swap COM1\n";
    const auto script = parseFlightScript(many);
    EXPECT_EQ(script.steps.size(), kMaxScriptSteps);
    EXPECT_EQ(script.problems.size(), kMaxScriptProblems);
    EXPECT_EQ(script.moreProblems, 10u);
    const auto longLine = parseFlightScript("1 swap COM1" + std::string(300, ' ') + "\n2 swap COM1\n");
    EXPECT_EQ(longLine.steps.size(), 1u);
    ASSERT_EQ(longLine.problems.size(), 1u);
    EXPECT_EQ(longLine.problems[0].reason, "the line is too long");
}

TEST(FlightScript, EveryTruncationKeepsTheLinesBefore) {
    for (std::size_t length = 0; length <= kWhole.size(); length++) {
        const auto script = parseFlightScript(kWhole.substr(0, length));
        EXPECT_LE(script.problems.size(), 1u) << length;
        EXPECT_LE(script.steps.size(), 12u) << length;
    }
}

TEST(FlightScript, ADamagedByteCostsTheLinesItTouchesAndNoOther) {
    const auto lastLine = kWhole.rfind('\n');  // an earlier repeat would end the script
    for (std::size_t at = 0; at < lastLine; at++) {
        for (const char damage : {'\n', ' ', '#', 'x', '.', '\x01', '\xff'}) {
            auto text = kWhole;
            text[at] = damage;
            const auto script = parseFlightScript(text);
            EXPECT_GE(script.steps.size(), 10u) << at;  // a line break lost joins two lines
            for (const auto& step : script.steps) EXPECT_LE(step.atMs, 864'000'000u) << at;
        }
    }
}
