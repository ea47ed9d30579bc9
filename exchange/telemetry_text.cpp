#include "exchange/telemetry_text.h"
#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include "base/number_text.h"
#include "base/utf8.h"
#include "exchange/command_text.h"
#include "exchange/flat_json.h"

namespace {

// One key and the field it fills: exactly one of the pointers is set.
struct KeyRow {
    std::string_view key;
    double Telemetry::*number = nullptr;
    std::int32_t Telemetry::*whole = nullptr;
    bool Telemetry::*flag = nullptr;
    std::string Telemetry::*text = nullptr;
};

// The same for one radio; the file's key has "com1_" or "com2_" in front.
struct RadioKeyRow {
    std::string_view key;
    std::int32_t RadioReading::*whole = nullptr;
    float RadioReading::*fraction = nullptr;
    int writableSlot = -1;  // RadioSlot of the flag in writable, -1 none
};

using T = Telemetry;
using R = RadioReading;

// clang-format off
constexpr KeyRow kKeys[] = {
    {"updated",         &T::updated,  nullptr,      nullptr,            nullptr},
    {"ok",              nullptr,      nullptr,      &T::ok,             nullptr},
    {"protocol",        &T::protocol, nullptr,      nullptr,            nullptr},
    {"range_min",       nullptr,      &T::rangeMin, nullptr,            nullptr},
    {"range_max",       nullptr,      &T::rangeMax, nullptr,            nullptr},
    {"ack_id",          nullptr,      nullptr,      nullptr,            &T::ackId},
    {"ack_ok",          nullptr,      nullptr,      &T::ackOk,          nullptr},
    {"command_pending", nullptr,      nullptr,      &T::commandPending, nullptr},
    {"status",          nullptr,      nullptr,      nullptr,            &T::status},
    {"ack_message",     nullptr,      nullptr,      nullptr,            &T::ackMessage},
};

constexpr RadioKeyRow kRadioKeys[] = {
    {"active",           &R::active,  nullptr,    -1},
    {"standby",          &R::standby, nullptr,    -1},
    {"spacing",          &R::spacing, nullptr,    -1},
    {"volume",           nullptr,     &R::volume, -1},
    {"active_writable",  nullptr,     nullptr,    kSlotActive},
    {"standby_writable", nullptr,     nullptr,    kSlotStandby},
    {"volume_writable",  nullptr,     nullptr,    kSlotVolume},
    {"swap_writable",    nullptr,     nullptr,    kSlotSwap},
};
// clang-format on

constexpr std::size_t kPlainKeys = std::size(kKeys);
constexpr std::size_t kRadioKeyCount = std::size(kRadioKeys);
constexpr std::size_t kAllKeys = kPlainKeys + kRadioCount * kRadioKeyCount;
constexpr std::size_t kNoKey = kAllKeys;
constexpr std::size_t kRadioPrefixLength = 5;  // "com1_"
constexpr std::size_t kLongestKey = 21;        // "com1_standby_writable"

template <class Row>
std::size_t rowOf(const Row* begin, const Row* end, std::string_view key) {
    return static_cast<std::size_t>(std::find_if(begin, end, [&](const Row& r) { return r.key == key; }) - begin);
}

// The index of a key among all keys: the plain ones, then COM1's, then COM2's.
std::size_t keyIndex(std::string_view key) {
    if (key.size() < 2 || key.size() > kLongestKey) return kNoKey;
    const auto plain = rowOf(std::begin(kKeys), std::end(kKeys), key);
    if (plain < kPlainKeys) return plain;
    if (key.size() <= kRadioPrefixLength || key.substr(0, 3) != "com" || key[4] != '_') return kNoKey;
    if (key[3] != '1' && key[3] != '2') return kNoKey;
    const auto radioKey = rowOf(std::begin(kRadioKeys), std::end(kRadioKeys), key.substr(kRadioPrefixLength));
    if (radioKey == kRadioKeyCount) return kNoKey;
    return kPlainKeys + static_cast<std::size_t>(key[3] - '1') * kRadioKeyCount + radioKey;
}

// The text after the colon of each key; a null data() means that the key is absent.
using ValueTexts = std::array<std::string_view, kAllKeys>;

// A key counts at its first occurrence between two double quotes, wherever that is; its value begins after the next
// colon and the blanks that follow it.
ValueTexts findValues(std::string_view text) {
    ValueTexts values;
    std::array<bool, kAllKeys> seen{};
    std::size_t left = kAllKeys;
    auto open = text.find('"');
    while (open != std::string_view::npos && left > 0) {
        const auto close = text.find('"', open + 1);
        if (close == std::string_view::npos) break;
        const auto index = keyIndex(text.substr(open + 1, close - open - 1));
        open = close;  // a closing quote may open the next key: only the letters between count
        if (index == kNoKey || seen[index]) continue;
        seen[index] = true;
        left--;
        const auto colon = text.find(':', close + 1);
        if (colon == std::string_view::npos) continue;
        const auto value = text.find_first_not_of(" \t\r\n", colon + 1);
        values[index] = text.substr(std::min(value, text.size()));
    }
    return values;
}

double numberOr(std::string_view value, double absent) {
    parseDoublePrefix(value, absent);
    return absent;
}

bool isTrue(std::string_view value) {
    return value.substr(0, 4) == "true";
}

// Escapes are not interpreted; without both quotes there is no string.
std::string quotedText(std::string_view value) {
    const auto open = value.find('"');
    if (open == std::string_view::npos) return {};
    const auto close = value.find('"', open + 1);
    if (close == std::string_view::npos) return {};
    return std::string(cutUtf8(value.substr(open + 1, close - open - 1), kMaxTelemetryTextBytes));
}

// A volume that does not fit into a float counts as absent.
float fractionOr(std::string_view value, float absent) {
    const double number = numberOr(value, static_cast<double>(absent));
    const bool fits = std::fabs(number) <= static_cast<double>(std::numeric_limits<float>::max());
    return fits ? static_cast<float>(number) : absent;
}

std::int32_t wholeOr(std::string_view value, std::int32_t absent) {
    return truncateToInt32(numberOr(value, absent));
}

void fill(const KeyRow& row, std::string_view value, Telemetry& telemetry) {
    if (row.number) telemetry.*row.number = numberOr(value, telemetry.*row.number);
    if (row.whole) telemetry.*row.whole = wholeOr(value, telemetry.*row.whole);
    if (row.flag) telemetry.*row.flag = isTrue(value);
    if (row.text) telemetry.*row.text = quotedText(value);
}

void fill(const RadioKeyRow& row, std::string_view value, RadioReading& radio) {
    if (row.whole) radio.*row.whole = wholeOr(value, radio.*row.whole);
    if (row.fraction) radio.*row.fraction = fractionOr(value, radio.*row.fraction);
    if (row.writableSlot >= 0) radio.writable[static_cast<std::size_t>(row.writableSlot)] = isTrue(value);
}

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

void addRadio(std::string& json, std::string_view prefix, const RadioReading& radio) {
    const auto key = [&](std::string_view name) { return std::string(prefix) + std::string(name); };
    addRaw(json, key("active"), std::to_string(radio.active));
    addRaw(json, key("standby"), std::to_string(radio.standby));
    addRaw(json, key("spacing"), std::to_string(radio.spacing));
    addRaw(json, key("volume"), formatGeneral(std::isfinite(radio.volume) ? static_cast<double>(radio.volume) : -1.0));
    for (std::size_t slot = 0; slot < kSlotCount; slot++) {
        addBool(json, key(std::string(kSlotNames[slot]) + "_writable"), radio.writable[slot]);
    }
}

}  // namespace

