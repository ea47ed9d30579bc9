// hostile_telemetry.h - what may stand in "telemetry.json" besides a worker's whole text: torn writes, files of other
// programs, numbers beyond all ranges. Portable; the dice decide. [any]
#pragma once
#include <cstddef>
#include <string>
#include <string_view>
#include "tests/soak/dice.h"

inline constexpr std::size_t kHostileKinds = 12;

// The kind 0..kHostileKinds-1 of harm done to a good text; each is different from it.
std::string harmedTelemetry(std::size_t kind, std::string_view good, Dice& dice);
