// wire.h - the fields of a packet: little-endian, packed, texts of fixed width filled up with NUL.
// [any thread] Nothing here locks. Offsets count from the start of the packet.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace standin {

inline constexpr std::size_t kNameBytes = 256;  // of a name or a title in a packet

// The field must lie inside the packet: the caller has checked the packet's size.
std::uint32_t u32At(std::string_view packet, std::size_t offset);
float f32At(std::string_view packet, std::size_t offset);
std::string textAt(std::string_view packet, std::size_t offset, std::size_t width);  // up to the first NUL

void putU32(std::string& packet, std::uint32_t value);
void putU64(std::string& packet, std::uint64_t value);
void putF32(std::string& packet, float value);
void putF64(std::string& packet, double value);
void putText(std::string& packet, std::string_view text, std::size_t width);  // cut to width - 1, so that a NUL ends it

// Overwrites the first field with the packet's length.
void sealPacket(std::string& packet);

// Names of variables, units and events are case-insensitive.
bool isSameName(std::string_view a, std::string_view b);

}  // namespace standin
