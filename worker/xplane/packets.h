// packets.h - X-Plane's datagrams as bytes: the beacon and the values that it sends, and the three things the worker
// says. [any] Pure functions. Numbers are little-endian; names are filled up with zeros.
#pragma once
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace xplane {

using Bytes = std::vector<std::uint8_t>;
using ByteView = std::span<const std::uint8_t>;

// How X-Plane makes itself known about once a second.
struct Beacon {
    std::int32_t program = 0;  // kProgramXPlane, or another of its maker's
    std::int32_t version = 0;  // 122015: 12.2.0
    std::uint32_t role = 0;    // kRoleMaster, or a helper that shows the same flight
    std::uint16_t port = 0;    // where it listens, not 0
    std::string computer;      // its name; ASCII, any other byte as "?"
};
inline constexpr std::int32_t kProgramXPlane = 1;
inline constexpr std::uint32_t kRoleMaster = 1;

// Nothing if it is none, or one of a later kind that says things in another way.
std::optional<Beacon> decodeBeacon(ByteView datagram);

// "X-Plane 12.2.0", "X-Plane 11.55"; without a number for a version that cannot be one.
std::string versionText(std::int32_t version);

struct IndexedValue {
    std::int32_t index = 0;  // the one that the request gave
    float value = 0.0f;      // may be NaN or infinite
};
struct Values {
    std::vector<IndexedValue> whole;
    bool endsInHalf = false;  // bytes too few for another value are left
};

// Nothing if it is no datagram of values.
std::optional<Values> decodeValues(ByteView datagram);

// Asks for a value so many times a second; 0 = not any more.
Bytes encodeRequest(std::int32_t timesPerSecond, std::int32_t index, std::string_view name);
Bytes encodeWrite(float value, std::string_view name);
Bytes encodeCommand(std::string_view name);

}  // namespace xplane
