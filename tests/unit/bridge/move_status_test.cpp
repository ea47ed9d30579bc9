#include "bridge/move_status.h"
#include <gtest/gtest.h>

TEST(MoveStatus, PutsEachStageIntoTheLineOfThePanel) {
    const struct {
        MoveReport report;
        std::optional<std::string> line;
    } rows[] = {
        {{MoveStage::kUnknown}, std::nullopt},
        {{MoveStage::kNoChannel}, "No matching TS3 channel"},
        {{MoveStage::kConfirmed}, "TS3 channel confirmed"},
        {{MoveStage::kRequested}, "TS3 move requested; awaiting confirmation"},
        {{MoveStage::kNotRequested}, "TS3 channel join failed"},
        {{MoveStage::kPending}, "TS3 move pending; awaiting confirmation"},
        {{MoveStage::kRefused, 2568}, "TS3 channel join failed (2568)"},
        {{MoveStage::kRefused, -1}, "TS3 channel join failed (-1)"},
        {{MoveStage::kNotConfirmed}, "TS3 channel join not confirmed"},
    };
    for (const auto& row : rows) EXPECT_EQ(channelStatusOf(row.report), row.line);
}
