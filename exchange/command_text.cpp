#include "exchange/command_text.h"
#include <algorithm>
#include "base/number_text.h"

namespace {

bool isIdChar(char c) {
    return c > 0x20 && c < 0x7f;
}

// An invalid slot is written as a swap.
std::string_view slotName(RadioSlot slot) {
    return kSlotNames[slot >= kSlotActive && slot < kSlotCount ? slot : kSlotSwap];
}

bool readNumber(const FlatField* field, double& number) {
    if (!field || field->kind != FlatKind::kNumber) return false;
    number = field->number;
    return true;
}

bool readRadio(const FlatField* field, std::size_t& radio) {
    double com = 0.0;
    if (!readNumber(field, com) || (com != 1.0 && com != 2.0)) return false;
    radio = com == 1.0 ? 0 : 1;
    return true;
}

}  // namespace

std::string writeCommandText(const CommandRequest& command) {
    std::string text = "{\"id\":\"" + command.id;
    text += "\",\"com\":" + std::to_string(command.write.radio + 1);
    text += ",\"slot\":\"" + std::string(slotName(command.write.slot));
    text += "\",\"target\":" + formatGeneral(command.write.value);
    text += ",\"created\":" + formatFixed(command.created, 3);
    return text += "}";
}

bool readCommandId(const FlatField* field, std::string& id) {
    if (!field || field->kind != FlatKind::kText || field->text.empty() || field->text.size() > kMaxIdBytes)
        return false;
    id = field->text;
    return std::all_of(id.begin(), id.end(), isIdChar);
}

std::optional<CommandRequest> parseCommandText(std::string_view text) {
    if (text.size() > kMaxCommandBytes) return std::nullopt;
    const auto fields = readFlatJson(text);
    if (!fields) return std::nullopt;
    CommandRequest command;
    const auto* slot = findField(*fields, "slot");
    const bool whole = readCommandId(findField(*fields, "id"), command.id) &&
                       readRadio(findField(*fields, "com"), command.write.radio) && slot &&
                       slot->kind == FlatKind::kText && parseSlot(slot->text, command.write.slot) &&
                       readNumber(findField(*fields, "target"), command.write.value) &&
                       readNumber(findField(*fields, "created"), command.created);
    if (!whole) return std::nullopt;
    return command;
}
