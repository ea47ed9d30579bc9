#include "audio/alert_player.h"

void playTextAlertSound(const HostFunctions& host, SettingsStore& settings, std::uint64_t schid,
                        const std::function<std::string()>& alertPath) {
    if (!copySettings(settings).text_alert || schid == 0 || !host.playWaveFile) return;
    host.playWaveFile(schid, alertPath().c_str());
}
