#include "tests/simulator/wire.h"
#include <algorithm>
#include <bit>
#include <cassert>

namespace standin {

namespace {

constexpr char lowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

void putBytes(std::string& packet, std::uint64_t value, int bytes) {
    for (int i = 0; i < bytes; i++) packet += static_cast<char>((value >> (8 * i)) & 0xFFU);
}

}  // namespace

std::uint32_t u32At(std::string_view packet, std::size_t offset) {
    assert(offset + 4 <= packet.size());
    std::uint32_t value = 0;
    for (std::size_t i = 4; i > 0; i--) value = value << 8U | static_cast<unsigned char>(packet[offset + i - 1]);
    return value;
}

float f32At(std::string_view packet, std::size_t offset) {
    return std::bit_cast<float>(u32At(packet, offset));
}

std::string textAt(std::string_view packet, std::size_t offset, std::size_t width) {
    assert(offset + width <= packet.size());
    const auto field = packet.substr(offset, width);
    return std::string(field.substr(0, field.find('\0')));
}

void putU32(std::string& packet, std::uint32_t value) {
    putBytes(packet, value, 4);
}

void putU64(std::string& packet, std::uint64_t value) {
    putBytes(packet, value, 8);
}

void putF32(std::string& packet, float value) {
    putU32(packet, std::bit_cast<std::uint32_t>(value));
}

void putF64(std::string& packet, double value) {
    putU64(packet, std::bit_cast<std::uint64_t>(value));
}

void putText(std::string& packet, std::string_view text, std::size_t width) {
    text = text.substr(0, width - 1);
    packet += text;
    packet.append(width - text.size(), '\0');
}

void sealPacket(std::string& packet) {
    std::string size;
    putU32(size, static_cast<std::uint32_t>(packet.size()));
    packet.replace(0, size.size(), size);
}

bool isSameName(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lowerAscii(x) == lowerAscii(y); });
}

}  // namespace standin
