// rough_line.h - a connection at its worst, the same in every run: packets joined and cut anywhere, the end of one kept
// until the next frame, unknown packets and a very long one in between. The meaning for the client is unchanged.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace standin {

class RoughLine {
  public:
    explicit RoughLine(std::uint32_t seed) : state_(seed) {}

    // The chunks to write, one per call, for the packets of this frame and what was kept from the last.
    std::vector<std::string> cut(const std::vector<std::string>& packets, std::uint32_t protocol);

  private:
    std::uint32_t next(std::uint32_t below);
    std::string strangePacket(std::uint32_t protocol);

    std::uint32_t state_;
    std::uint32_t strange_ = 0;  // packets so far
    std::string kept_;
};

// bytes of noise; the first four are never a possible packet length.
std::string noise(std::uint32_t& state, std::size_t bytes);

}  // namespace standin
