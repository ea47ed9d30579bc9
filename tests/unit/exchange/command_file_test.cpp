#include "exchange/command_file.h"
#include "tests/unit/bridge/queue_rig.h"

TEST(CommandText, IsOneLineWithoutBlanksInItsOrder) {
    EXPECT_EQ(writeCommandText({1, kSlotStandby, 122800.0, -1.0f, "4242-91234567"}, 1790000000.125),
              R"({"id":"4242-91234567","com":1,"slot":"standby","target":122800,"created":1790000000.125})");
}

TEST(CommandText, NamesEverySlotAndCallsAnUnknownOneSwap) {
    const struct {
        std::int32_t slot;
        const char* name;
    } rows[] = {{0, "active"}, {1, "standby"}, {2, "volume"}, {3, "swap"}, {4, "swap"}, {-1, "swap"}, {99, "swap"}};
    for (const auto& row : rows)
        EXPECT_EQ(writeCommandText({2, row.slot, 0.0, -1.0f, "1-2"}, 5.0),
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
        EXPECT_EQ(writeCommandText({1, kSlotVolume, row.value, -1.0f, "1-2"}, 0.0),
                  R"({"id":"1-2","com":1,"slot":"volume","target":)" + std::string(row.text) + R"(,"created":0.000})");
}

class CommandFile : public QueueTest {};

TEST_F(CommandFile, HoldsProcessAndTickAsIdAndTheWallClockOfTheWriting) {
    add(1, kSlotActive, 121500.0);
    clock.advance(300);
    clock.tick = 91234567;
    clock.seconds = 1790000123.5;
    process();
    EXPECT_EQ(written(), R"({"id":"4242-91234567","com":1,"slot":"active","target":121500,"created":1790000123.500})");
    EXPECT_EQ(only().id, "4242-91234567");
    EXPECT_EQ(only().writtenAt, 91234567U);
}

TEST_F(CommandFile, IsWrittenForEachKindOfCommand) {
    const struct {
        std::int32_t com, slot;
        double value;
        const char* middle;
    } rows[] = {{2, kSlotStandby, 118005.0, R"("com":2,"slot":"standby","target":118005,)"},
                {1, kSlotVolume, 0.8, R"("com":1,"slot":"volume","target":0.8,)"},
                {2, kSlotSwap, 0.0, R"("com":2,"slot":"swap","target":0,)"}};
    for (const auto& row : rows) {
        add(row.com, row.slot, row.value);
        processAfter(300);
        EXPECT_NE(written().find(row.middle), std::string::npos) << written();
        acknowledge(true);
        process();
        EXPECT_EQ(size(), 0U);
    }
}
