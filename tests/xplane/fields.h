// fields.h - the fields of a datagram: little-endian, packed, without gaps.
// [any thread] Nothing here locks. Offsets count from the start of the datagram.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace xstandin {

// The field must lie inside the datagram: the caller has checked its size.
std::int32_t i32At(std::string_view datagram, std::size_t offset);
float f32At(std::string_view datagram, std::size_t offset);

void addU16(std::string& datagram, std::uint16_t value);
void addI32(std::string& datagram, std::int32_t value);
void addF32(std::string& datagram, float value);

}  // namespace xstandin
