// telemetry_text.h - "telemetry.json": what the worker reports about the simulator, written and read.
// The file is one flat JSON object from a known writer, so the reader finds each key by text search; reading never
// fails as a whole. Values: copy them freely. [any]
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include "exchange/com_radio.h"

inline constexpr const char* kTelemetryFile = "telemetry.json";
inline constexpr double kTelemetryProtocol = 2.0;
inline constexpr double kTelemetryMaxAgeSeconds = 3.0;  // exclusive

// What "status" and "ack_message" may hold: the panel's left status line has no room for more at its usual size.
inline constexpr std::size_t kMaxPilotBytes = 44;

// A text of the file is cut to this length, never inside a UTF-8 character. Ours are shorter; whatever else stands
// there is copied under locks and drawn.
inline constexpr std::size_t kMaxTelemetryTextBytes = 256;

// The keys of the file with their defaults for absent ones. The default is the safe state: no link, nothing known.
struct Telemetry {
    double updated = 0.0;   // seconds since 1970-01-01 UTC
    bool ok = false;        // the worker's own health flag
    double protocol = 0.0;  // kTelemetryProtocol, else the file is of another version
    std::int32_t rangeMin = 0;
    std::int32_t rangeMax = 0;
    std::array<RadioReading, kRadioCount> radios;
    std::string ackId;  // the last command the worker handled, empty: none yet
    bool ackOk = false;
    bool commandPending = false;
    std::string status;  // one plain-English line
    std::string ackMessage;

    bool operator==(const Telemetry&) const = default;
};

// Reads any bytes in one pass over the text.
Telemetry parseTelemetry(std::string_view text);

// The file's text, with unixSeconds and our own protocol in place of the record's updated and protocol. Numbers use a
// decimal point in every locale. "updated" is truncated, not rounded, to milliseconds: a reader rejects a file from the
// future, even by half a millisecond. The texts come last, since readers take the first match of a quoted key.
std::string writeTelemetryText(const Telemetry& telemetry, double unixSeconds);

// True if the worker wrote within the last three seconds, not in the future.
bool isTimely(const Telemetry& telemetry, double nowUnixSeconds);

// True if the worker is healthy, speaks our protocol and wrote within the last three seconds, not in the future.
bool isFresh(const Telemetry& telemetry, double nowUnixSeconds);

// The "ack_id" of a telemetry file, read strictly; empty if the text is not such a file or has no id.
std::string lastAckId(std::string_view telemetryText);

// The text made safe between double quotes for a reader that knows no escapes: a double quote becomes an apostrophe, a
// backslash a slash, a control character a blank.
std::string plainText(std::string_view text);
