#include "tests/xplane/fields.h"
#include <bit>
#include <cassert>

namespace xstandin {

std::int32_t i32At(std::string_view datagram, std::size_t offset) {
    assert(offset + 4 <= datagram.size());
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; i++)
        value |= std::uint32_t{static_cast<unsigned char>(datagram[offset + i])} << (8 * i);
    return static_cast<std::int32_t>(value);
}

float f32At(std::string_view datagram, std::size_t offset) {
    return std::bit_cast<float>(i32At(datagram, offset));
}

void addU16(std::string& datagram, std::uint16_t value) {
    datagram += static_cast<char>(value & 0xFFU);
    datagram += static_cast<char>(value >> 8U);
}

void addI32(std::string& datagram, std::int32_t value) {
    const auto bits = static_cast<std::uint32_t>(value);
    addU16(datagram, static_cast<std::uint16_t>(bits & 0xFFFFU));
    addU16(datagram, static_cast<std::uint16_t>(bits >> 16U));
}

void addF32(std::string& datagram, float value) {
    addI32(datagram, std::bit_cast<std::int32_t>(value));
}

}  // namespace xstandin
