#include "exchange/command_text.h"
#include <gtest/gtest.h>
#include "exchange/command_file.h"
#include "tests/unit/worker/worker_fakes.h"

namespace {

const std::string kGood = commandText("4242-91234567", 2, "standby", "118005", 1790000000.125);

}  // namespace

TEST(WorkerCommandText, ReadsWhatThePluginWrites) {
    Command written;
    written.com = 2;
    written.slot = kSlotVolume;
    written.value = 0.6;
    written.id = "4242-91234567";
    const auto command = parseCommandText(writeCommandText(written, 1790000000.125));
    ASSERT_TRUE(command);
    EXPECT_EQ(command->id, "4242-91234567");
    EXPECT_EQ(command->write.radio, 1u);
    EXPECT_EQ(command->write.slot, kSlotVolume);
    EXPECT_DOUBLE_EQ(command->write.value, 0.6);
    EXPECT_DOUBLE_EQ(command->created, 1790000000.125);
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

// A damaged digit or id letter is another command; damage anywhere else must not pass for the one that was written.
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
