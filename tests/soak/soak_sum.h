// soak_sum.h - what a whole soak has done and how long it took, as lines to read, and what it has not done at all: a
// soak that skipped something says nothing about it. Pure functions. [any]
#pragma once
#include <cstdint>
#include <span>
#include <string>
#include <vector>
#include "tests/soak/soak_line.h"

// Adds the line's times and blocks; the counts of the moment have no sum.
void addTimes(SoakLine& sum, const SoakLine& line);
std::vector<std::string> timesTexts(const SoakLine& sum);  // without line feeds

struct WorkCount {
    const char* name;  // "texts"
    std::uint64_t count;
};
std::string workText(std::span<const WorkCount> work);  // "done: 600 texts, 41 dialogs"
std::vector<std::string> undoneWork(std::span<const WorkCount> work);
