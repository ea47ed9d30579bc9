#include "exchange/command_text.h"
#include <gtest/gtest.h>
#include "exchange/telemetry_text.h"
#include "tests/unit/worker/worker_fakes.h"

namespace {

const std::string kGood = commandText("4242-91234567", 2, "standby", "118005", 1790000000.125);

}  // namespace

TEST(CommandText, IsOneLineWithoutBlanksInItsOrder) {
    EXPECT_EQ(writeCommandText({"4242-91234567", {0, kSlotStandby, 122800.0}, 1790000000.125}),
              R"({"id":"4242-91234567","com":1,"slot":"standby","target":122800,"created":1790000000.125})");
}

TEST(CommandText, NamesEverySlotAndCallsAnUnknownOneSwap) {
    const struct {
        std::int32_t slot;
        const char* name;
    } rows[] = {{0, "active"}, {1, "standby"}, {2, "volume"}, {3, "swap"}, {4, "swap"}, {-1, "swap"}, {99, "swap"}};
    for (const auto& row : rows)
        EXPECT_EQ(writeCommandText({"1-2", {1, static_cast<RadioSlot>(row.slot), 0.0}, 5.0}),
                  R"({"id":"1-2","com":2,"slot":")" + std::string(row.name) + R"(","target":0,"created":5.000})");
}

TEST(CommandText, WritesTheTargetWithSixSignificantDigits) {
    const struct {
        double value;
        const char* text;
    } rows[] = {{118005.0, "118005"}, {136990.0, "136990"},  {0.0, "0"},         {1.0, "1"},     {0.5, "0.5"},
                {0.625, "0.625"},     {1.0 / 3, "0.333333"}, {0.00001, "1e-05"}, {1e6, "1e+06"}, {0.0001, "0.0001"},
                {1e100, "1e+100"},    {2.0 / 3, "0.666667"}, {0.1f, "0.1"}};
    for (const auto& row : rows)
        EXPECT_EQ(writeCommandText({"1-2", {0, kSlotVolume, row.value}, 0.0}),
                  R"({"id":"1-2","com":1,"slot":"volume","target":)" + std::string(row.text) + R"(,"created":0.000})");
}

// Each field on its own, so that none can hide behind another with the same value.
TEST(WorkerCommandText, ReadsEveryFieldAsThePluginWritesIt) {
    const auto travels = [](const CommandRequest& written) {
        const auto command = parseCommandText(writeCommandText(written));
        return command && command->id == written.id && command->write.radio == written.write.radio &&
               command->write.slot == written.write.slot && command->write.value == written.write.value &&
               command->created == written.created;
    };
    const CommandRequest plain{"1-1", {0, kSlotActive, 0.0}, 0.0};
    EXPECT_TRUE(travels(plain));
    for (const char* id : {"4242-91234567", "4294967295-18446744073709551615"})
        EXPECT_TRUE(travels({id, plain.write, 0.0})) << id;
    EXPECT_TRUE(travels({"1-1", {1, kSlotActive, 0.0}, 0.0}));
    for (const RadioSlot slot : {kSlotActive, kSlotStandby, kSlotVolume, kSlotSwap})
        EXPECT_TRUE(travels({"1-1", {0, slot, 0.0}, 0.0})) << slot;
    for (const double value : {118000.0, 118005.0, 136990.0, 0.6, 0.8125, 1.0})
        EXPECT_TRUE(travels({"1-1", {0, kSlotActive, value}, 0.0})) << value;
    for (const double created : {0.001, 1790000000.125, 1790000000.999})
        EXPECT_TRUE(travels({"1-1", plain.write, created})) << created;
}

TEST(WorkerCommandText, ReadsEverySlot) {
    for (int slot = 0; slot < kSlotCount; slot++) {
        const auto command =
            parseCommandText(commandText("a", 1, std::string(kSlotNames[static_cast<std::size_t>(slot)]), "0", 1));
        ASSERT_TRUE(command) << slot;
        EXPECT_EQ(command->write.slot, slot);
        EXPECT_EQ(command->write.radio, 0u);
    }
}

