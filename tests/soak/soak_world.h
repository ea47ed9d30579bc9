// soak_world.h - what the parts of the soak agree on: servers, people and frequencies.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>

inline constexpr std::array<std::uint64_t, 3> kServers = {1, 2, 3};  // the tabs; speakers are heard on the first
inline constexpr std::uint16_t kPilot = 7;                           // the own client on each
inline constexpr const char* kSoakPluginId = "soak";

// Frequencies of the 25 kHz grid; each server has a channel for each.
inline constexpr std::size_t kFrequencies = 38;
constexpr std::int32_t frequencyKHz(std::size_t number) {
    return 118'000 + 475 * static_cast<std::int32_t>(number % kFrequencies);
}
