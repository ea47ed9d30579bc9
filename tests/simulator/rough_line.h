// rough_line.h - a connection at its worst, the same on every run: packets joined and cut anywhere, the end of one kept
// back until the next frame, unknown ones and a very long one in between. What a client must make of it is unchanged.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace standin {

class RoughLine {
  public:
    explicit RoughLine(std::uint32_t seed) : state_(seed) {}

    // The chunks to write, one call each, for the packets of this frame and what was kept back from the last.
    std::vector<std::string> cut(const std::vector<std::string>& packets, std::uint32_t protocol);

  private:
    std::uint32_t next(std::uint32_t below);
    std::string strangePacket(std::uint32_t protocol);

    std::uint32_t state_;
    std::uint32_t strange_ = 0;  // packets so far
    std::string kept_;
};

// bytes of noise; the first four are no possible length of a packet.
std::string noise(std::uint32_t& state, std::size_t bytes);

}  // namespace standin
