#include "tests/client/circuit/host_crowd_win.h"
#include "tests/client/circuit/flight_plan.h"
#include "tests/client/test_machine_win.h"

namespace {

constexpr int kBlockSamples = 480;  // 10 ms at 48 kHz

}  // namespace

HostCrowd::HostCrowd() {
    members_[0].thread =
        std::thread([this] { live(members_[0], [this](const PluginExports& plugin) { playVoices(plugin, 20); }); });
    members_[1].thread =
        std::thread([this] { live(members_[1], [this](const PluginExports& plugin) { playVoices(plugin, 30); }); });
    members_[2].thread =
        std::thread([this] { live(members_[2], [this](const PluginExports& plugin) { tellEvents(plugin); }); });
}

HostCrowd::~HostCrowd() {
    rest();
    isLiving_ = false;
    for (Member& member : members_) member.thread.join();
}

void HostCrowd::work(const PluginExports& plugin) {
    rest();
    plugin_ = plugin;
    work_ = &plugin_;
}

void HostCrowd::rest() {
    work_ = nullptr;
    for (const Member& member : members_) {
        while (member.isCalling) pauseBriefly();
    }
}

// A thread says that it calls before it looks whether it may: so whoever forbids it, and then sees it not calling,
// knows that it will not.
template <class Call>
void HostCrowd::live(Member& member, const Call& call) {
    while (isLiving_) {
        member.isCalling = true;
        if (const PluginExports* plugin = work_) {
            call(*plugin);
            calls_++;
        }
        member.isCalling = false;
        pauseBriefly();
    }
}

void HostCrowd::playVoices(const PluginExports& plugin, std::uint16_t speaker) {
    short samples[2 * kBlockSamples];
    for (int i = 0; i < 2 * kBlockSamples; i++) samples[i] = static_cast<short>(((i * 137) % 8000) - 4000);
    for (std::uint16_t i = 0; i < 4; i++)
        plugin.onEditPlaybackVoiceDataEvent(kCircuitServer, static_cast<std::uint16_t>(speaker + i), samples,
                                            kBlockSamples, 2);
    int edited = 0;
    plugin.onEditCapturedVoiceDataEvent(kCircuitServer, samples, kBlockSamples, 1, &edited);
}

void HostCrowd::tellEvents(const PluginExports& plugin) {
    const auto client = static_cast<std::uint16_t>(100 + turn_++ % 50);
    plugin.onTalkStatusChangeEvent(kCircuitServer, turn_ % 2, 0, client);
    plugin.onClientMoveEvent(kCircuitServer, client, kLobbyChannel, kTowerChannel, 0, "");
    plugin.onServerErrorEvent(kCircuitServer, "", 1, "nobody's", "");
    plugin.onConnectStatusChangeEvent(99, turn_ % 5, 0);
}
