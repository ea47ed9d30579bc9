#include "exchange/command_text.h"
#include <algorithm>
#include "exchange/flat_json.h"

namespace {

bool isIdChar(char c) {
    return c > 0x20 && c < 0x7f;
}

bool readId(const FlatField* field, std::string& id) {
    if (!field || field->kind != FlatKind::Text || field->text.empty() || field->text.size() > kMaxIdBytes)
        return false;
    id = field->text;
    return std::all_of(id.begin(), id.end(), isIdChar);
}

bool readNumber(const FlatField* field, double& number) {
    if (!field || field->kind != FlatKind::Number) return false;
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

std::optional<CommandRequest> parseCommandText(std::string_view text) {
    if (text.size() > kMaxCommandBytes) return std::nullopt;
    const auto fields = readFlatJson(text);
    if (!fields) return std::nullopt;
    CommandRequest command;
    const auto* slot = findField(*fields, "slot");
    const bool whole = readId(findField(*fields, "id"), command.id) &&
                       readRadio(findField(*fields, "com"), command.write.radio) && slot &&
                       slot->kind == FlatKind::Text && parseSlot(slot->text, command.write.slot) &&
                       readNumber(findField(*fields, "target"), command.write.value) &&
                       readNumber(findField(*fields, "created"), command.created);
    if (!whole) return std::nullopt;
    return command;
}

std::string lastAckId(std::string_view telemetryText) {
    std::string id;
    const auto fields = readFlatJson(telemetryText);
    if (!fields || !readId(findField(*fields, "ack_id"), id)) return {};
    return id;
}
