// soak_options.h - the command line of the soak. Pure. [any]
#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

enum class PlantedLeak : std::uint8_t { kNone, kMemory, kHandle, kGdi, kUser, kThread };

struct SoakOptions {
    std::string outFolder;
    double minutes = 2.0;               // above 0
    std::optional<std::uint64_t> seed;  // nothing: taken from the clock, and printed
    double everySeconds = 10.0;         // from line to line, 1..600
    PlantedLeak leak = PlantedLeak::kNone;
};

// OUT_FOLDER [--minutes N] [--seed N] [--every SECONDS] [--leak memory|handle|gdi|user|thread]. Nothing if it is not
// that.
std::optional<SoakOptions> parseSoakOptions(const std::vector<std::string>& arguments);
