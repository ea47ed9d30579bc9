#include "exchange/telemetry.h"
#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include "base/number_text.h"

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

// The text after the colon of each key; no data() means that the key is absent.
using ValueTexts = std::array<std::string_view, kAllKeys>;

// A key is the text between two double quotes at its first occurrence, whatever it stands in; its value begins after
// the next colon and the blanks behind it.
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
    return std::string(value.substr(open + 1, close - open - 1));
}

// A volume that no float holds is as good as none.
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

RadioReading unknownRadio(std::int32_t spacing) {
    RadioReading radio;
    radio.spacing = spacing;
    return radio;
}

SelectedRadio selectRadio(const Settings& settings, const Telemetry& telemetry, bool fresh) {
    if (!fresh) return {};
    const RadioReading& radio = telemetry.radios[settings.radio == 2 ? 1 : 0];
    return {settings.target == 0 ? radio.active : radio.standby, radio.volume};
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

bool isFresh(const Telemetry& telemetry, double nowUnixSeconds) {
    const double age = nowUnixSeconds - telemetry.updated;
    return telemetry.ok && age >= 0.0 && age < kTelemetryMaxAgeSeconds && telemetry.protocol == kTelemetryProtocol;
}

void publishTelemetry(const Telemetry& telemetry, bool fresh, std::uint64_t readTickMs, SharedSimState& sim) {
    MutexLock lock(sim.mutex);
    SimState& state = sim.state;
    if (!fresh)
        state.statusText = "DISCONNECTED";
    else if (telemetry.ackId != state.ackId)
        state.statusText = telemetry.ackMessage;
    else if (!state.connected)
        state.statusText = "CONNECTED";

    for (std::size_t i = 0; i < state.radios.size(); i++)
        state.radios[i] = fresh ? telemetry.radios[i] : unknownRadio(telemetry.radios[i].spacing);
    state.connected = fresh;
    state.commandPending = telemetry.commandPending;
    state.rangeMin = telemetry.rangeMin;
    state.rangeMax = telemetry.rangeMax;
    state.ackId = telemetry.ackId;
    state.ackOk = telemetry.ackOk;
    state.readTick = readTickMs;
}

bool readTelemetry(DataFiles& files, const std::string& dataFolder, const Clock& clock, SettingsStore& settings,
                   SharedSimState& sim, SelectedRadio& selected, std::string& statusValue) {
    std::string text;
    if (!files.read(joinPath(dataFolder, kTelemetryFile), text) || text.empty()) return false;
    const std::uint64_t readTickMs = clock.tickMs();
    const Telemetry telemetry = parseTelemetry(text);
    // The clock is read after the file: a file written between the two must not seem to come from the future.
    const bool fresh = isFresh(telemetry, clock.unixSeconds());
    selected = selectRadio(copySettings(settings), telemetry, fresh);
    statusValue = telemetry.status;
    publishTelemetry(telemetry, fresh, readTickMs, sim);
    return fresh;
}