TEST(WorkerCommandText, TakesAnotherOrderBlanksAndFurtherFields) {
    EXPECT_TRUE(
        parseCommandText("{ \"created\": 1.79e+09, \"slot\": \"swap\", \"com\": 1, \"note\": null,\r\n"
                         "\"target\": 0, \"id\": \"x\" }\r\n"));
}

TEST(WorkerCommandText, RefusesAMissingOrWrongField) {
    const char* const rows[] = {
        R"({"com":1,"slot":"swap","target":0,"created":1})",
        R"({"id":"","com":1,"slot":"swap","target":0,"created":1})",
        R"({"id":7,"com":1,"slot":"swap","target":0,"created":1})",
        R"({"id":"a b","com":1,"slot":"swap","target":0,"created":1})",
        R"({"id":"a","slot":"swap","target":0,"created":1})",
        R"({"id":"a","com":0,"slot":"swap","target":0,"created":1})",
        R"({"id":"a","com":3,"slot":"swap","target":0,"created":1})",
        R"({"id":"a","com":1.5,"slot":"swap","target":0,"created":1})",
        R"({"id":"a","com":"1","slot":"swap","target":0,"created":1})",
        R"({"id":"a","com":1,"target":0,"created":1})",
        R"({"id":"a","com":1,"slot":"SWAP","target":0,"created":1})",
        R"({"id":"a","com":1,"slot":3,"target":0,"created":1})",
        R"({"id":"a","com":1,"slot":"swap","created":1})",
        R"({"id":"a","com":1,"slot":"swap","target":true,"created":1})",
        R"({"id":"a","com":1,"slot":"swap","target":0})",
    };
    for (const char* row : rows) EXPECT_FALSE(parseCommandText(row)) << row;
}

TEST(WorkerCommandText, LimitsTheIdAndTheWholeText) {
    EXPECT_TRUE(parseCommandText(commandText(std::string(kMaxIdBytes, 'x'), 1, "swap", "0", 1)));
    EXPECT_FALSE(parseCommandText(commandText(std::string(kMaxIdBytes + 1, 'x'), 1, "swap", "0", 1)));
    EXPECT_FALSE(parseCommandText(kGood + std::string(kMaxCommandBytes, ' ')));
}

TEST(WorkerCommandText, RefusesEveryTruncation) {
    ASSERT_TRUE(parseCommandText(kGood));
    for (std::size_t length = 0; length < kGood.size(); length++) {
        EXPECT_FALSE(parseCommandText(kGood.substr(0, length))) << length;
    }
}

// A damaged digit or id letter makes another command; damage anywhere else must not leave the command as written.
TEST(WorkerCommandText, ADamagedByteNeverPassesForTheCommandWritten) {
    const auto whole = *parseCommandText(kGood);
    for (std::size_t at = 0; at < kGood.size(); at++) {
        for (const char damage : {'\0', ' ', '"', '\\', 'x', '9', '\x7f', '\xff', '}'}) {
            auto text = kGood;
            if (text[at] == damage) continue;
            text[at] = damage;
            const auto command = parseCommandText(text);
            const bool same = command && command->id == whole.id && command->write.radio == whole.write.radio &&
                              command->write.slot == whole.write.slot && command->write.value == whole.write.value &&
                              command->created == whole.created;
            EXPECT_FALSE(same) << at << ' ' << damage;
        }
    }
}

TEST(WorkerCommandText, FindsTheLastAcknowledgedIdInATelemetryFile) {
    EXPECT_EQ(lastAckId(R"({"updated":1,"ok":true,"ack_id":"42-7"})"), "42-7");
    EXPECT_EQ(lastAckId(R"({"updated":1,"ok":true,"ack_id":""})"), "");
    EXPECT_EQ(lastAckId(R"({"ack_id":"42-7")"), "");
    EXPECT_EQ(lastAckId("garbage"), "");
}
