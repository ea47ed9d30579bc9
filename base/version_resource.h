// version_resource.h - the version of a Windows program or library, out of its version resource. [any] Pure functions.
#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

struct ProgramVersion {
    std::uint16_t parts[4] = {};  // major, minor, patch, build

    bool operator==(const ProgramVersion&) const = default;
};

// From the bytes of a version resource (its fixed part, known by its signature); nothing if there is no such part.
std::optional<ProgramVersion> readVersionResource(std::span<const std::byte> resource);

// "3.6.2": without the build.
std::string versionText(const ProgramVersion& version);
