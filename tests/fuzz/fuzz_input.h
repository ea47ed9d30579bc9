// fuzz_input.h - an input as a list of things to do: bytes are taken from the front, and an end in the middle reads as
// zeros, so that each prefix of an input is an input too.
#pragma once
#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

class FuzzInput {
  public:
    FuzzInput(const std::uint8_t* data, std::size_t size) : rest_(reinterpret_cast<const char*>(data), size) {}

    bool isEmpty() const { return rest_.empty(); }
    std::uint8_t byte() {
        if (rest_.empty()) return 0;
        const auto value = static_cast<std::uint8_t>(rest_.front());
        rest_.remove_prefix(1);
        return value;
    }
    bool flag() { return byte() % 2 != 0; }
    // Below limit, which is 1..256.
    std::uint32_t below(std::uint32_t limit) { return byte() % limit; }
    std::uint32_t number() {
        std::uint32_t value = 0;
        for (int i = 0; i < 4; i++) value = value << 8U | byte();
        return value;
    }
    // Any bits: infinity and what is not a number among them.
    double anyDouble() {
        const std::uint64_t high = number();
        return std::bit_cast<double>(high << 32U | number());
    }
    // Its length comes first, in one byte.
    std::string_view text() { return text(byte()); }
    std::string_view text(std::size_t bytes) {
        const auto taken = rest_.substr(0, bytes);
        rest_.remove_prefix(taken.size());
        return taken;
    }
    std::string_view rest() const { return rest_; }

  private:
    std::string_view rest_;
};

// A promise that must hold whatever the input is.
inline void require(bool holds, std::string_view promise, std::string_view detail = {}) {
    if (holds) return;
    std::fprintf(stderr, "broken: %.*s %.*s\n", static_cast<int>(promise.size()), promise.data(),
                 static_cast<int>(detail.size()), detail.data());
    std::abort();
}
