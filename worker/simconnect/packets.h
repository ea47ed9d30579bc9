// packets.h - SimConnect packets as bytes: everything the worker says, and what it listens to.
// [any] Pure functions. Numbers are little-endian, texts of fixed width and filled up with zeros.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace simconnect {

using Bytes = std::vector<std::uint8_t>;
using ByteView = std::span<const std::uint8_t>;

inline constexpr std::size_t kReceivedHeaderBytes = 12;  // size, protocol, id

// How a client introduces itself; a simulator may know only some of them.
struct ClientVersion {
    std::uint32_t protocol = 0;
    std::array<std::uint8_t, 3> alias{};
    std::uint32_t major = 0;
    std::uint32_t minor = 0;
    std::uint32_t buildMajor = 0;
    std::uint32_t buildMinor = 0;
};

// In the order to try. The packets that follow differ only in the protocol's number.
inline constexpr std::array<ClientVersion, 3> kClientVersions = {{
    {5, {'H', 'K', 0}, 11, 0, 62651, 3},     // MSFS 2020, accepted by 2024 as well
    {6, {'R', 'S', 0}, 12, 2, 282174, 999},  // MSFS 2024
    {4, {'X', 'S', 'F'}, 10, 0, 61259, 0},   // the generation before
}};

// What every sent packet carries: the version spoken and the number that an exception refers to.
struct Stamp {
    std::uint32_t protocol = 0;
    std::uint32_t sendId = 0;  // counts the packets of a connection from 1
};

enum class DataType : std::uint32_t { kInt32 = 1, kFloat64 = 4 };
enum class Period : std::uint32_t { kNever = 0, kVisualFrame = 2, kSecond = 4 };

// Of the user's own aircraft.
struct DataRequest {
    std::uint32_t requestId = 0;
    std::uint32_t defineId = 0;
    Period period = Period::kNever;
    bool onlyChanges = false;
    std::uint32_t skippedPeriods = 0;  // between two replies
};

Bytes encodeOpen(Stamp stamp, const ClientVersion& version, std::string_view application);
Bytes encodeMapEvent(Stamp stamp, std::uint32_t eventId, std::string_view keyEvent);
Bytes encodeKeyEvent(Stamp stamp, std::uint32_t eventId, std::uint32_t data);
Bytes encodeVariable(Stamp stamp, std::uint32_t defineId, std::string_view name, std::string_view units, DataType type);
Bytes encodeDataRequest(Stamp stamp, const DataRequest& request);
Bytes encodeSubscribe(Stamp stamp, std::uint32_t eventId, std::string_view systemEvent);
Bytes encodeStateRequest(Stamp stamp, std::uint32_t requestId, std::string_view state);

// Received packets. Texts are ASCII, any other byte as "?".
struct ExceptionPacket {
    std::uint32_t code = 0;
    std::uint32_t sendId = 0;  // 0 = the simulator does not say
};
struct OpenPacket {
    std::string application;
    std::uint32_t major = 0;  // of the simulator
    std::uint32_t minor = 0;
};
struct QuitPacket {};
struct EventPacket {
    std::uint32_t eventId = 0;
    std::uint32_t data = 0;
    std::string file;  // only for events that carry a file name
};
struct DataPacket {
    std::uint32_t requestId = 0;
    ByteView values;  // inside the packet
};
struct StatePacket {
    std::uint32_t requestId = 0;
    std::uint32_t value = 0;
};
struct OtherPacket {};  // an id we do not need, or do not know
struct BrokenPacket {   // too short for what its id says it is
    std::uint32_t id = 0;
};
using Received = std::variant<OtherPacket, BrokenPacket, ExceptionPacket, OpenPacket, QuitPacket, EventPacket,
                              DataPacket, StatePacket>;

Received decodePacket(ByteView packet);

// The first value of that type; nothing if there are too few bytes.
std::optional<double> decodeValue(ByteView values, DataType type);

// The size that a packet's first four bytes declare.
std::uint32_t declaredSize(ByteView bytes);

// "NAME_UNRECOGNIZED" for 7; "unknown" beyond the list.
std::string_view exceptionName(std::uint32_t code);

}  // namespace simconnect
