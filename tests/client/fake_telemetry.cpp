#include "tests/client/fake_telemetry.h"
#include "base/number_text.h"

namespace {

const char* yesNo(bool value) {
    return value ? "true" : "false";
}

std::string radioText(const std::string& prefix, const FakeRadio& radio) {
    std::string text;
    const auto add = [&](const char* key, const std::string& value) {
        text += ",\n \"" + prefix + key + "\": " + value;
    };
    add("active", std::to_string(radio.activeKhz));
    add("standby", std::to_string(radio.standbyKhz));
    add("spacing", std::to_string(radio.spacing));
    add("volume", formatFixed(radio.volume, 3));
    for (const char* slot : {"active_writable", "standby_writable", "volume_writable", "swap_writable"}) {
        add(slot, yesNo(radio.writable));
    }
    return text;
}

}  // namespace

std::string telemetryText(const FakeTelemetry& telemetry, double unixSeconds) {
    std::string text = "{\n \"updated\": " + formatFixed(unixSeconds, 3);
    text += std::string(",\n \"ok\": ") + yesNo(telemetry.ok);
    text += ",\n \"protocol\": " + std::to_string(telemetry.protocol);
    text += ",\n \"range_min\": " + std::to_string(telemetry.rangeMinKhz);
    text += ",\n \"range_max\": " + std::to_string(telemetry.rangeMaxKhz);
    text += radioText("com1_", telemetry.radios[0]) + radioText("com2_", telemetry.radios[1]);
    text += ",\n \"ack_id\": \"" + telemetry.ackId + "\"";
    text += std::string(",\n \"ack_ok\": ") + yesNo(telemetry.ackOk);
    text += ",\n \"ack_message\": \"" + telemetry.ackMessage + "\"";
    return text + ",\n \"command_pending\": false,\n \"status\": \"flying\"\n}\n";
}
