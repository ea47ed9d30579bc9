// requests.h - what a client sends: every packet begins with 16 bytes of header (size, the client's protocol version,
// 0xF0000000 | opcode, the packet's number on this connection).
#pragma once
#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace standin {

inline constexpr std::size_t kRequestHeaderBytes = 16;
inline constexpr std::size_t kMaxRequestBytes = 65'536;  // far more than any request here has
inline constexpr std::uint32_t kOpcodeMark = 0xF0000000U;

enum Opcode : std::uint32_t {
    kOpen = 0x01,
    kMapClientEvent = 0x04,
    kTransmitClientEvent = 0x05,
    kSetSystemEventState = 0x06,
    kAddToNotificationGroup = 0x07,
    kRemoveClientEvent = 0x08,
    kSetGroupPriority = 0x09,
    kClearNotificationGroup = 0x0A,
    kAddToDataDefinition = 0x0C,
    kClearDataDefinition = 0x0D,
    kRequestData = 0x0E,
    kSetData = 0x10,
    kSubscribeToSystemEvent = 0x17,
    kUnsubscribeFromSystemEvent = 0x18,
    kRequestSystemState = 0x35,
    kTransmitClientEventEx1 = 0x44,
};

struct RequestKind {
    Opcode opcode;
    std::size_t bytes;  // header included
    bool isOpenEnded;   // bytes or more: data follows
    const char* name;
};

// The row of an opcode; null if this simulator does not know it.
const RequestKind* findRequestKind(std::uint32_t opcode);

struct RequestHeader {
    std::uint32_t bytes = 0;
    std::uint32_t version = 0;
    std::uint32_t opcode = 0;  // with its mark
    std::uint32_t sendId = 0;
};
RequestHeader readHeader(std::string_view packet);  // of a packet with at least kRequestHeaderBytes

// The bodies. Each reader expects a packet of the right size for its kind.
struct OpenRequest {
    std::string name;
    std::string alias;                       // "HK", "RS" or "XSF"; not judged
    std::array<std::uint32_t, 4> version{};  // major, minor, build major, build minor; not judged
};
OpenRequest readOpen(std::string_view packet);

struct NamedRequest {  // an id and a name: MapClientEvent, SubscribeToSystemEvent, RequestSystemState
    std::uint32_t id = 0;
    std::string name;
};
NamedRequest readNamed(std::string_view packet);

struct EventRequest {
    std::uint32_t objectId = 0;
    std::uint32_t eventId = 0;
    std::uint32_t data = 0;
    std::uint32_t group = 0;
    std::uint32_t flags = 0;
};
EventRequest readTransmit(std::string_view packet);
EventRequest readTransmitEx1(std::string_view packet);  // the same fields in another order, followed by data

struct DatumRequest {
    std::uint32_t defineId = 0;
    std::string name;
    std::string units;
    std::uint32_t type = 0;
    float epsilon = 0.0f;
    std::uint32_t datumId = 0;
};
DatumRequest readDatum(std::string_view packet);

struct DataRequest {
    std::uint32_t requestId = 0;
    std::uint32_t defineId = 0;
    std::uint32_t objectId = 0;
    std::uint32_t period = 0;
    std::uint32_t flags = 0;
    std::uint32_t origin = 0;    // periods before the first reply
    std::uint32_t interval = 0;  // periods skipped between replies
    std::uint32_t limit = 0;     // replies; 0 = no end
};
DataRequest readDataRequest(std::string_view packet);

}  // namespace standin
