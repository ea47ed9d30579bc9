// command_file_test.cpp - the command queue's oldest command as the file that the worker finds.
#include "exchange/command_text.h"
#include "tests/unit/bridge/queue_rig.h"

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
