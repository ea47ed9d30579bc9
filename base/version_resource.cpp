#include "base/version_resource.h"
#include <cstring>

namespace {

constexpr std::uint32_t kFixedInfoSignature = 0xFEEF04BD;  // VS_FIXEDFILEINFO
constexpr std::size_t kVersionOffset = 8;                  // of dwFileVersionMS and LS in it

std::uint32_t wordAt(std::span<const std::byte> bytes, std::size_t at) {
    std::uint32_t word = 0;
    std::memcpy(&word, bytes.data() + at, sizeof word);  // little-endian, as we are
    return word;
}

}  // namespace

std::optional<ProgramVersion> readVersionResource(std::span<const std::byte> resource) {
    // The fixed part stands on a multiple of four bytes behind a key of text.
    for (std::size_t at = 0; at + kVersionOffset + 8 <= resource.size(); at += 4) {
        if (wordAt(resource, at) != kFixedInfoSignature) continue;
        const std::uint32_t high = wordAt(resource, at + kVersionOffset);
        const std::uint32_t low = wordAt(resource, at + kVersionOffset + 4);
        ProgramVersion version;
        version.parts[0] = static_cast<std::uint16_t>(high >> 16U);
        version.parts[1] = static_cast<std::uint16_t>(high & 0xFFFFU);
        version.parts[2] = static_cast<std::uint16_t>(low >> 16U);
        version.parts[3] = static_cast<std::uint16_t>(low & 0xFFFFU);
        return version;
    }
    return std::nullopt;
}

std::string versionText(const ProgramVersion& version) {
    return std::to_string(version.parts[0]) + '.' + std::to_string(version.parts[1]) + '.' +
           std::to_string(version.parts[2]);
}