Telemetry parseTelemetry(std::string_view text) {
    const ValueTexts values = findValues(text);
    Telemetry telemetry;
    for (std::size_t i = 0; i < kPlainKeys; i++)
        if (values[i].data()) fill(kKeys[i], values[i], telemetry);
    for (std::size_t i = kPlainKeys; i < kAllKeys; i++) {
        const auto offset = i - kPlainKeys;
        if (values[i].data())
            fill(kRadioKeys[offset % kRadioKeyCount], values[i], telemetry.radios[offset / kRadioKeyCount]);
    }
    return telemetry;
}

bool isTimely(const Telemetry& telemetry, double nowUnixSeconds) {
    const double age = nowUnixSeconds - telemetry.updated;
    return age >= 0.0 && age < kTelemetryMaxAgeSeconds;
}

bool isFresh(const Telemetry& telemetry, double nowUnixSeconds) {
    return telemetry.ok && isTimely(telemetry, nowUnixSeconds) && telemetry.protocol == kTelemetryProtocol;
}

std::string plainText(std::string_view text) {
    std::string plain(text);
    for (char& c : plain) {
        if (c == '"') c = '\'';
        if (c == '\\') c = '/';
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) c = ' ';
    }
    return plain;
}

std::string writeTelemetryText(const Telemetry& telemetry, double unixSeconds) {
    std::string json;
    addRaw(json, "updated", formatFixed(std::floor(unixSeconds * 1000.0) / 1000.0, 3));
    addRaw(json, "protocol", formatGeneral(kTelemetryProtocol));
    addBool(json, "ok", telemetry.ok);
    addRaw(json, "range_min", std::to_string(telemetry.rangeMin));
    addRaw(json, "range_max", std::to_string(telemetry.rangeMax));
    addRadio(json, "com1_", telemetry.radios[0]);
    addRadio(json, "com2_", telemetry.radios[1]);
    addBool(json, "command_pending", telemetry.commandPending);
    addBool(json, "ack_ok", telemetry.ackOk);
    addText(json, "status", telemetry.status);
    addText(json, "ack_message", telemetry.ackMessage);
    addText(json, "ack_id", telemetry.ackId);
    return json += "}\n";
}

std::string lastAckId(std::string_view telemetryText) {
    std::string id;
    const auto fields = readFlatJson(telemetryText);
    if (!fields || !readCommandId(findField(*fields, "ack_id"), id)) return {};
    return id;
}
