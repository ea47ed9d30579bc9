// telemetry_text.h - telemetry.json as the plugin reads it: one flat JSON object, protocol 2.
#pragma once
#include <string>
#include <string_view>
#include "worker/command_handler.h"
#include "worker/radio_types.h"

struct TelemetryRecord {
    SimSnapshot sim;
    bool commandPending = false;
    CommandAck ack;
    bool operator==(const TelemetryRecord&) const = default;
};

// What may stand between double quotes for a reader that knows no escapes: a double quote becomes an apostrophe, a
// backslash a slash, a control character a blank.
std::string plainText(std::string_view text);

// [any] Numbers have a point in every locale. "updated" is cut, not rounded, to milliseconds: a reader refuses a file
// from the future, be it half a millisecond. The texts come last, since readers take the first match of a quoted key.
std::string telemetryText(const TelemetryRecord& record, double unixSeconds);
