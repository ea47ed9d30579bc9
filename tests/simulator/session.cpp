#include "tests/simulator/session.h"
#include <algorithm>
#include <array>
#include <utility>
#include "tests/simulator/wire.h"

namespace standin {

namespace {

constexpr std::array<std::string_view, 12> kSystemEvents = {
    "Sim",          "SimStart",        "SimStop", "Pause", "Pause_EX1", "AircraftLoaded",
    "FlightLoaded", "PositionChanged", "Crashed", "1sec",  "4sec",      "6Hz"};
constexpr std::string_view kFrameEvent = "Frame";

bool isSystemEvent(std::string_view name) {
    return isSameName(name, kFrameEvent) || std::any_of(kSystemEvents.begin(), kSystemEvents.end(),
                                                        [&](std::string_view row) { return isSameName(row, name); });
}

bool isUser(std::uint32_t objectId) {
    return objectId == 0 || objectId == kUserObject;
}

}  // namespace

Session::Session(SimulatorDesk& desk, const Personality& personality) : desk_(desk), personality_(personality) {}

void Session::receive(std::string_view bytes) {
    input_ += bytes;
    std::size_t done = 0;
    while (!isBroken_ && input_.size() - done >= 4) {
        const std::size_t size = u32At(input_, done);
        if (size < kRequestHeaderBytes || size > kMaxRequestBytes) {
            desk_.report("dropped: a packet of " + std::to_string(size) + " bytes");
            isBroken_ = true;
        } else if (input_.size() - done < size) {
            break;
        } else {
            handle(std::string_view(input_).substr(done, size));
            done += size;
        }
    }
    input_.erase(0, done);
}

std::vector<std::string> Session::takePackets() {
    return std::exchange(output_, {});
}

void Session::handle(std::string_view packet) {
    header_ = readHeader(packet);
    const RequestKind* kind = findRequestKind(header_.opcode);
    if (!kind) return refuse(kUnrecognizedId, kUnknown);
    const bool fits = kind->isOpenEnded ? packet.size() >= kind->bytes : packet.size() == kind->bytes;
    if (!fits) return refuse(kSizeMismatch, kUnknown, kind->name);
    if (!isOpen() && kind->opcode != kOpen) return refuse(kUnopened, kUnknown, kind->name);
    dispatch(kind->opcode, packet);
}

void Session::dispatch(Opcode opcode, std::string_view packet) {
    switch (opcode) {
        case kOpen:
            return open(packet);
        case kMapClientEvent:
            return mapEvent(packet);
        case kTransmitClientEvent:
            return transmit(readTransmit(packet));
        case kTransmitClientEventEx1:
            return transmit(readTransmitEx1(packet));
        case kSetSystemEventState: {
            const auto event = systemEvents_.find(u32At(packet, 16));
            if (event == systemEvents_.end()) return refuse(kUnrecognizedId, 1);
            event->second.isOn = u32At(packet, 20) != 0;
            return;
        }
        case kAddToNotificationGroup:
            return addToGroup(packet);
        case kRemoveClientEvent:
            return removeFromGroup(packet);
        case kSetGroupPriority:
            return groups_.contains(u32At(packet, 16)) ? void() : refuse(kUnrecognizedId, 1);
        case kClearNotificationGroup:
            return groups_.erase(u32At(packet, 16)) > 0 ? void() : refuse(kUnrecognizedId, 1);
        case kAddToDataDefinition:
            return define(packet);
        case kClearDataDefinition:
            return data_.clearDefinition(u32At(packet, 16)) ? void() : refuse(kUnrecognizedId, 1);
        case kRequestData:
            return requestData(packet);
        case kSetData:
            return refuseData(packet);
        case kSubscribeToSystemEvent:
            return subscribe(packet);
        case kUnsubscribeFromSystemEvent:
            return systemEvents_.erase(u32At(packet, 16)) > 0 ? void() : refuse(kUnrecognizedId, 1);
        case kRequestSystemState:
            return answerState(packet);
    }
}

void Session::open(std::string_view packet) {
    const auto request = readOpen(packet);
    if (header_.version < personality_.oldestProtocol || header_.version > personality_.edition->protocol)
        return refuse(kVersionMismatch, kUnknown, "version " + std::to_string(header_.version));
    protocol_ = personality_.edition->protocol;
    output_.push_back(openAnswer(*personality_.edition));
    desk_.onOpened(request.name, header_.version);
}

void Session::mapEvent(std::string_view packet) {
    const auto request = readNamed(packet);
    const KeyEvent* event = request.name.empty() ? nullptr : findKeyEvent(request.name);
    if (!event && !request.name.empty()) return refuse(kNameUnrecognized, 2, request.name);
    if (events_.contains(request.id)) return refuse(kEventIdDuplicate, 1, request.name);
    events_[request.id] = event;
}

void Session::transmit(const EventRequest& request) {
    const auto event = events_.find(request.eventId);
    if (event == events_.end()) return refuse(kUnrecognizedId, 2, "event " + std::to_string(request.eventId));
    if (!isUser(request.objectId)) return refuse(kUnrecognizedId, 1, "object " + std::to_string(request.objectId));
    if (event->second) desk_.onKeyEvent(*event->second, request.data);
}

void Session::addToGroup(std::string_view packet) {
    const auto group = u32At(packet, 16);
    const auto event = u32At(packet, 20);
    if (!events_.contains(event)) return refuse(kUnrecognizedId, 2);
    auto& members = groups_[group];
    if (std::find(members.begin(), members.end(), event) == members.end()) members.push_back(event);
}

void Session::removeFromGroup(std::string_view packet) {
    const auto group = groups_.find(u32At(packet, 16));
    if (group == groups_.end()) return refuse(kUnrecognizedId, 1);
    if (std::erase(group->second, u32At(packet, 20)) == 0) refuse(kUnrecognizedId, 2);
}

void Session::define(std::string_view packet) {
    const auto request = readDatum(packet);
    const auto title = request.name + " in " + request.units;
    switch (data_.define(request)) {
        case VariableProblem::kNone:
            return;
        case VariableProblem::kName:
            return refuse(kNameUnrecognized, 2, title);
        case VariableProblem::kUnits:
            return refuse(kNameUnrecognized, 3, title);
        case VariableProblem::kType:
            return refuse(kInvalidDataType, 4, title);
    }
}

void Session::requestData(std::string_view packet) {
    const auto request = readDataRequest(packet);
    if (!data_.isDefined(request.defineId)) return refuse(kUnrecognizedId, 2);
    if (!isUser(request.objectId)) return refuse(kUnrecognizedId, 3);
    if (request.period > kSecond) return refuse(kInvalidEnum, 4);
    data_.request(request);
}

// No variable here may be set.
void Session::refuseData(std::string_view packet) {
    if (!data_.isDefined(u32At(packet, 16))) return refuse(kUnrecognizedId, 1);
    const std::size_t bytes = std::size_t{u32At(packet, 28)} * u32At(packet, 32);
    if (bytes != packet.size() - 36) return refuse(kInvalidDataSize, 5);
    refuse(kDataError, kUnknown, "a variable that is not settable");
}

// The states that last are reported at once.
void Session::subscribe(std::string_view packet) {
    const auto request = readNamed(packet);
    const bool isLacking = personality_.lacksPauseKinds && isSameName(request.name, "Pause_EX1");
    if (isLacking || !isSystemEvent(request.name)) return refuse(kNameUnrecognized, 2, request.name);
    if (systemEvents_.contains(request.id)) return refuse(kAlreadySubscribed, 1, request.name);
    systemEvents_[request.id] = {request.name, true};
    const auto tell = [&](std::uint32_t data) {
        output_.push_back(eventAnswer(protocol_, kUnknown, request.id, data));
    };
    if (isSameName(request.name, "Sim")) tell(desk_.isFlightRunning());
    if (isSameName(request.name, "Pause")) tell(desk_.isPaused());
    if (isSameName(request.name, "Pause_EX1")) tell(desk_.isPaused() ? kWholePause : 0);
}

void Session::answerState(std::string_view packet) {
    const auto request = readNamed(packet);
    const auto tell = [&](std::uint32_t integer, std::string_view text) {
        output_.push_back(systemStateAnswer(protocol_, request.id, integer, text));
    };
    if (isSameName(request.name, "Sim")) return tell(desk_.isFlightRunning(), "");
    if (isSameName(request.name, "AircraftLoaded")) return tell(0, desk_.aircraft().file);
    if (isSameName(request.name, "DialogMode")) return tell(0, "");
    if (isSameName(request.name, "FlightLoaded")) return tell(0, "flights\\other\\MainMenu.FLT");
    if (isSameName(request.name, "FlightPlan")) return tell(0, "");
    refuse(kNameUnrecognized, 2, request.name);
}

void Session::refuse(ExceptionCode code, std::uint32_t parameter, const std::string& what) {
    output_.push_back(exceptionAnswer(personality_.edition->protocol, code, header_.sendId, parameter));
    desk_.report("refused packet " + std::to_string(header_.sendId) + " with exception " + std::to_string(code) +
                 (what.empty() ? "" : ": " + what));
}

void Session::raiseSystemEvent(std::string_view name, std::uint32_t data) {
    for (const auto& [id, event] : systemEvents_) {
        if (event.isOn && isSameName(event.name, name)) output_.push_back(eventAnswer(protocol_, kUnknown, id, data));
    }
}

void Session::raiseFileEvent(std::string_view name, std::string_view file) {
    for (const auto& [id, event] : systemEvents_) {
        if (event.isOn && isSameName(event.name, name)) output_.push_back(filenameAnswer(protocol_, id, file));
    }
}

void Session::raiseFrameEvent(float framesPerSecond) {
    for (const auto& [id, event] : systemEvents_) {
        if (event.isOn && isSameName(event.name, kFrameEvent))
            output_.push_back(frameAnswer(protocol_, id, framesPerSecond));
    }
}

void Session::hear(const KeyEvent& event, std::uint32_t data) {
    for (const auto& [group, members] : groups_) {
        for (const auto id : members) {
            if (events_[id] == &event) output_.push_back(eventAnswer(protocol_, group, id, data));
        }
    }
}

void Session::endFrame(const Frame& frame) {
    for (auto& packet : data_.endFrame(frame, desk_.aircraft(), protocol_)) output_.push_back(std::move(packet));
}

void Session::quit() {
    if (isOpen()) output_.push_back(quitAnswer(protocol_));
}

}  // namespace standin
