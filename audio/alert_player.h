// alert_player.h - the chime of a new text message, played by the host.
#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include "base/host_functions.h"
#include "settings/settings_store.h"

// [host] Plays the file of alertPath() (UTF-8) on the current server when text_alert is on; even with master off. Does
// nothing without a server (schid 0) or without playWaveFile; then nobody is asked for the path.
void playTextAlertSound(const HostFunctions& host, SettingsStore& settings, std::uint64_t schid,
                        const std::function<std::string()>& alertPath);
