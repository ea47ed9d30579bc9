#include "audio/tail_player.h"
#include "base/log_line.h"

namespace {

constexpr std::size_t kPlayedLineBytes = 128;
constexpr std::size_t kThrottledLineBytes = 160;

bool isOwn(const HostFunctions& host, std::uint64_t schid, std::uint16_t clientId) {
    std::uint16_t ownId = 0;
    if (host.getClientID && host.getClientID(schid, &ownId) != 0) ownId = 0;
    return clientId == ownId;
}

void countSuppressed(TailPlayer& player, std::uint32_t now) {
    TailThrottle& throttle = player.throttle;
    throttle.suppressed++;
    if (now - throttle.lastThrottledLog < kTailLogSpacingMs) return;
    logToHost(player.host,
              "Corvalis tail throttled: " + std::to_string(throttle.suppressed) + " calls suppressed in 1s",
              kThrottledLineBytes);
    throttle.suppressed = 0;
    throttle.lastThrottledLog = now;
}

void logPlayed(TailPlayer& player, bool own, std::uint32_t now) {
    if (now - player.throttle.lastPlayedLog < kTailLogSpacingMs) return;
    logToHost(player.host, own ? "Corvalis tail played (own=1)" : "Corvalis tail played (own=0)", kPlayedLineBytes);
    player.throttle.lastPlayedLog = now;
}

}  // namespace

void drainTails(TalkTracker& tracker, TailPlayer& player) {
    for (const Tail& tail : takeTails(tracker)) playTail(player, tail.schid, tail.clientId);
}

void playTail(TailPlayer& player, std::uint64_t schid, std::uint16_t clientId) {
    if (schid == 0 || player.tailPath.empty() || !player.host.playWaveFile) return;
    const Settings settings = copySettings(player.settings);
    if (!settings.master) return;
    const bool own = isOwn(player.host, schid, clientId);
    if (!(own ? settings.tail_self : settings.tail_others)) return;

    const auto now = static_cast<std::uint32_t>(player.clock.tickMs());
    if (now - player.throttle.lastPlay < kTailSpacingMs) {
        countSuppressed(player, now);
        return;
    }
    player.throttle.lastPlay = now;
    logPlayed(player, own, now);
    player.host.playWaveFile(schid, player.tailPath.c_str());
}
