#include "worker/simconnect/packets.h"
#include <algorithm>
#include <bit>

namespace simconnect {

namespace {

enum Opcode : std::uint32_t {
    kOpen = 0x01,
    kMapClientEvent = 0x04,
    kTransmitClientEvent = 0x05,
    kAddToDataDefinition = 0x0C,
    kRequestData = 0x0E,
    kSubscribeToSystemEvent = 0x17,
    kRequestSystemState = 0x35,
};

enum ReceivedId : std::uint32_t {
    kException = 1,
    kOpened = 2,
    kQuit = 3,
    kEvent = 4,
    kEventFile = 6,
    kObjectData = 8,
    kSystemState = 15,
};

constexpr std::uint32_t kOpcodeMark = 0xF0000000u;
constexpr std::uint32_t kUserAircraft = 0;
constexpr std::uint32_t kUnused = 0xFFFFFFFFu;
constexpr std::uint32_t kHighestPriority = 1;
constexpr std::uint32_t kGroupIsPriority = 0x10;
constexpr std::uint32_t kChangedFlag = 1;
constexpr std::size_t kTextBytes = 256;
constexpr std::size_t kFileBytes = 260;

// Writes a packet from its first byte to its last; the size goes in at the end.
class Writer {
  public:
    Writer(Stamp stamp, Opcode opcode, std::size_t size) {
        bytes_.reserve(size);
        number(0).number(stamp.protocol).number(kOpcodeMark | opcode).number(stamp.sendId);
    }
    Writer& number(std::uint32_t value) {
        for (int shift = 0; shift < 32; shift += 8) bytes_.push_back(static_cast<std::uint8_t>(value >> shift));
        return *this;
    }
    // Cut so that a zero always ends it.
    Writer& text(std::string_view text) {
        const auto end = bytes_.size() + kTextBytes;
        for (const char c : text.substr(0, kTextBytes - 1)) bytes_.push_back(static_cast<std::uint8_t>(c));
        bytes_.resize(end);
        return *this;
    }
    Writer& byte(std::uint8_t value) {
        bytes_.push_back(value);
        return *this;
    }
    Bytes done() {
        for (std::size_t i = 0; i < 4; i++) bytes_[i] = static_cast<std::uint8_t>(bytes_.size() >> (8 * i));
        return std::move(bytes_);
    }

