#include "tests/simulator/variables.h"
#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include "tests/simulator/wire.h"

namespace standin {

namespace {

enum class Quantity : std::uint8_t { kFrequency, kPercent, kNumber, kSeconds, kText };

struct Moment {
    const Aircraft& aircraft;
    const Radio& radio;
    std::size_t index;
    double seconds;
    bool isTransmitting() const { return aircraft.transmitting == index; }
    bool isHeard() const { return radio.isReceiving || isTransmitting(); }
};

}  // namespace

struct VariableKind {
    std::string_view name;
    bool isIndexed;  // ":1".. after the name
    Quantity quantity;
    double (*read)(const Moment&);  // Hz, percent, seconds, or the number itself; null for a text
    const std::string& (*text)(const Aircraft&) = nullptr;
};

struct Unit {
    Quantity quantity;
    std::string_view name;
    double perUnit;  // how many of VariableKind::read's units
    bool isBcd16;    // four decimal digits of the frequency in 10 kHz, without the leading 1
};

namespace {

const std::string& titleOf(const Aircraft& aircraft) {
    return aircraft.title;
}

using enum Quantity;
using M = const Moment&;

// clang-format off
constexpr VariableKind kVariables[] = {
    {"COM ACTIVE FREQUENCY",      true,  kFrequency, [](M m) { return 1.0 * m.radio.activeHz; }},
    {"COM STANDBY FREQUENCY",     true,  kFrequency, [](M m) { return 1.0 * m.radio.standbyHz; }},
    {"COM SPACING MODE",          true,  kNumber,    [](M m) { return 1.0 * m.radio.is833; }},
    {"COM VOLUME",                true,  kPercent,   [](M m) { return m.radio.volumePercent; }},
    {"COM AVAILABLE",             true,  kNumber,    [](M m) { return 1.0 * m.radio.isFitted; }},
    {"COM STATUS",                true,  kNumber,    [](M m) { return 1.0 * m.radio.status(); }},
    {"COM TRANSMIT",              true,  kNumber,    [](M m) { return 1.0 * m.isTransmitting(); }},
    {"COM RECEIVE",               true,  kNumber,    [](M m) { return 1.0 * m.isHeard(); }},
    {"COM RECEIVE EX1",           true,  kNumber,    [](M m) { return 1.0 * m.radio.isReceiving; }},
    {"CIRCUIT COM ON",            true,  kNumber,    [](M m) { return 1.0 * m.radio.isPowered; }},
    {"CIRCUIT NAVCOM1 ON",        false, kNumber,    [](M m) { return 1.0 * m.aircraft.radios[0].isPowered; }},
    {"CIRCUIT NAVCOM2 ON",        false, kNumber,    [](M m) { return 1.0 * m.aircraft.radios[1].isPowered; }},
    {"AVIONICS MASTER SWITCH",    true,  kNumber,    [](M) { return 1.0; }},
    {"ELECTRICAL MASTER BATTERY", true,  kNumber,    [](M) { return 1.0; }},
    {"SIMULATION TIME",           false, kSeconds,   [](M m) { return m.seconds; }},
    {"ABSOLUTE TIME",             false, kSeconds,   [](M m) { return 6.4e10 + m.seconds; }},
    {"TITLE",                     false, kText,      nullptr, titleOf},
};

constexpr Unit kUnits[] = {
    {kFrequency, "MHz",              1e6,   false},
    {kFrequency, "Megahertz",        1e6,   false},
    {kFrequency, "kHz",              1e3,   false},
    {kFrequency, "Kilohertz",        1e3,   false},
    {kFrequency, "Hz",               1.0,   false},
    {kFrequency, "Hertz",            1.0,   false},
    {kFrequency, "Frequency BCD16",  1e4,   true},
    {kPercent,   "Percent",          1.0,   false},
    {kPercent,   "Percent over 100", 100.0, false},
    {kNumber,    "Bool",             1.0,   false},
    {kNumber,    "Boolean",          1.0,   false},
    {kNumber,    "Enum",             1.0,   false},
    {kNumber,    "Number",           1.0,   false},
    {kSeconds,   "Seconds",          1.0,   false},
    {kSeconds,   "Second",           1.0,   false},
};
// clang-format on

// By type, from kString8 on.
constexpr std::array<std::size_t, 6> kStringBytes = {8, 32, 64, 128, 256, 260};

// Cuts ":2" off; "COM ACTIVE FREQUENCY" alone means the first. False for an index that no aircraft has.
bool splitIndex(std::string_view& name, std::size_t& index) {
    const auto colon = name.rfind(':');
    index = 0;
    if (colon == std::string_view::npos) return true;
    const auto number = name.substr(colon + 1);
    if (number.size() != 1 || number[0] < '1' || number[0] > static_cast<char>('0' + kRadios)) return false;
    index = static_cast<std::size_t>(number[0] - '1');
    name = name.substr(0, colon);
    return true;
}

double toBcd16(double tenKilohertz) {
    auto digits = static_cast<std::uint32_t>(tenKilohertz + 1e-6) % 10'000U;  // drops the third decimal of the MHz
    std::uint32_t bcd = 0;
    for (unsigned shift = 0; shift < 16; shift += 4, digits /= 10) bcd |= digits % 10 << shift;
    return bcd;
}

bool isTextType(std::uint32_t type) {
    return type >= kString8 && type <= kString260;
}

}  // namespace

VariableProblem findVariable(std::string_view name, std::string_view units, std::uint32_t type, Variable& variable) {
    Variable found;
    const bool hasIndex = name.find(':') != std::string_view::npos;
    if (!splitIndex(name, found.radio)) return VariableProblem::kName;
    found.kind = std::find_if(std::begin(kVariables), std::end(kVariables),
                              [&](const VariableKind& row) { return isSameName(row.name, name); });
    if (found.kind == std::end(kVariables) || (hasIndex && !found.kind->isIndexed)) return VariableProblem::kName;
    const bool isText = found.kind->quantity == kText;
    if (type == 0 || type > kString260 || isText != isTextType(type)) return VariableProblem::kType;
    found.type = static_cast<DataType>(type);
    if (!isText) {
        found.unit = std::find_if(std::begin(kUnits), std::end(kUnits), [&](const Unit& row) {
            return row.quantity == found.kind->quantity && isSameName(row.name, units);
        });
        if (found.unit == std::end(kUnits)) return VariableProblem::kUnits;
    }
    variable = found;
    return VariableProblem::kNone;
}

double numberOf(const Variable& variable, const Aircraft& aircraft, double simulatedSeconds) {
    if (!variable.kind->read) return 0.0;
    const Moment moment{aircraft, aircraft.radios[variable.radio], variable.radio, simulatedSeconds};
    const double inUnit = variable.kind->read(moment) / variable.unit->perUnit;
    return variable.unit->isBcd16 ? toBcd16(inUnit) : inUnit;
}

void putValue(std::string& bytes, const Variable& variable, const Aircraft& aircraft, double simulatedSeconds) {
    if (isTextType(variable.type)) {
        const auto width = kStringBytes[static_cast<std::size_t>(variable.type - kString8)];
        return putText(bytes, variable.kind->text(aircraft), width);
    }
    const double number = numberOf(variable, aircraft, simulatedSeconds);
    switch (variable.type) {
        case kInt32:
            return putU32(bytes, static_cast<std::uint32_t>(static_cast<std::int32_t>(number)));
        case kInt64:
            return putU64(bytes, static_cast<std::uint64_t>(static_cast<std::int64_t>(number)));
        case kFloat32:
            return putF32(bytes, static_cast<float>(number));
        default:
            return putF64(bytes, number);
    }
}

}  // namespace standin
