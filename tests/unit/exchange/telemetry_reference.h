// telemetry_reference.h - the telemetry reader once more, with one text search per key and strtod for the numbers:
// slow, and plain enough to judge the real one on damaged files.
#pragma once
#include <cmath>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string>
#include "base/utf8.h"
#include "exchange/telemetry_text.h"

// Where the value of a key begins; nothing if the key, a colon after it or any text after that is missing.
inline std::optional<std::string> referenceValue(const std::string& text, const std::string& key) {
    const auto at = text.find('"' + key + '"');
    if (at == std::string::npos) return std::nullopt;
    const auto colon = text.find(':', at + key.size() + 2);
    if (colon == std::string::npos) return std::nullopt;
    const auto value = text.find_first_not_of(" \t\r\n", colon + 1);
    if (value == std::string::npos) return std::nullopt;
    return text.substr(value);
}

inline double referenceNumber(const std::string& text, const std::string& key, double absent) {
    const auto value = referenceValue(text, key);
    if (!value) return absent;
    char* end = nullptr;
    const double number = std::strtod(value->c_str(), &end);
    return end == value->c_str() ? absent : number;
}

inline std::int32_t referenceWhole(const std::string& text, const std::string& key, std::int32_t absent) {
    const double number = std::trunc(referenceNumber(text, key, absent));
    const bool fits = number >= -2147483648.0 && number <= 2147483647.0;
    return fits ? static_cast<std::int32_t>(number) : 0;
}

inline bool referenceFlag(const std::string& text, const std::string& key) {
    const auto value = referenceValue(text, key);
    return value && value->compare(0, 4, "true") == 0;
}

inline std::string referenceText(const std::string& text, const std::string& key) {
    const auto value = referenceValue(text, key);
    if (!value) return {};
    const auto open = value->find('"');
    if (open == std::string::npos) return {};
    const auto close = value->find('"', open + 1);
    if (close == std::string::npos) return {};
    const std::string whole = value->substr(open + 1, close - open - 1);
    return std::string(cutUtf8(whole, 256));  // the rule of all texts, tested by itself
}

inline bool sameNumber(double a, double b) {
    return a == b || (std::isnan(a) && std::isnan(b));
}

// A volume that does not fit a float only has to stay outside 0..1.
inline bool sameVolume(float got, double wanted) {
    if (std::isnan(wanted) || std::fabs(wanted) > static_cast<double>(std::numeric_limits<float>::max()))
        return !(got >= 0.0f && got <= 1.0f);
    return got == static_cast<float>(wanted);
}

inline std::string radioDifference(const RadioReading& got, const std::string& text, const std::string& prefix) {
    if (got.active != referenceWhole(text, prefix + "active", 0)) return prefix + "active";
    if (got.standby != referenceWhole(text, prefix + "standby", 0)) return prefix + "standby";
    if (got.spacing != referenceWhole(text, prefix + "spacing", -1)) return prefix + "spacing";
    if (!sameVolume(got.volume, referenceNumber(text, prefix + "volume", -1.0))) return prefix + "volume";
    const char* const slots[] = {"active", "standby", "volume", "swap"};
    for (std::size_t i = 0; i < 4; i++)
        if (got.writable[i] != referenceFlag(text, prefix + slots[i] + "_writable"))
            return prefix + slots[i] + "_writable";
    return {};
}

// The first key on which the reader and the reference disagree; empty if there is none.
inline std::string telemetryDifference(const std::string& text) {
    const Telemetry got = parseTelemetry(text);
    if (!sameNumber(got.updated, referenceNumber(text, "updated", 0.0))) return "updated";
    if (got.ok != referenceFlag(text, "ok")) return "ok";
    if (!sameNumber(got.protocol, referenceNumber(text, "protocol", 0.0))) return "protocol";
    if (got.rangeMin != referenceWhole(text, "range_min", 0)) return "range_min";
    if (got.rangeMax != referenceWhole(text, "range_max", 0)) return "range_max";
    if (got.ackId != referenceText(text, "ack_id")) return "ack_id";
    if (got.ackOk != referenceFlag(text, "ack_ok")) return "ack_ok";
    if (got.commandPending != referenceFlag(text, "command_pending")) return "command_pending";
    if (got.status != referenceText(text, "status")) return "status";
    if (got.ackMessage != referenceText(text, "ack_message")) return "ack_message";
    const auto com1 = radioDifference(got.radios[0], text, "com1_");
    return com1.empty() ? radioDifference(got.radios[1], text, "com2_") : com1;
}
