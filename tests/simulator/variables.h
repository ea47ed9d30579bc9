// variables.h - the simulation variables that clients may ask for, in the units they may ask for. [any thread]
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include "tests/simulator/aircraft.h"

namespace standin {

enum DataType : std::uint32_t {
    kInt32 = 1,
    kInt64 = 2,
    kFloat32 = 3,
    kFloat64 = 4,
    kString8 = 5,
    kString32 = 6,
    kString64 = 7,
    kString128 = 8,
    kString256 = 9,
    kString260 = 10,
};

// What a definition says about one of its values. Made by findVariable only.
struct VariableKind;
struct Unit;
struct Variable {
    const VariableKind* kind = nullptr;
    const Unit* unit = nullptr;  // null for texts
    std::size_t radio = 0;       // of those with an index
    DataType type = kFloat64;
};

enum class VariableProblem { kNone, kName, kUnits, kType };

// Looks up "COM ACTIVE FREQUENCY:1" in "MHz" as kFloat64. If there is a problem, variable is unchanged.
VariableProblem findVariable(std::string_view name, std::string_view units, std::uint32_t type, Variable& variable);

// The value as a client compares it: in its units. 0 for a text.
double numberOf(const Variable& variable, const Aircraft& aircraft, double simulatedSeconds);

// Appends the value in its type's width.
void putValue(std::string& bytes, const Variable& variable, const Aircraft& aircraft, double simulatedSeconds);

}  // namespace standin
