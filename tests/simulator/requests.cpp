#include "tests/simulator/requests.h"
#include <algorithm>
#include <iterator>
#include "tests/simulator/wire.h"

namespace standin {

namespace {

// clang-format off
constexpr RequestKind kRequestKinds[] = {
    {kOpen,                       296, false, "Open"},
    {kMapClientEvent,             276, false, "MapClientEventToSimEvent"},
    {kTransmitClientEvent,         36, false, "TransmitClientEvent"},
    {kSetSystemEventState,         24, false, "SetSystemEventState"},
    {kAddToNotificationGroup,      28, false, "AddClientEventToNotificationGroup"},
    {kRemoveClientEvent,           24, false, "RemoveClientEvent"},
    {kSetGroupPriority,            24, false, "SetNotificationGroupPriority"},
    {kClearNotificationGroup,      20, false, "ClearNotificationGroup"},
    {kAddToDataDefinition,        544, false, "AddToDataDefinition"},
    {kClearDataDefinition,         20, false, "ClearDataDefinition"},
    {kRequestData,                 48, false, "RequestDataOnSimObject"},
    {kSetData,                     36, true,  "SetDataOnSimObject"},
    {kSubscribeToSystemEvent,     276, false, "SubscribeToSystemEvent"},
    {kUnsubscribeFromSystemEvent,  20, false, "UnsubscribeFromSystemEvent"},
    {kRequestSystemState,         276, false, "RequestSystemState"},
    {kTransmitClientEventEx1,      52, false, "TransmitClientEvent_EX1"},
};
// clang-format on

}  // namespace

const RequestKind* findRequestKind(std::uint32_t opcode) {
    const auto* row = std::find_if(std::begin(kRequestKinds), std::end(kRequestKinds),
                                   [&](const RequestKind& kind) { return (kOpcodeMark | kind.opcode) == opcode; });
    return row == std::end(kRequestKinds) ? nullptr : row;
}

RequestHeader readHeader(std::string_view packet) {
    return {u32At(packet, 0), u32At(packet, 4), u32At(packet, 8), u32At(packet, 12)};
}

OpenRequest readOpen(std::string_view packet) {
    return {textAt(packet, 16, kNameBytes),
            textAt(packet, 277, 3),
            {u32At(packet, 280), u32At(packet, 284), u32At(packet, 288), u32At(packet, 292)}};
}

NamedRequest readNamed(std::string_view packet) {
    return {u32At(packet, 16), textAt(packet, 20, kNameBytes)};
}

EventRequest readTransmit(std::string_view packet) {
    return {u32At(packet, 16), u32At(packet, 20), u32At(packet, 24), u32At(packet, 28), u32At(packet, 32)};
}

EventRequest readTransmitEx1(std::string_view packet) {
    return {u32At(packet, 16), u32At(packet, 20), u32At(packet, 32), u32At(packet, 24), u32At(packet, 28)};
}

DatumRequest readDatum(std::string_view packet) {
    return {u32At(packet, 16),
            textAt(packet, 20, kNameBytes),
            textAt(packet, 276, kNameBytes),
            u32At(packet, 532),
            f32At(packet, 536),
            u32At(packet, 540)};
}

DataRequest readDataRequest(std::string_view packet) {
    return {u32At(packet, 16), u32At(packet, 20), u32At(packet, 24), u32At(packet, 28),
            u32At(packet, 32), u32At(packet, 36), u32At(packet, 40), u32At(packet, 44)};
}

}  // namespace standin
