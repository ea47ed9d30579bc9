#include "bridge/move_status.h"

std::optional<std::string> channelStatusOf(const MoveReport& report) {
    switch (report.stage) {
        case MoveStage::kUnknown:
            break;
        case MoveStage::kNoChannel:
            return "No matching TS3 channel";
        case MoveStage::kConfirmed:
            return "TS3 channel confirmed";
        case MoveStage::kRequested:
            return "TS3 move requested; awaiting confirmation";
        case MoveStage::kNotRequested:
            return "TS3 channel join failed";
        case MoveStage::kPending:
            return "TS3 move pending; awaiting confirmation";
        case MoveStage::kRefused:
            return "TS3 channel join failed (" + std::to_string(report.error) + ")";
        case MoveStage::kNotConfirmed:
            return "TS3 channel join not confirmed";
    }
    return std::nullopt;
}
