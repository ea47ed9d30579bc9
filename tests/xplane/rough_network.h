// rough_network.h - a network at its worst, the same in every run: of a hundred datagrams so many get lost, come twice,
// or come after one that was sent later. The time comes in.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace xstandin {

// An IPv4 address and a port, both in this machine's byte order.
struct Endpoint {
    std::uint32_t address = 0;
    std::uint16_t port = 0;

    auto operator<=>(const Endpoint&) const = default;
};

// "127.0.0.1:49000".
std::string textOf(const Endpoint& endpoint);

// Which socket a datagram leaves by.
enum class Way : std::uint8_t { kAnswer, kStranger, kBeacon };

struct Datagram {
    Way way = Way::kAnswer;
    Endpoint peer;  // whom it goes to, or comes from; nobody in particular for a beacon
    std::string bytes;
};

// In percent of all datagrams.
struct Roughness {
    std::uint32_t lost = 0;
    std::uint32_t doubled = 0;
    std::uint32_t late = 0;
};

inline constexpr std::uint64_t kLateMs = 100;  // a late datagram that nothing overtakes comes after that

class RoughNetwork {
  public:
    explicit RoughNetwork(std::uint32_t seed) : state_(seed) {}

    // What arrives of what is sent now, and of what was held back before. Also to be called when nothing is sent.
    std::vector<Datagram> carry(std::vector<Datagram> sent, const Roughness& roughness, std::uint64_t nowMs);

  private:
    struct Late {
        Datagram datagram;
        std::uint64_t dueMs;
    };

    bool happens(std::uint32_t percent);

    std::uint32_t state_;
    std::vector<Late> late_;
};

}  // namespace xstandin
