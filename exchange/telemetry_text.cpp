#include "exchange/telemetry_text.h"
#include <cmath>
#include "base/number_text.h"
#include "exchange/telemetry.h"

namespace {

void addRaw(std::string& json, std::string_view key, std::string_view value) {
    json += json.empty() ? '{' : ',';
    json += '"';
    json += key;
    json += "\":";
    json += value;
}

void addBool(std::string& json, std::string_view key, bool value) {
    addRaw(json, key, value ? "true" : "false");
}

void addText(std::string& json, std::string_view key, std::string_view value) {
    addRaw(json, key, '"' + plainText(value) + '"');
}

void addRadio(std::string& json, std::string_view prefix, const ComRadio& radio) {
    const auto key = [&](std::string_view name) { return std::string(prefix) + std::string(name); };
    addRaw(json, key("active"), std::to_string(radio.activeKHz));
    addRaw(json, key("standby"), std::to_string(radio.standbyKHz));
    addRaw(json, key("spacing"), std::to_string(radio.spacing));
    addRaw(json, key("volume"), formatGeneral(std::isfinite(radio.volume) ? radio.volume : -1.0));
    for (std::size_t slot = 0; slot < kSlotCount; slot++) {
        addBool(json, key(std::string(kSlotNames[slot]) + "_writable"), radio.writable[slot]);
    }
}

}  // namespace

std::string plainText(std::string_view text) {
    std::string plain(text);
    for (char& c : plain) {
        if (c == '"') c = '\'';
        if (c == '\\') c = '/';
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) c = ' ';
    }
    return plain;
}

std::string telemetryText(const TelemetryRecord& record, double unixSeconds) {
    std::string json;
    addRaw(json, "updated", formatFixed(std::floor(unixSeconds * 1000.0) / 1000.0, 3));
    addRaw(json, "protocol", formatGeneral(kTelemetryProtocol));
    addBool(json, "ok", record.sim.ok);
    addRaw(json, "range_min", std::to_string(record.sim.rangeMinKHz));
    addRaw(json, "range_max", std::to_string(record.sim.rangeMaxKHz));
    addRadio(json, "com1_", record.sim.radios[0]);
    addRadio(json, "com2_", record.sim.radios[1]);
    addBool(json, "command_pending", record.commandPending);
    addBool(json, "ack_ok", record.ack.ok);
    addText(json, "status", record.sim.status);
    addText(json, "ack_message", record.ack.message);
    addText(json, "ack_id", record.ack.id);
    return json += "}\n";
}