  private:
    Bytes bytes_;
};

std::uint64_t littleEndian(ByteView bytes) {
    std::uint64_t value = 0;
    for (std::size_t i = bytes.size(); i > 0; i--) value = value << 8 | bytes[i - 1];
    return value;
}

// 0 beyond the packet's end: only fields that a shorter packet may lack are read without checking the length first.
std::uint32_t numberAt(ByteView packet, std::size_t offset) {
    return offset + 4 <= packet.size() ? static_cast<std::uint32_t>(littleEndian(packet.subspan(offset, 4))) : 0;
}

std::string textAt(ByteView packet, std::size_t offset, std::size_t width) {
    std::string text;
    const auto end = std::min(packet.size(), offset + width);
    for (auto i = offset; i < end && packet[i] != 0; i++) {
        text += packet[i] >= 0x20 && packet[i] < 0x7f ? static_cast<char>(packet[i]) : '?';
    }
    return text;
}

// The least length of the packets that are read; 0 for all others.
std::size_t leastBytes(std::uint32_t id) {
    switch (id) {
        case kException:
            return 20;
        case kOpened:
            return 268;
        case kEvent:
        case kEventFile:
            return 24;
        case kObjectData:
            return 40;
        case kSystemState:
            return 20;
        default:
            return 0;
    }
}

}  // namespace

Bytes encodeOpen(Stamp stamp, const ClientVersion& version, std::string_view application) {
    Writer packet(stamp, kOpen, 296);
    packet.text(application).number(0).byte(0);
    for (const auto letter : version.alias) packet.byte(letter);
    packet.number(version.major).number(version.minor).number(version.buildMajor).number(version.buildMinor);
    return packet.done();
}

Bytes encodeMapEvent(Stamp stamp, std::uint32_t eventId, std::string_view keyEvent) {
    return Writer(stamp, kMapClientEvent, 276).number(eventId).text(keyEvent).done();
}

Bytes encodeKeyEvent(Stamp stamp, std::uint32_t eventId, std::uint32_t data) {
    Writer packet(stamp, kTransmitClientEvent, 36);
    return packet.number(kUserAircraft)
        .number(eventId)
        .number(data)
        .number(kHighestPriority)
        .number(kGroupIsPriority)
        .done();
}

Bytes encodeVariable(Stamp stamp, std::uint32_t defineId, std::string_view name, std::string_view units,
                     DataType type) {
    Writer packet(stamp, kAddToDataDefinition, 544);
    packet.number(defineId).text(name).text(units).number(static_cast<std::uint32_t>(type));
    constexpr std::uint32_t kAnyChange = 0;  // an epsilon of 0.0f
    return packet.number(kAnyChange).number(kUnused).done();
}

Bytes encodeDataRequest(Stamp stamp, const DataRequest& request) {
    Writer packet(stamp, kRequestData, 48);
    packet.number(request.requestId).number(request.defineId).number(kUserAircraft);
    packet.number(static_cast<std::uint32_t>(request.period)).number(request.onlyChanges ? kChangedFlag : 0);
    constexpr std::uint32_t kAtOnce = 0, kForever = 0;
    return packet.number(kAtOnce).number(request.skippedPeriods).number(kForever).done();
}

Bytes encodeSubscribe(Stamp stamp, std::uint32_t eventId, std::string_view systemEvent) {
    return Writer(stamp, kSubscribeToSystemEvent, 276).number(eventId).text(systemEvent).done();
}

Bytes encodeStateRequest(Stamp stamp, std::uint32_t requestId, std::string_view state) {
    return Writer(stamp, kRequestSystemState, 276).number(requestId).text(state).done();
}

Received decodePacket(ByteView packet) {
    const auto id = numberAt(packet, 8);
    if (packet.size() < std::max(leastBytes(id), kReceivedHeaderBytes)) return BrokenPacket{id};
    switch (id) {
        case kException:
            return ExceptionPacket{numberAt(packet, 12), numberAt(packet, 16)};
        case kOpened:
            return OpenPacket{textAt(packet, 12, kTextBytes), numberAt(packet, 268), numberAt(packet, 272)};
        case kQuit:
            return QuitPacket{};
        case kEvent:
            return EventPacket{numberAt(packet, 16), numberAt(packet, 20), {}};
        case kEventFile:
            return EventPacket{numberAt(packet, 16), numberAt(packet, 20), textAt(packet, 24, kFileBytes)};
        case kObjectData:
            return DataPacket{numberAt(packet, 12), packet.subspan(40)};
        case kSystemState:
            return StatePacket{numberAt(packet, 12), numberAt(packet, 16)};
        default:
            return OtherPacket{};
    }
}

std::optional<double> decodeValue(ByteView values, DataType type) {
    const std::size_t width = type == DataType::kInt32 ? 4 : 8;
    if (values.size() < width) return std::nullopt;
    const auto bits = littleEndian(values.first(width));
    if (type == DataType::kInt32) return static_cast<std::int32_t>(static_cast<std::uint32_t>(bits));
    return std::bit_cast<double>(bits);
}

std::uint32_t declaredSize(ByteView bytes) {
    return numberAt(bytes, 0);
}

std::string_view exceptionName(std::uint32_t code) {
    // clang-format off
    static constexpr std::string_view kNames[] = {
        "NONE", "ERROR", "SIZE_MISMATCH", "UNRECOGNIZED_ID", "UNOPENED",
        "VERSION_MISMATCH", "TOO_MANY_GROUPS", "NAME_UNRECOGNIZED", "TOO_MANY_EVENT_NAMES", "EVENT_ID_DUPLICATE",
        "TOO_MANY_MAPS", "TOO_MANY_OBJECTS", "TOO_MANY_REQUESTS", "WEATHER_INVALID_PORT", "WEATHER_INVALID_METAR",
        "WEATHER_UNABLE_TO_GET_OBSERVATION", "WEATHER_UNABLE_TO_CREATE_STATION", "WEATHER_UNABLE_TO_REMOVE_STATION",
        "INVALID_DATA_TYPE", "INVALID_DATA_SIZE",
        "DATA_ERROR", "INVALID_ARRAY", "CREATE_OBJECT_FAILED", "LOAD_FLIGHTPLAN_FAILED",
        "OPERATION_INVALID_FOR_OBJECT_TYPE",
        "ILLEGAL_OPERATION", "ALREADY_SUBSCRIBED", "INVALID_ENUM", "DEFINITION_ERROR", "DUPLICATE_ID",
        "DATUM_ID", "OUT_OF_BOUNDS", "ALREADY_CREATED", "OBJECT_OUTSIDE_REALITY_BUBBLE", "OBJECT_CONTAINER",
        "OBJECT_AI", "OBJECT_ATC", "OBJECT_SCHEDULE", "JETWAY_DATA", "ACTION_NOT_FOUND",
        "NOT_AN_ACTION", "INCORRECT_ACTION_PARAMS", "GET_INPUT_EVENT_FAILED", "SET_INPUT_EVENT_FAILED",
        "EVENT_NAME_RESERVED",
        "INTERNAL", "CAMERA_API",
    };
    // clang-format on
    static_assert(std::size(kNames) == 47);
    return code < std::size(kNames) ? kNames[code] : "unknown";
}

}  // namespace simconnect
