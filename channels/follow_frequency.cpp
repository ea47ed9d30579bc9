#include "channels/follow_frequency.h"
#include <optional>
#include <string_view>
#include "channels/channel_name.h"

namespace {

// Memory that the host allocated, freed at the end of the scope.
template <class T>
class HostMemory {
  public:
    explicit HostMemory(const HostFunctions& host) : host_(host) {}
    ~HostMemory() {
        if (memory_ && host_.freeMemory) host_.freeMemory(memory_);
    }
    HostMemory(const HostMemory&) = delete;
    HostMemory& operator=(const HostMemory&) = delete;
    T** out() { return &memory_; }
    T* get() const { return memory_; }

  private:
    const HostFunctions& host_;
    T* memory_ = nullptr;
};

struct OwnPlace {
    std::uint16_t clientId = 0;
    std::uint64_t channel = 0;
};

std::optional<OwnPlace> findOwnPlace(const HostFunctions& host, std::uint64_t schid) {
    OwnPlace own;
    if (!host.getClientID || host.getClientID(schid, &own.clientId) != 0) return std::nullopt;
    if (!host.getChannelOfClient || host.getChannelOfClient(schid, own.clientId, &own.channel) != 0)
        return std::nullopt;
    return own;
}

bool carries(const HostFunctions& host, std::uint64_t schid, std::uint64_t channel, std::int32_t frequencyKHz) {
    if (!host.getChannelVariableAsString) return false;
    HostMemory<char> name(host);
    if (host.getChannelVariableAsString(schid, channel, kChannelName, name.out()) != 0 || !name.get()) return false;
    return channelNameCarries(name.get(), frequencyKHz);
}

// The first channel in the host's order that carries the frequency, 0 if none does; nothing if the host gives no list.
std::optional<std::uint64_t> findChannel(const HostFunctions& host, std::uint64_t schid, std::int32_t frequencyKHz) {
    HostMemory<std::uint64_t> list(host);
    if (host.getChannelList(schid, list.out()) != 0 || !list.get()) return std::nullopt;
    for (const std::uint64_t* channel = list.get(); *channel != 0; channel++)
        if (carries(host, schid, *channel, frequencyKHz)) return *channel;
    return 0;
}

MoveReport watchOutstandingMove(MoveTracker& tracker, std::uint64_t nowMs) {
    const std::int32_t error = tracker.moveError.exchange(0);
    const bool timedOut = nowMs - tracker.pendingSince >= kMoveTimeoutMs;
    if (error == 0 && !timedOut) return {MoveStage::kPending};
    tracker.pendingChannel = 0;
    if (error != 0) return {MoveStage::kRefused, error};
    return {MoveStage::kNotConfirmed};
}

MoveReport requestMove(MoveTracker& tracker, const HostFunctions& host, std::uint64_t schid, std::uint16_t clientId,
                       std::uint64_t channel, std::uint64_t nowMs) {
    tracker.moveError = 0;
    const char* returnCode = tracker.moveReturnCode.empty() ? nullptr : tracker.moveReturnCode.c_str();
    if (!host.requestClientMove || host.requestClientMove(schid, clientId, channel, "", returnCode) != 0)
        return {MoveStage::kNotRequested};
    tracker.pendingSchid = schid;
    tracker.pendingChannel = channel;
    tracker.pendingSince = nowMs;
    return {MoveStage::kRequested};
}

}  // namespace

MoveReport followFrequency(MoveTracker& tracker, const HostFunctions& host, const Clock& clock, std::uint64_t schid,
                           std::int32_t frequencyKHz) {
    if (schid == 0 || !host.getChannelList) return {};
    const auto own = findOwnPlace(host, schid);
    if (!own) return {};
    const auto target = findChannel(host, schid, frequencyKHz);
    if (!target) return {};
    if (*target == 0) return {MoveStage::kNoChannel};
    if (*target == own->channel) {
        tracker.pendingChannel = 0;
        return {MoveStage::kConfirmed};
    }
    const std::uint64_t nowMs = clock.tickMs();
    if (tracker.pendingSchid == schid && tracker.pendingChannel != 0) return watchOutstandingMove(tracker, nowMs);
    return requestMove(tracker, host, schid, own->clientId, *target, nowMs);
}

bool onServerError(MoveTracker& tracker, const char* returnCode, std::int32_t error) {
    if (!returnCode || tracker.moveReturnCode.empty()) return false;
    if (std::string_view(returnCode) != tracker.moveReturnCode) return false;
    tracker.moveError = error;
    return true;
}
